// The look of the windows: the themes, spacing, fonts and the few colours that the palette has no role for. Everything
// is taken from the application's palette, so that a theme is one palette. The sixteen state colours are the same in
// each, but for the night's, which shows every colour as a dim red of its own: nothing else leaves a driver's eyes as
// they are. Every text keeps 4.5 to 1 against what it stands on.
#pragma once

#include "platform/colour.h"

#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>
#include <functional>
#include <optional>
#include <string_view>

class QApplication;
class QWidget;

namespace ecu::desktop::theme {

inline constexpr int gap = 6;     // between neighbours in a panel
inline constexpr int margin = 10; // between panels, and around the window's content

enum class Theme : std::uint8_t { system, light, dark, night, high_contrast };
inline constexpr std::array themes{Theme::system, Theme::light, Theme::dark, Theme::night, Theme::high_contrast};
// By which a theme is remembered and asked for from outside (ECU_THEME).
std::string_view name_of(Theme theme);
std::optional<Theme> theme_named(std::string_view name);

// Once, before the first window: style and fonts.
void apply(QApplication& application);
QPalette palette_of(Theme theme); // of Theme::system: what the desktop gives
// At once, in every window that is open.
void use(Theme theme);
// All text larger by a quarter, and the figures as large as their window lets them.
void use_large_digits(bool large);

QColor to_qt(platform::Colour colour);
// Dark or light, whichever stands out on `background`.
QColor text_on(const QColor& background);
// The text of what is no number, on the colour of what is pending.
QColor wrong_text();
// How far one colour stands out from the other, 1 to 21.
double contrast(const QColor& a, const QColor& b);
// Laid over the colour of what was never read.
QBrush hatching();
// `colour`, darkened or lightened until it can be read on `background`.
QColor readable_on(QColor colour, const QColor& background);

// Behind the mark of a pending option or check box: in the hue of what is pending, yet not like one that is filled in.
QColor pending_field(const QPalette& palette);
QColor panel_fill(const QPalette& palette);
QColor panel_edge(const QPalette& palette);
QColor muted_text(const QPalette& palette); // units and captions beside figures
void mute(QWidget& caption);                // gives it that colour, in whatever theme
// Runs now and whenever the theme has changed, as long as the widget lives: for what does not follow its palette.
void in_each(QWidget& widget, std::function<void()> colour);
QColor accent(const QPalette& palette); // panel titles

// Large figures: every digit is as wide as the others, so that a changing number stands still.
QFont figure_font(double points);

// Base and Text of an edit box. No colour means the theme's.
QPalette edit_palette(const QPalette& from, std::optional<platform::Colour> back, std::optional<platform::Colour> fore);

} // namespace ecu::desktop::theme
