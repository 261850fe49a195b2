// A round gauge on the screen, to be read from two metres: a wide needle over a light face, and the value in figures.
// A new value is reached within 0.2 s, moving, so that the eye can follow; a gauge that is hidden or at rest does no
// work, and a moving one repaints what the needle swept only.
#pragma once

#include "desktop/gauge_layout.h"

#include <QColor>
#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

namespace ecu::desktop {

class GaugeWidget final : public QWidget {
public:
    explicit GaugeWidget(platform::Gauge& gauge);

    void refresh(platform::Property property); // for Binding::bind_custom
    double shown_value() const { return shown_; }
    QSize sizeHint() const override { return {240, 240}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void move_needle();
    void step();
    void turn_needle();
    void drop_face();
    QPixmap draw_face() const;
    QColor dial() const;
    QRect needle_area() const;

    platform::Gauge& gauge_;
    GaugeLayout layout_;
    QString text_; // the figures
    QPixmap face_; // everything but needle and figures; empty when it must be drawn anew
    double shown_ = 0;
    double angle_ = 0; // of the needle as drawn: it waits for a move that can be seen
    double from_ = 0;
    QElapsedTimer moving_since_;
    QTimer frames_;
};

} // namespace ecu::desktop
