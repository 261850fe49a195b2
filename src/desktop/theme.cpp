#include "desktop/theme.h"

#include "desktop/figure_label.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStyleFactory>

#include <algorithm>
#include <cmath>

namespace ecu::desktop::theme {

namespace {

double luminance(const QColor& colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

QColor blend(const QColor& from, const QColor& to, float share) {
    const auto mix = [share](float a, float b) { return a + (b - a) * share; };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

bool is_dark(const QPalette& palette) { return luminance(palette.color(QPalette::Window)) < 0.2; }

bool digits_line_up(const QFont& font) {
    const QFontMetricsF metrics(font);
    const double zero = metrics.horizontalAdvance('0');
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (std::abs(metrics.horizontalAdvance(digit) - zero) > 0.01) {
            return false;
        }
    }
    return true;
}

} // namespace

void apply(QApplication& application) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    application.setAttribute(Qt::AA_DontShowIconsInMenus);
    make_figures_accessible();
}

QPalette dark_palette() {
    QPalette palette(QColor(0x2b, 0x2d, 0x31), QColor(0x2b, 0x2d, 0x31));
    palette.setColor(QPalette::WindowText, QColor(0xe3, 0xe5, 0xe8));
    palette.setColor(QPalette::Base, QColor(0x45, 0x48, 0x4e));
    palette.setColor(QPalette::AlternateBase, QColor(0x3d, 0x40, 0x45));
    palette.setColor(QPalette::Text, QColor(0xe3, 0xe5, 0xe8));
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3d, 0x42));
    palette.setColor(QPalette::ButtonText, QColor(0xe3, 0xe5, 0xe8));
    palette.setColor(QPalette::ToolTipBase, QColor(0x1e, 0x1f, 0x22));
    palette.setColor(QPalette::ToolTipText, QColor(0xe3, 0xe5, 0xe8));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xbf));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0x7d, 0x80, 0x86));
    }
    return palette;
}

QColor to_qt(platform::Colour colour) { return {colour.red, colour.green, colour.blue}; }

QColor text_on(const QColor& background) {
    return contrast(Qt::black, background) >= contrast(Qt::white, background) ? Qt::black : Qt::white;
}

QBrush hatching() { return QBrush(QColor(0x60, 0x60, 0x60), Qt::BDiagPattern); }

QColor readable_on(QColor colour, const QColor& background) {
    const QColor towards = text_on(background);
    for (int step = 0; step < 10 && contrast(colour, background) < 3.0; ++step) {
        colour = blend(colour, towards, 0.2F);
    }
    return colour;
}

QColor pending_field(const QPalette& palette) {
    return is_dark(palette) ? blend(palette.color(QPalette::Base), to_qt(platform::pending), 0.3F)
                            : to_qt(platform::pending);
}

QColor panel_fill(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    return is_dark(palette) ? blend(window, Qt::white, 0.035F) : blend(window, Qt::white, 0.6F);
}

QColor panel_edge(const QPalette& palette) {
    return blend(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.16F);
}

QColor muted_text(const QPalette& palette) {
    return blend(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.3F);
}

QColor accent(const QPalette& palette) {
    return readable_on(blend(palette.color(QPalette::Highlight), palette.color(QPalette::WindowText), 0.25F),
                       panel_fill(palette));
}

QFont figure_font(double points) {
    QFont font = QApplication::font();
    if (!digits_line_up(font)) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    }
    font.setPointSizeF(points);
    font.setWeight(QFont::DemiBold);
    return font;
}

QPalette edit_palette(const QPalette& from, std::optional<platform::Colour> back,
                      std::optional<platform::Colour> fore) {
    QPalette palette = from;
    if (back) {
        palette.setColor(QPalette::Base, to_qt(*back));
        // A selection in the box must stand out from the state colour in every theme.
        palette.setColor(QPalette::Text, text_on(to_qt(*back)));
        palette.setColor(QPalette::Disabled, QPalette::Text, blend(text_on(to_qt(*back)), to_qt(*back), 0.55F));
    }
    if (fore) {
        palette.setColor(QPalette::Active, QPalette::Text, to_qt(*fore));
        palette.setColor(QPalette::Inactive, QPalette::Text, to_qt(*fore));
    }
    return palette;
}

} // namespace ecu::desktop::theme
