#include "desktop/picture_view.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>

namespace ecu::desktop {

using platform::Picture;

namespace {

// Draws in device pixels: places and line widths are rounded to whole ones.
class Replay {
public:
    Replay(QPainter& painter, double ratio) : painter_(painter), ratio_(ratio) {
        painter_.scale(1 / ratio, 1 / ratio);
        QFont font = painter_.font();
        font.setPixelSize(static_cast<int>(std::lround(12 * ratio)));
        painter_.setFont(font);
    }
    void operator()(const Picture::Line& line) {
        const int width = pen(line.colour, line.line_width);
        const double centre = width % 2 == 1 ? 0.5 : 0.0;
        const QPointF from(device(line.x1) + centre, device(line.y1) + centre);
        const QPointF to(device(line.x2) + centre, device(line.y2) + centre);
        const bool upright = line.x1 == line.x2 || line.y1 == line.y2;
        painter_.setRenderHint(QPainter::Antialiasing, !upright);
        from == to ? painter_.drawPoint(from) : painter_.drawLine(from, to);
    }
    void operator()(const Picture::Circle& circle) {
        pen(circle.colour, 1);
        painter_.setRenderHint(QPainter::Antialiasing, true);
        painter_.drawEllipse(QPointF(device(circle.x), device(circle.y)), circle.radius * ratio_,
                             circle.radius * ratio_);
    }
    void operator()(const Picture::Text& text) {
        painter_.setPen(theme::to_qt(text.colour));
        painter_.drawText(QPointF(device(text.x), device(text.y) + painter_.fontMetrics().ascent()), qt(text.text));
    }

private:
    double device(int place) const { return std::round(place * ratio_); }
    int pen(platform::Colour colour, int line_width) {
        const int width = std::max(1, static_cast<int>(std::lround(line_width * ratio_)));
        painter_.setPen(QPen(theme::to_qt(colour), width, Qt::SolidLine, Qt::SquareCap));
        return width;
    }
    QPainter& painter_;
    double ratio_;
};

} // namespace

PictureView::PictureView(Picture& picture) : picture_(picture) {
    setMinimumSize(80, 60);
    setMouseTracking(static_cast<bool>(picture_.pointed_at));
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    if (picture_.pointed_at) {
        picture_.pointed_at(event->pos().x(), event->pos().y());
    }
}

void PictureView::resizeEvent(QResizeEvent* event) { picture_.resize(event->size().width(), event->size().height()); }

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!picture_.image_path().empty()) {
        paint_image(painter);
    } else {
        paint_strokes(painter);
    }
}

void PictureView::paint_image(QPainter& painter) {
    if (image_path_ != picture_.image_path()) {
        image_path_ = picture_.image_path();
        image_.load(qt(image_path_));
    }
    if (image_.isNull()) {
        return;
    }
    const double ratio = devicePixelRatioF();
    QPixmap fitted = image_.scaled(size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    fitted.setDevicePixelRatio(ratio);
    const QSizeF shown = fitted.deviceIndependentSize();
    painter.drawPixmap(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), fitted);
}

void PictureView::paint_strokes(QPainter& painter) {
    painter.fillRect(rect(),
                     picture_.back_colour() ? theme::to_qt(*picture_.back_colour()) : palette().color(QPalette::Base));
    Replay replay(painter, devicePixelRatioF());
    for (const Picture::Stroke& stroke : picture_.strokes()) {
        std::visit(replay, stroke);
    }
    if (picture_.marker()) {
        replay(Picture::Line{*picture_.marker(), 0, *picture_.marker(), picture_.height(), platform::palette[7], 1});
    }
}

} // namespace ecu::desktop
