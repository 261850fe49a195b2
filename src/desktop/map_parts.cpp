#include "desktop/map_parts.h"

#include "desktop/grid_delegate.h"
#include "desktop/theme.h"

#include <QPainter>

namespace ecu::desktop {

AxisMarker::AxisMarker(bool upward, QWidget* parent) : QWidget(parent), upward_(upward) {
    setFixedSize(size, size);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void AxisMarker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::accent(QPalette()));
    const double end = size - 0.5;
    const double middle = size / 2.0;
    if (upward_) {
        painter.drawPolygon(QPolygonF({{middle, 0.5}, {end, end}, {0.5, end}}));
    } else {
        painter.drawPolygon(QPolygonF({{end, middle}, {0.5, end}, {0.5, 0.5}}));
    }
}

QPixmap swatch_picture(platform::Colour colour) {
    QPixmap picture(20, 14);
    picture.fill(theme::to_qt(colour));
    if (colour == platform::pending) {
        QPainter painter(&picture);
        paint_pending_mark(painter, picture.rect());
    }
    return picture;
}

QLabel* swatch(platform::Colour colour) {
    auto* label = new QLabel;
    label->setPixmap(swatch_picture(colour));
    label->setFrameShape(QFrame::Box);
    label->setFixedSize(22, 16);
    return label;
}

QLabel* muted_label(const QString& text) {
    auto* label = new QLabel(text);
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
    label->setPalette(palette);
    return label;
}

} // namespace ecu::desktop
