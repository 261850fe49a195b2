#include "desktop/keys.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <array>
#include <utility>

namespace ecu::desktop {

namespace {

int code_of(int key) {
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9) || key == Qt::Key_Space) {
        return key;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) {
        return 112 + key - Qt::Key_F1;
    }
    constexpr std::array<std::pair<int, int>, 18> codes{{{Qt::Key_Backspace, 8},
                                                         {Qt::Key_Tab, 9},
                                                         {Qt::Key_Backtab, 9},
                                                         {Qt::Key_Return, platform::key::enter},
                                                         {Qt::Key_Enter, platform::key::enter},
                                                         {Qt::Key_Shift, platform::key::shift},
                                                         {Qt::Key_Control, 17},
                                                         {Qt::Key_Escape, 27},
                                                         {Qt::Key_PageUp, 33},
                                                         {Qt::Key_PageDown, 34},
                                                         {Qt::Key_End, 35},
                                                         {Qt::Key_Home, 36},
                                                         {Qt::Key_Left, platform::key::left},
                                                         {Qt::Key_Up, platform::key::up},
                                                         {Qt::Key_Right, platform::key::right},
                                                         {Qt::Key_Down, platform::key::down},
                                                         {Qt::Key_Delete, 46},
                                                         {Qt::Key_Period, platform::key::period}}};
    for (const auto& [qt_key, code] : codes) {
        if (qt_key == key) {
            return code;
        }
    }
    return 0;
}

} // namespace

platform::KeyPress key_of(const QKeyEvent& event) {
    return {.code = code_of(event.key()),
            .shift = event.modifiers().testFlag(Qt::ShiftModifier),
            .ctrl = event.modifiers().testFlag(Qt::ControlModifier)};
}

bool is_undo_key(const QEvent& event) {
    if (event.type() != QEvent::ShortcutOverride) {
        return false;
    }
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.modifiers() == Qt::ControlModifier && (key.key() == Qt::Key_Z || key.key() == Qt::Key_Y);
}

platform::MouseButton button_of(const QMouseEvent& event) {
    switch (event.button()) {
    case Qt::LeftButton:
        return platform::MouseButton::left;
    case Qt::RightButton:
        return platform::MouseButton::right;
    default:
        return platform::MouseButton::none;
    }
}

} // namespace ecu::desktop
