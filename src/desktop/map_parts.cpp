#include "desktop/map_parts.h"

#include "desktop/grid_delegate.h"
#include "desktop/theme.h"
#include "maps/frm_3d.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>

#include <ranges>

namespace ecu::desktop {

namespace {

// Follows the desktop from light to dark.
class MutedLabel final : public QLabel {
public:
    explicit MutedLabel(const QString& text) : QLabel(text) { take_colour(); }

protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange) {
            take_colour();
        }
    }

private:
    void take_colour() {
        QPalette muted;
        muted.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
        if (palette().color(QPalette::WindowText) != muted.color(QPalette::WindowText)) {
            setPalette(muted);
        }
    }
};

} // namespace

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

QLabel* muted_label(const QString& text) { return new MutedLabel(text); }

QWidget* shading_legend() {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(swatch(platform::pending));
    row->addWidget(muted_label(" pending"));
    row->addStretch(1);
    row->addWidget(muted_label("low "));
    for (const platform::Colour colour : maps::shading_colours | std::views::reverse) {
        row->addWidget(swatch(colour));
    }
    row->addWidget(muted_label(" high"));
    return holder;
}

} // namespace ecu::desktop
