// A drawing surface with integer coordinates. It records what was drawn since the last clear, so that the desktop can
// replay it at any scale factor and a test can read the points as numbers. `width` and `height` are in the picture's
// own units; the desktop sets them when the window's size changes and `resized` then draws anew.
#pragma once

#include "platform/control.h"

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
        int x, y, radius;
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
    void circle(int x, int y, int radius, Colour colour) { strokes_.emplace_back(Circle{x, y, radius, colour}); }
    void print(int x, int y, std::string_view text, Colour colour) {
        strokes_.emplace_back(Text{x, y, std::string(text), colour});
    }
    void refresh() { announce(Property::content); } // what was drawn goes to the screen

    const std::vector<Stroke>& strokes() const { return strokes_; }
    std::function<void()> resized;

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
    std::string image_path_;
};

} // namespace ecu::platform
