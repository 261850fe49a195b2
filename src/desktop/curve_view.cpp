#include "desktop/curve_view.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QPainter>
#include <QResizeEvent>

#include <array>

namespace ecu::desktop {

using platform::Picture;

namespace {

constexpr double point_radius = 2.5;
constexpr int scale_pixels = 9;
constexpr int least_height_for_scale = 60;

QColor faded(platform::Colour colour, int alpha) {
    QColor result = theme::to_qt(colour);
    result.setAlpha(alpha);
    return result;
}

} // namespace

std::vector<QLineF> CurveView::curve_of(const Picture& picture) {
    std::vector<QLineF> pieces;
    for (const Picture::Stroke& stroke : picture.strokes()) {
        if (const auto* line = std::get_if<Picture::Line>(&stroke);
            line != nullptr && line->colour == platform::yellow) {
            pieces.emplace_back(line->x1 + 0.5, line->y1 + 0.5, line->x2 + 0.5, line->y2 + 0.5);
        }
    }
    return pieces;
}

void CurveView::resizeEvent(QResizeEvent* event) { picture_.resize(event->size().width(), event->size().height()); }

void CurveView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : 0.6);
    painter.fillRect(rect(), theme::to_qt(picture_.back_colour().value_or(platform::black)));
    for (const Picture::Stroke& stroke : picture_.strokes()) {
        if (const auto* line = std::get_if<Picture::Line>(&stroke);
            line != nullptr && line->colour != platform::yellow) {
            painter.setPen(faded(line->colour, 75));
            painter.drawLine(line->x1, line->y1, line->x2, line->y2);
        }
    }
    QLinearGradient shade(0, 0, 0, height());
    shade.setColorAt(0, faded(platform::yellow, 110));
    shade.setColorAt(1, faded(platform::yellow, 15));
    const std::vector<QLineF> curve = curve_of(picture_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.setRenderHint(QPainter::Antialiasing, false); // the pieces of the ground join without a seam
    for (const QLineF& piece : curve) {
        const std::array<QPointF, 4> ground{piece.p1(), piece.p2(), QPointF(piece.x2(), height()),
                                            QPointF(piece.x1(), height())};
        painter.drawPolygon(ground.data(), 4);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor bright = theme::to_qt(platform::yellow);
    for (const QLineF& piece : curve) {
        painter.setPen(QPen(bright, 1.6, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(piece);
        painter.setPen(Qt::NoPen);
        painter.setBrush(bright);
        painter.drawEllipse(piece.p1(), point_radius, point_radius);
        painter.drawEllipse(piece.p2(), point_radius, point_radius);
    }
    if (height() < least_height_for_scale) {
        return;
    }
    QFont font = painter.font();
    font.setPixelSize(scale_pixels);
    painter.setFont(font);
    painter.setPen(theme::to_qt(platform::palette[7]));
    painter.drawText(rect().adjusted(4, 0, -4, 0), Qt::AlignRight | Qt::AlignBottom, qt(picture_.text()));
}

} // namespace ecu::desktop
