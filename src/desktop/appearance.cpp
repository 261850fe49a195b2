#include "desktop/appearance.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>

namespace ecu::desktop {

namespace {

constexpr const char* theme_key = "theme";
constexpr const char* digits_key = "large_digits";

} // namespace

Appearance::Appearance(shell::FrmEcu& main, Remembered& remembered) : main_(main), remembered_(remembered) {
    for (platform::MenuItem& item : main_.menu_view_themes) {
        item.clicked = [this, chosen = theme::themes.at(static_cast<std::size_t>(item.index()))] { choose(chosen); };
    }
    main_.menu_view_large_digits.clicked = [this] { choose_large_digits(!main_.menu_view_large_digits.checked()); };
    main_.menu_view_themes[0].set_checked(true);
    if (const auto kept = theme::theme_named(remembered_.value(theme_key).toString().toStdString())) {
        choose(*kept);
    }
    if (remembered_.value(digits_key).toBool()) {
        choose_large_digits(true);
    }
    qApp->installEventFilter(this);
}

bool Appearance::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    auto& key = static_cast<QKeyEvent&>(*event);
    const Qt::KeyboardModifiers held = key.modifiers() & ~Qt::KeypadModifier;
    if (key.key() != Qt::Key_F9 || (held != Qt::NoModifier && held != Qt::ShiftModifier)) {
        return false;
    }
    if (event->type() == QEvent::KeyPress && !key.isAutoRepeat()) {
        if (held == Qt::ShiftModifier) {
            choose_large_digits(!main_.menu_view_large_digits.checked());
        } else {
            const auto now = static_cast<std::size_t>(std::ranges::find(theme::themes, theme_) - theme::themes.begin());
            choose(theme::themes.at((now + 1) % theme::themes.size()));
        }
    }
    event->accept();
    return true;
}

void Appearance::choose(theme::Theme theme) {
    theme_ = theme;
    for (std::size_t i = 0; i < theme::themes.size(); ++i) {
        main_.menu_view_themes[i].set_checked(theme::themes.at(i) == theme);
    }
    theme::use(theme);
    const std::string_view name = theme::name_of(theme);
    remembered_.set_value(theme_key, QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

void Appearance::choose_large_digits(bool large) {
    main_.menu_view_large_digits.set_checked(large);
    theme::use_large_digits(large);
    remembered_.set_value(digits_key, large);
}

} // namespace ecu::desktop
