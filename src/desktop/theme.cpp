#include "desktop/theme.h"

#include "desktop/figure_label.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace ecu::desktop::theme {

namespace {

constexpr double least_contrast = 4.5;
constexpr std::array<std::string_view, themes.size()> names{"system", "light", "dark", "night", "high-contrast"};

double luminance(const QColor& colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

QColor blend(const QColor& from, const QColor& to, float share) {
    const auto mix = [share](float a, float b) { return a + (b - a) * share; };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

bool is_dark(const QPalette& palette) { return luminance(palette.color(QPalette::Window)) < 0.2; }

constexpr QColor night_text{0xFF, 0x6E, 0x50};

// What says that the night's palette is in use: no other has text without green.
bool is_night() { return QGuiApplication::palette().color(QPalette::WindowText) == night_text; }

// A grey becomes a dark red, a colour a brighter one, the more so the more of a colour it is: so what is pending stands
// out from what is confirmed, as it does by day.
QColor at_night(platform::Colour colour) {
    const auto [low, high] = std::minmax({colour.red, colour.green, colour.blue});
    const float saturation = high == 0 ? 0 : static_cast<float>(high - low) / static_cast<float>(high);
    const float red = static_cast<float>(high) / 255 * (0.32F + 0.9F * saturation);
    const float green = static_cast<float>(colour.green) / 255 * (0.08F + 0.41F * saturation);
    QColor shown = QColor::fromRgbF(std::min(1.0F, red), green, 0);
    while (contrast(text_on(shown), shown) < least_contrast) {
        shown = shown.darker(115);
    }
    return shown;
}

struct Roles {
    QColor window, text, field, button, disabled, tip, highlight, highlighted;
};

QPalette made_of(const Roles& roles) {
    QPalette palette(roles.window, roles.window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, roles.text);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, roles.disabled);
    }
    palette.setColor(QPalette::PlaceholderText, roles.disabled);
    palette.setColor(QPalette::BrightText, roles.text);
    palette.setColor(QPalette::Base, roles.field);
    palette.setColor(QPalette::AlternateBase, blend(roles.field, roles.window, 0.5F));
    palette.setColor(QPalette::Button, roles.button);
    palette.setColor(QPalette::ToolTipBase, roles.tip);
    palette.setColor(QPalette::Highlight, roles.highlight);
    palette.setColor(QPalette::HighlightedText, roles.highlighted);
    palette.setColor(QPalette::Link, roles.highlight);
    return palette;
}

// A box to tick stands out from its panel by its edge; the style's own edge is darker than the panel, which a dark
// theme does not show.
class Style final : public QProxyStyle {
public:
    Style() : QProxyStyle(QStyleFactory::create("Fusion")) {}
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        const bool round = element == PE_IndicatorRadioButton;
        if ((!round && element != PE_IndicatorCheckBox) || !is_dark(option->palette)) {
            return;
        }
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(muted_text(option->palette));
        const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        round ? painter->drawEllipse(edge) : painter->drawRoundedRect(edge, 2, 2);
        painter->restore();
    }
};

class Recolouring final : public QObject {
public:
    Recolouring(QWidget& widget, std::function<void()> colour) : QObject(&widget), colour_(std::move(colour)) {
        widget.installEventFilter(this);
        colour_();
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::PaletteChange && !colouring_) { // its own too, when the theme has changed
            colouring_ = true;
            colour_();
            colouring_ = false;
        }
        return false;
    }

private:
    std::function<void()> colour_;
    bool colouring_ = false; // which changes the palette in turn
};

constexpr const char* digits_property = "large_digits"; // of the application, which all windows share

double digits_scale() { return qApp->property(digits_property).toBool() ? 1.25 : 1; }

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

double contrast(const QColor& a, const QColor& b) {
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

std::string_view name_of(Theme theme) { return names.at(static_cast<std::size_t>(theme)); }

std::optional<Theme> theme_named(std::string_view name) {
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? std::nullopt
                                : std::optional(themes.at(static_cast<std::size_t>(found - names.begin())));
}

void apply(QApplication& application) {
    QApplication::setStyle(new Style); // the application takes it over
    application.setAttribute(Qt::AA_DontShowIconsInMenus);
    make_figures_accessible();
}

QPalette palette_of(Theme theme) {
    switch (theme) {
    case Theme::system:
        break;
    case Theme::light:
        return made_of({.window = QColor(0xEF, 0xF0, 0xF2),
                        .text = QColor(0x1B, 0x1D, 0x20),
                        .field = Qt::white,
                        .button = QColor(0xE4, 0xE6, 0xE9),
                        .disabled = QColor(0x5C, 0x5F, 0x64),
                        .tip = QColor(0xFF, 0xFB, 0xE0),
                        .highlight = QColor(0x1F, 0x63, 0xA8),
                        .highlighted = Qt::white});
    case Theme::dark:
        return made_of({.window = QColor(0x2b, 0x2d, 0x31),
                        .text = QColor(0xe3, 0xe5, 0xe8),
                        .field = QColor(0x45, 0x48, 0x4e),
                        .button = QColor(0x3a, 0x3d, 0x42),
                        .disabled = QColor(0xB4, 0xB7, 0xBC),
                        .tip = QColor(0x1e, 0x1f, 0x22),
                        .highlight = QColor(0x35, 0x70, 0xAB),
                        .highlighted = Qt::white});
    case Theme::night:
        return made_of({.window = QColor(0x0C, 0x02, 0x02),
                        .text = night_text,
                        .field = QColor(0x26, 0x06, 0x04),
                        .button = QColor(0x1C, 0x05, 0x04),
                        .disabled = QColor(0xC8, 0x68, 0x58),
                        .tip = Qt::black,
                        .highlight = QColor(0x7A, 0x12, 0x08),
                        .highlighted = QColor(0xFF, 0xA0, 0x88)});
    case Theme::high_contrast:
        return made_of({.window = Qt::black,
                        .text = Qt::white,
                        .field = Qt::black,
                        .button = QColor(0x20, 0x20, 0x20),
                        .disabled = QColor(0xA8, 0xA8, 0xA8),
                        .tip = Qt::black,
                        .highlight = QColor(0x00, 0xE5, 0xFF),
                        .highlighted = Qt::black});
    }
    return {};
}

void use(Theme theme) { QApplication::setPalette(palette_of(theme)); }

void use_large_digits(bool large) {
    const double before = digits_scale();
    qApp->setProperty(digits_property, large);
    if (digits_scale() != before) {
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() / before * digits_scale());
        QApplication::setFont(font);
    }
}

QColor to_qt(platform::Colour colour) {
    return is_night() ? at_night(colour) : QColor(colour.red, colour.green, colour.blue);
}

QColor text_on(const QColor& background) {
    const QColor light = is_night() ? night_text : QColor(Qt::white);
    return contrast(Qt::black, background) >= contrast(light, background) ? QColor(Qt::black) : light;
}

QColor wrong_text() { return is_night() ? QColor(0x38, 0x00, 0x00) : QColor(0xB0, 0x00, 0x00); }

void in_each(QWidget& widget, std::function<void()> colour) {
    new Recolouring(widget, std::move(colour)); // the widget's child
}

void mute(QWidget& caption) {
    in_each(caption, [&caption] {
        QPalette palette;
        palette.setColor(QPalette::WindowText, muted_text(QPalette()));
        caption.setPalette(palette);
    });
}

QBrush hatching() { return QBrush(is_night() ? QColor(Qt::black) : QColor(0x60, 0x60, 0x60), Qt::BDiagPattern); }

QColor readable_on(QColor colour, const QColor& background) {
    const QColor towards = text_on(background);
    for (int step = 0; step < 10 && contrast(colour, background) < least_contrast; ++step) {
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
    const QColor text = palette.color(QPalette::WindowText);
    const QColor panel = panel_fill(palette);
    QColor muted = blend(text, panel, 0.3F);
    for (float share = 0.25F; share > 0 && contrast(muted, panel) < least_contrast; share -= 0.05F) {
        muted = blend(text, panel, share);
    }
    return muted;
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
    font.setPointSizeF(points * digits_scale());
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
        palette.setColor(QPalette::Disabled, QPalette::Text,
                         readable_on(blend(text_on(to_qt(*back)), to_qt(*back), 0.45F), to_qt(*back)));
    }
    if (fore) {
        const QColor shown =
            is_night() && fore != back ? readable_on(to_qt(*fore), palette.color(QPalette::Base)) : to_qt(*fore);
        palette.setColor(QPalette::Active, QPalette::Text, shown);
        palette.setColor(QPalette::Inactive, QPalette::Text, shown);
    }
    return palette;
}

} // namespace ecu::desktop::theme
