// What the user does with the strip chart: the window over time, the pointer's line and its reading, mouse and keys.
#include "desktop/strip_chart_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QDateTime>
#include <QLabel>

#include <cmath>

namespace ecu::desktop {

using platform::StripChart;

namespace {

constexpr double zoom_step = 1.25;

} // namespace

QString StripChartWidget::clock_text(double time, int decimals) {
    const QString text = QDateTime::fromMSecsSinceEpoch(std::llround(time * 1000), Qt::UTC).toString("hh:mm:ss.zzz");
    return text.chopped(decimals > 0 ? 3 - decimals : 4);
}

// -- The window over time

void StripChartWidget::tell_view() {
    if (view_changed) {
        view_changed();
    }
}

void StripChartWidget::go_live() {
    window_.go_live(newest());
    view_moved();
}

void StripChartWidget::view_moved() {
    xAxis->setRange(window_.times().from, window_.times().to);
    yAxis->setRange(window_.heights().from, window_.heights().to);
    tell_view();
    schedule_picture();
}

void StripChartWidget::zoom(double factor, double about) {
    if (!history_.empty()) {
        window_.zoom(factor, about);
        view_moved();
    }
}

void StripChartWidget::zoom_height(double factor, double about) {
    window_.zoom_height(factor, about);
    view_moved();
}

void StripChartWidget::pan(double seconds) {
    if (!history_.empty()) {
        window_.pan(seconds, history_.first(), history_.last());
        view_moved();
    }
}

// -- The pointer's line and its reading

void StripChartWidget::place_pointer() {
    pointer_fractions_.clear();
    if (pointer_x_ && !dragging_) {
        pointer_fractions_ = history_.nearest(xAxis->pixelToCoord(*pointer_x_), pointer_time_);
    }
    const bool shown = !pointer_fractions_.empty() && xAxis->range().contains(pointer_time_);
    pointer_line_->setVisible(shown);
    reading_box_->setVisible(shown);
    if (!shown) {
        pointer_fractions_.clear();
        return;
    }
    pointer_line_->point1->setCoords(pointer_time_, 0);
    pointer_line_->point2->setCoords(pointer_time_, 1);
    reading_box_->setText(reading_lines(true));
    reading_box_->adjustSize();
    const QRect area = axisRect()->rect();
    const int at = static_cast<int>(xAxis->coordToPixel(pointer_time_));
    const bool on_the_left = at + 14 + reading_box_->width() > area.right();
    reading_box_->move(on_the_left ? std::max(area.left(), at - 14 - reading_box_->width()) : at + 14, area.top() + 8);
}

QString StripChartWidget::reading_lines(bool rich) const {
    QString lines =
        rich ? "<b>" + clock_text(pointer_time_, 2) + "</b><table cellspacing='0'>" : clock_text(pointer_time_, 2);
    const QString row = rich ? QStringLiteral("<tr><td style='color:%4'>\u25a0 %1&nbsp;&nbsp;</td>"
                                              "<td align='right'>%2</td><td>&nbsp;%3</td></tr>")
                             : QStringLiteral("\n%1 %2 %3");
    for (std::size_t i = 0; i < pointer_fractions_.size(); ++i) {
        const StripChart::Channel& channel = drawn_as_[i];
        if (channel.enabled) {
            const double value = static_cast<double>(channel.offset) +
                                 static_cast<double>(pointer_fractions_[i]) * static_cast<double>(channel.span);
            const QString text =
                row.arg(qt(channel.name()), QString::number(value, 'f', channel.decimals), qt(channel.unit));
            lines += rich ? text.arg(theme::to_qt(channel.colour).name()) : text;
        }
    }
    return rich ? lines + "</table>" : lines;
}

QString StripChartWidget::reading() const { return pointer_fractions_.empty() ? QString() : reading_lines(false); }

// -- The user

void StripChartWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        pressed_at_ = event->position();
        drag_x_ = event->position().x();
    }
}

void StripChartWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (pressed_at_ && !dragging_ && std::abs(at.x() - pressed_at_->x()) >= QApplication::startDragDistance()) {
        dragging_ = true;
        setCursor(Qt::ClosedHandCursor);
    }
    if (dragging_) {
        pan(xAxis->pixelToCoord(drag_x_) - xAxis->pixelToCoord(at.x()));
        drag_x_ = at.x();
    }
    pointer_x_ = axisRect()->rect().contains(at.toPoint()) ? std::optional(at.x()) : std::nullopt;
    place_pointer();
    layer("pointer")->replot();
}

void StripChartWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_at_) {
        return;
    }
    pressed_at_.reset();
    if (dragging_) {
        dragging_ = false;
        unsetCursor();
    } else if (chart_.clicked) {
        chart_.clicked();
    }
}

void StripChartWidget::wheelEvent(QWheelEvent* event) {
    const QPoint turn = event->angleDelta();
    const int eighths = turn.y() != 0 ? turn.y() : turn.x();
    const double factor = std::pow(zoom_step, -eighths / 120.0);
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        zoom_height(factor, yAxis->pixelToCoord(event->position().y()));
    } else {
        zoom(factor,
             std::clamp(xAxis->pixelToCoord(event->position().x()), xAxis->range().lower, xAxis->range().upper));
    }
    event->accept();
}

void StripChartWidget::keyPressEvent(QKeyEvent* event) {
    const QCPRange now = xAxis->range();
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoom(1 / zoom_step, is_live() ? now.upper : now.center());
        break;
    case Qt::Key_Minus:
        zoom(zoom_step, is_live() ? now.upper : now.center());
        break;
    case Qt::Key_Left:
        pan(-now.size() / 10);
        break;
    case Qt::Key_Right:
        pan(now.size() / 10);
        break;
    case Qt::Key_End:
        go_live();
        break;
    case Qt::Key_Space:
        if (chart_.clicked) {
            chart_.clicked();
        }
        break;
    default:
        QCustomPlot::keyPressEvent(event);
    }
}

void StripChartWidget::leaveEvent(QEvent* event) {
    pointer_x_.reset();
    place_pointer();
    layer("pointer")->replot();
    QCustomPlot::leaveEvent(event);
}

} // namespace ecu::desktop
