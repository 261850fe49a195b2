// A label of fixed size for a figure that changes many times a second: writing it repaints the label and never lays
// the window out again. It grows, once, when a text is wider than what it made room for.
#pragma once

#include <QLabel>

namespace ecu::desktop {

class FigureLabel final : public QLabel {
public:
    explicit FigureLabel(const QString& widest);
    void set_points(double points);
    bool show_text(const QString& text); // true when it had to grow

private:
    void make_room();
    QString widest_;
};

} // namespace ecu::desktop
