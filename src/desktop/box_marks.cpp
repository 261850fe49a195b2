#include "desktop/box_marks.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "platform/leading_number.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

namespace ecu::desktop {

void paint_box(const platform::TextBox& box, QWidget& widget) {
    QPalette palette = theme::edit_palette(QPalette(), box.back_colour(), box.fore_colour());
    QString state;
    const bool unconfirmed = box.unconfirmed() && !box.is_pending();
    if (box.unread()) {
        QPixmap hatched(8, 8);
        hatched.fill(palette.color(QPalette::Base));
        QPainter(&hatched).fillRect(hatched.rect(), theme::hatching());
        QBrush brush(palette.color(QPalette::Base));
        brush.setTexture(hatched);
        palette.setBrush(QPalette::Base, brush);
        state = QStringLiteral("not read");
    } else if (box.unconfirmed() && box.is_pending() && !platform::is_number(box.text())) {
        palette.setColor(QPalette::Active, QPalette::Text, theme::wrong_text);
        palette.setColor(QPalette::Inactive, QPalette::Text, theme::wrong_text);
        state = QStringLiteral("pending, no number");
    } else if (unconfirmed) {
        state = QStringLiteral("not confirmed by the controller");
    } else if (box.unconfirmed()) {
        state = QStringLiteral("pending");
    }
    widget.setPalette(palette);
    if (QFont font = widget.font(); font.underline() != unconfirmed) {
        font.setUnderline(unconfirmed);
        widget.setFont(font);
    }
    if (widget.accessibleDescription() != state) {
        widget.setAccessibleDescription(state);
    }
    const QString tip = qt(box.tool_tip());
    const QString whole = state.isEmpty() || tip.isEmpty() ? tip + state : tip + '\n' + state;
    if (widget.toolTip() != whole) {
        widget.setToolTip(whole);
    }
}

bool is_decimal_comma(const platform::Control& control, const QKeyEvent& key) {
    const auto& box = static_cast<const platform::TextBox&>(control);
    return key.text() == QLatin1String(",") && box.origin() != platform::Origin::none && !box.multi_line;
}

} // namespace ecu::desktop
