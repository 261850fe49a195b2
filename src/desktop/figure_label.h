// A label of fixed size for a figure that changes many times a second: writing it repaints the label and never lays
// the window out again. It grows, once, when a text is wider than what it made room for.
// A screen reader finds it under its caption, with the figure and its unit as its value.
#pragma once

#include <QLabel>

#include <functional>

namespace ecu::desktop {

class FigureLabel final : public QLabel {
public:
    explicit FigureLabel(const QString& widest);
    void set_points(double points);
    bool show_text(const QString& text); // true when it had to grow
    // What stands behind the figure; asked when it is read out, since some units change.
    void set_unit(std::function<QString()> unit) { unit_ = std::move(unit); }
    QString spoken_value() const; // "3006 RPM"

private:
    void make_room();
    QString widest_;
    std::function<QString()> unit_;
};

// To be called once, before the first window: tells the accessibility tree of figures.
void make_figures_accessible();

} // namespace ecu::desktop
