#include "desktop/legend.h"

#include "desktop/grid_view.h"
#include "desktop/theme.h"
#include "maps/frm_3d.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include <ranges>

namespace ecu::desktop {

QWidget* swatch(platform::Colour colour) {
    QPixmap picture(20, 14);
    picture.fill(theme::to_qt(colour));
    if (colour == platform::pending) {
        QPainter painter(&picture);
        paint_pending_mark(painter, picture.rect());
    }
    auto* label = new QLabel;
    label->setPixmap(picture);
    label->setFrameShape(QFrame::Box);
    label->setFixedSize(22, 16);
    return label;
}

QWidget* muted(const char* text) {
    auto* label = new QLabel(QString::fromUtf8(text));
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
    label->setPalette(palette);
    return label;
}

QWidget* shading_legend() {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(swatch(platform::pending));
    row->addWidget(muted(" pending"));
    row->addStretch(1);
    row->addWidget(muted("low "));
    for (const platform::Colour colour : maps::shading_colours | std::views::reverse) {
        row->addWidget(swatch(colour));
    }
    row->addWidget(muted(" high"));
    return holder;
}

} // namespace ecu::desktop
