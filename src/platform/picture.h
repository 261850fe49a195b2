// A drawing surface with integer coordinates. It records what was drawn since the last clear, so that the desktop can
// replay it at any scale factor and a test can read the points as numbers. `width` and `height` are in the picture's
// own units; the desktop sets them when the window's size changes and `resized` then draws anew.
#pragma once

#include "platform/control.h"

#include <optional>
#include <variant>
#include <vector>

namespace ecu::platform {

class Picture : public Control {
public:
    struct Line {
        int x1, y1, x2, y2;
        Colour colour;
        int line_width;
        friend bool operator==(const Line&, const Line&) = default;
    };
    struct Circle {
        int x, y;
        double radius;
        Colour colour;
        friend bool operator==(const Circle&, const Circle&) = default;
    };
    struct Text {
        int x, y;
        std::string text;
        Colour colour;
        friend bool operator==(const Text&, const Text&) = default;
    };
    using Stroke = std::variant<Line, Circle, Text>;

    Picture(Form& form, std::string_view name, int width = 600, int height = 400)
        : Control(form, name, -1, Kind::picture, ""), width_(width), height_(height) {
        set_back_colour(black);
    }
    int width() const { return width_; }
    int height() const { return height_; }
    void resize(int width, int height) {
        if (width != width_ || height != height_) {
            width_ = width;
            height_ = height;
            if (resized) {
                resized();
            }
        }
    }

    void clear() { strokes_.clear(); }
    void set_line_width(int line_width) { line_width_ = line_width; }
    void line(int x1, int y1, int x2, int y2, Colour colour) {
        strokes_.emplace_back(Line{x1, y1, x2, y2, colour, line_width_});
    }
    void point(int x, int y, Colour colour) { line(x, y, x, y, colour); }
    void circle(int x, int y, double radius, Colour colour) { strokes_.emplace_back(Circle{x, y, radius, colour}); }
    void print(int x, int y, std::string_view text, Colour colour) {
        strokes_.emplace_back(Text{x, y, std::string(text), colour});
    }
    void refresh() { announce(Property::content); } // what was drawn goes to the screen

    const std::vector<Stroke>& strokes() const { return strokes_; }
    std::function<void()> resized;

    // What stands around the drawing: captions, and numbers at shares of its width from the left and of its height from
    // the bottom.
    struct Tick {
        double at;
        std::string text;
    };
    struct Axis {
        std::string caption;
        std::vector<Tick> ticks;
    };
    void set_axes(Axis bottom, Axis left) {
        bottom_ = std::move(bottom);
        left_ = std::move(left);
        announce(Property::scale);
    }
    const Axis& bottom_axis() const { return bottom_; }
    const Axis& left_axis() const { return left_; }
    // A fine upright line over the drawing, no stroke of it, at the place that is being told of.
    void set_marker(std::optional<int> x) {
        marker_ = x;
        announce(Property::content);
    }
    std::optional<int> marker() const { return marker_; }
    std::function<void(int x, int y)> pointed_at;          // by the mouse, over the drawing
    std::function<bool(const std::string&)> save_as_image; // set by the desktop: drawing and axes to a file

    // A picture from a file instead of strokes (the installer's picture); the desktop shows it scaled to fit.
    void load_image(std::string_view path) {
        image_path_ = path;
        announce(Property::content);
    }
    const std::string& image_path() const { return image_path_; }

private:
    int width_;
    int height_;
    int line_width_ = 1;
    std::vector<Stroke> strokes_;
    Axis bottom_;
    Axis left_;
    std::optional<int> marker_;
    std::string image_path_;
};

} // namespace ecu::platform
