#include "desktop/box_marks.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "platform/leading_number.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QPainter>
#include <QPixmap>
#include <QStatusBar>

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
        palette.setColor(QPalette::Active, QPalette::Text, theme::wrong_text());
        palette.setColor(QPalette::Inactive, QPalette::Text, theme::wrong_text());
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

namespace {

bool takes_entries(const platform::Control& control) {
    const auto& box = static_cast<const platform::TextBox&>(control);
    return box.origin() != platform::Origin::none && !box.multi_line;
}

} // namespace

bool is_decimal_comma(const platform::Control& control, const QKeyEvent& key) {
    return key.text() == QLatin1String(",") && takes_entries(control);
}

bool paste_value(const platform::Control& control, QLineEdit& edit, const QKeyEvent& key) {
    if (!key.matches(QKeySequence::Paste) || !takes_entries(control)) {
        return false;
    }
    QString copied = QApplication::clipboard()->text().remove('\r');
    copied.chop(copied.endsWith('\n') ? 1 : 0); // of a cell copied from a table
    const std::string entry = platform::entry_text(copied.toStdString());
    if (entry.find_first_of("\t\n") != entry.npos) {
        return false;
    }
    if (platform::is_number(entry)) {
        edit.insert(qt(entry));
    } else if (!entry.empty()) {
        tell_not_pasted(1, qt(entry), edit);
    }
    return true;
}

void tell_not_pasted(int count, const QString& first_text, const QWidget& first_place) {
    constexpr int seconds = 10;
    if (const auto* window = qobject_cast<QMainWindow*>(first_place.window())) {
        const QString what = count == 1 ? QStringLiteral(" not pasted, no number: \"")
                                        : QStringLiteral(" not pasted, no numbers, first \"");
        window->statusBar()->showMessage(QString::number(count) + what + first_text.left(12) +
                                             QStringLiteral("\" at ") + first_place.accessibleName(),
                                         1000 * seconds);
    }
}

} // namespace ecu::desktop
