// The look of the windows: spacing, fonts and the few colours that the palette has no role for. Everything is taken
// from the application's palette, so that light and dark themes both work; only the sixteen state colours are fixed.
#pragma once

#include "platform/colour.h"

#include <QColor>
#include <QFont>
#include <QPalette>

#include <optional>

class QApplication;

namespace ecu::desktop::theme {

inline constexpr int gap = 6;     // between neighbours in a panel
inline constexpr int margin = 10; // between panels, and around the window's content

// Once, before the first window: style and fonts.
void apply(QApplication& application);
// A dark palette for tests and for desktops that have no dark theme of their own.
QPalette dark_palette();

QColor to_qt(platform::Colour colour);
// Black or white, whichever stands out on `background`.
QColor text_on(const QColor& background);
// The text of what is no number, on the colour of what is pending.
inline constexpr QColor wrong_text{0xB0, 0x00, 0x00};
// Laid over the colour of what was never read.
QBrush hatching();
// `colour`, darkened or lightened until it can be read on `background`.
QColor readable_on(QColor colour, const QColor& background);

// Behind the mark of a pending option or check box: in the hue of what is pending, yet not like one that is filled in.
QColor pending_field(const QPalette& palette);
QColor panel_fill(const QPalette& palette);
QColor panel_edge(const QPalette& palette);
QColor muted_text(const QPalette& palette); // units and captions beside figures
QColor accent(const QPalette& palette);     // panel titles

// Large figures: every digit is as wide as the others, so that a changing number stands still.
QFont figure_font(double points);

// Base and Text of an edit box. No colour means the theme's.
QPalette edit_palette(const QPalette& from, std::optional<platform::Colour> back, std::optional<platform::Colour> fore);

} // namespace ecu::desktop::theme
