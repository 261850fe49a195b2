#include "desktop/plot_view.h"

#include "desktop/picture_view.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QEvent>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace ecu::desktop {

using platform::Picture;
using platform::Property;

namespace {

constexpr int tick_length = 4;
constexpr int gap = 3;

} // namespace

PlotView::PlotView(Picture& picture) : picture_(picture), drawing_(new PictureView(picture)) {
    drawing_->setParent(this);
    setMinimumSize(200, 130);
    if (picture_.pointed_at) {
        setFocusPolicy(Qt::StrongFocus);
    }
    picture_.save_as_image = [this](const std::string& path) { return grab().save(qt(path)); };
}

void PlotView::refresh(Property property) {
    if (property == Property::scale) {
        lay_out();
        update();
    } else {
        drawing_->update();
    }
}

QRect PlotView::area() const {
    const QFontMetrics metrics = fontMetrics();
    int widest = 0;
    for (const Picture::Tick& tick : picture_.left_axis().ticks) {
        widest = std::max(widest, metrics.horizontalAdvance(qt(tick.text)));
    }
    const auto& bottom = picture_.bottom_axis().ticks;
    const int last = bottom.empty() ? 0 : metrics.horizontalAdvance(qt(bottom.back().text)) / 2;
    return rect().adjusted(metrics.height() + widest + tick_length + 2 * gap, metrics.height() / 2 + 1,
                           -std::max(last + 1, gap), -(2 * metrics.height() + tick_length + 2 * gap));
}

void PlotView::lay_out() {
    if (const QRect room = area(); room.isValid()) {
        drawing_->setGeometry(room);
    }
}

void PlotView::resizeEvent(QResizeEvent*) { lay_out(); }

void PlotView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        lay_out();
    }
}

void PlotView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect room = drawing_->geometry();
    const QFontMetrics metrics = fontMetrics();
    painter.setPen(theme::muted_text(palette()));
    for (const Picture::Tick& tick : picture_.bottom_axis().ticks) {
        const int x = room.left() + static_cast<int>(tick.at * (room.width() - 1));
        painter.drawLine(x, room.bottom() + 1, x, room.bottom() + tick_length);
        const QString text = qt(tick.text);
        painter.drawText(x - metrics.horizontalAdvance(text) / 2, room.bottom() + tick_length + gap + metrics.ascent(),
                         text);
    }
    for (const Picture::Tick& tick : picture_.left_axis().ticks) {
        const int y = room.bottom() - static_cast<int>(tick.at * (room.height() - 1));
        painter.drawLine(room.left() - tick_length, y, room.left() - 1, y);
        const QString text = qt(tick.text);
        painter.drawText(room.left() - tick_length - gap - metrics.horizontalAdvance(text),
                         y + (metrics.ascent() - metrics.descent()) / 2, text);
    }
    painter.drawText(QRect(room.left(), height() - metrics.height(), room.width(), metrics.height()), Qt::AlignCenter,
                     qt(picture_.bottom_axis().caption));
    painter.translate(0, room.bottom());
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, room.height(), metrics.height()), Qt::AlignCenter, qt(picture_.left_axis().caption));
    painter.resetTransform();
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(room.adjusted(-1, -1, 0, 0));
    }
}

} // namespace ecu::desktop
