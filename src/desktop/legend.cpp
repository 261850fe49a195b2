#include "desktop/legend.h"

#include "desktop/grid_delegate.h"
#include "desktop/theme.h"
#include "maps/frm_3d.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
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

QWidget* muted(const char* text) { return new MutedLabel(QString::fromUtf8(text)); }

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
