#include "desktop/gauge_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ecu::desktop {

using platform::Property;

namespace {

constexpr double settling_ms = 150;
constexpr int frame_ms = 33;
constexpr double least_move = 0.5; // pixels of the needle's tip; a smaller one can't be seen
constexpr double degree = std::numbers::pi / 180;

const QColor face_ink(0x1c, 0x1e, 0x21);
constexpr platform::Colour caption_ink{0x35, 0x39, 0x3f};
constexpr platform::Colour usual_dial{0xf4, 0xf5, 0xf7};
constexpr platform::Colour zone_a_colour{0xf2, 0xb1, 0x34};
constexpr platform::Colour zone_b_colour{0xd6, 0x30, 0x31};
constexpr platform::Colour needle_colour{0x12, 0x4f, 0x9c};

QFont sized(QFont font, double height, QFont::Weight weight) {
    font.setPixelSize(std::max(1, static_cast<int>(height)));
    font.setWeight(weight);
    return font;
}

// Smaller where the text would reach out of its area.
QFont fitted(QFont font, const QString& text, const QRectF& area) {
    const QFontMetricsF metrics(font);
    const QStringList lines = text.split('\n');
    double share =
        area.height() / (metrics.capHeight() + metrics.lineSpacing() * static_cast<double>(lines.size() - 1));
    for (const QString& line : lines) {
        share = std::min(share, area.width() / std::max(1.0, metrics.horizontalAdvance(line)));
    }
    if (share < 1) {
        font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * share)));
    }
    return font;
}

} // namespace

GaugeWidget::GaugeWidget(platform::Gauge& gauge) : gauge_(gauge) {
    setMinimumSize(96, 96);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    frames_.setInterval(frame_ms);
    QObject::connect(&frames_, &QTimer::timeout, this, [this] { step(); });
}

void GaugeWidget::refresh(Property property) {
    const QString text = gauge_text(gauge_.scale(), static_cast<double>(gauge_.value()));
    if (text_ != text) {
        text_ = text;
        setAccessibleDescription(
            (text + ' ' + qt(gauge_.spoken_unit.empty() ? gauge_.unit : gauge_.spoken_unit)).trimmed());
        const int beside = static_cast<int>(layout_.value_height * 0.1) + 2; // some digits reach over the line
        update(layout_.value.toAlignedRect().adjusted(-beside, -beside, beside, beside));
    }
    if (property == Property::value) {
        move_needle();
    } else {
        drop_face();
    }
}

void GaugeWidget::move_needle() {
    if (!isVisible()) {
        frames_.stop();
        shown_ = static_cast<double>(gauge_.value());
        turn_needle();
        return;
    }
    // From where the needle is now, also when it was still under way: it never lags more than one settling time.
    from_ = shown_;
    moving_since_.start();
    if (!frames_.isActive()) {
        frames_.start();
    }
}

void GaugeWidget::step() {
    const auto target = static_cast<double>(gauge_.value());
    const double share = std::min(1.0, static_cast<double>(moving_since_.elapsed()) / settling_ms);
    const double eased = 1 - (1 - share) * (1 - share);
    shown_ = share >= 1 ? target : from_ + (target - from_) * eased;
    if (share >= 1) {
        frames_.stop();
    }
    turn_needle();
}

void GaugeWidget::turn_needle() {
    const double angle = needle_angle(gauge_.scale(), shown_);
    const double moved = std::abs(angle - angle_) * degree * layout_.radius;
    if (moved >= least_move || (moved > 0 && !frames_.isActive())) {
        update(needle_area());
        angle_ = angle;
        update(needle_area());
    }
}

QRect GaugeWidget::needle_area() const {
    const std::vector<QPointF> needle = needle_shape(layout_, angle_);
    return QPolygonF(QList<QPointF>(needle.begin(), needle.end()))
        .boundingRect()
        .toAlignedRect()
        .adjusted(-2, -2, 2, 2);
}

void GaugeWidget::drop_face() {
    layout_ = gauge_layout(gauge_.scale(), QSizeF(size()));
    angle_ = needle_angle(gauge_.scale(), shown_);
    face_ = {};
    update();
}

void GaugeWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    drop_face();
}

void GaugeWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        drop_face();
    }
}

QColor GaugeWidget::dial() const { return theme::to_qt(gauge_.back_colour().value_or(usual_dial)); }

QPixmap GaugeWidget::draw_face() const {
    QPixmap face(size() * devicePixelRatioF());
    face.setDevicePixelRatio(devicePixelRatioF());
    face.fill(Qt::transparent);
    QPainter painter(&face);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = theme::readable_on(face_ink, dial());
    painter.setPen(QPen(theme::panel_edge(palette()).darker(130), layout_.radius * 0.03));
    painter.setBrush(dial());
    painter.drawEllipse(layout_.centre, layout_.radius * 0.985, layout_.radius * 0.985);

    const auto draw_zone = [&](const GaugeLayout::Arc& arc, const QColor& colour) {
        if (arc.span != 0) {
            painter.setPen(QPen(colour, layout_.zone_width, Qt::SolidLine, Qt::FlatCap));
            painter.drawArc(layout_.zone_ring, static_cast<int>(std::lround(arc.start * 16)),
                            static_cast<int>(std::lround(arc.span * 16)));
        }
    };
    draw_zone(layout_.zone_a, theme::to_qt(zone_a_colour));
    draw_zone(layout_.zone_b, theme::to_qt(zone_b_colour));
    for (const GaugeLayout::Tick& tick : layout_.ticks) {
        painter.setPen(QPen(ink, layout_.radius * (tick.major ? 0.022 : 0.012), Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(tick.outer, tick.inner);
    }
    painter.setPen(ink);
    QFont numbers = sized(font(), layout_.number_height, QFont::DemiBold);
    for (const GaugeLayout::Number& number : layout_.numbers) {
        numbers = fitted(numbers, number.text, number.area); // all alike
    }
    painter.setFont(numbers);
    for (const GaugeLayout::Number& number : layout_.numbers) {
        painter.drawText(number.area, Qt::AlignCenter | Qt::TextDontClip, number.text);
    }
    painter.setPen(theme::readable_on(theme::to_qt(caption_ink), dial()));
    const QString caption = gauge_.unit.empty() ? qt(gauge_.text()) : qt(gauge_.text()) + '\n' + qt(gauge_.unit);
    painter.setFont(fitted(sized(font(), layout_.caption_height, QFont::Medium), caption, layout_.caption));
    painter.drawText(layout_.caption, Qt::AlignCenter | Qt::TextDontClip, caption);
    return face;
}

void GaugeWidget::paintEvent(QPaintEvent*) {
    if (layout_.radius <= 0) {
        return;
    }
    if (face_.isNull() || face_.devicePixelRatio() != devicePixelRatioF()) {
        face_ = draw_face();
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawPixmap(0, 0, face_);
    const QColor ink = theme::readable_on(face_ink, dial());
    painter.setPen(ink);
    const QFont figures = sized(theme::figure_font(10), layout_.value_height, QFont::Bold);
    painter.setFont(fitted(figures, text_, layout_.value));
    painter.drawText(layout_.value, Qt::AlignCenter | Qt::TextDontClip, text_);
    const std::vector<QPointF> needle = needle_shape(layout_, angle_);
    painter.setPen(QPen(dial(), layout_.radius * 0.01));
    painter.setBrush(theme::readable_on(theme::to_qt(needle_colour), dial()));
    painter.drawPolygon(needle.data(), static_cast<int>(needle.size()));
    painter.setBrush(ink);
    painter.drawEllipse(layout_.centre, layout_.radius * 0.075, layout_.radius * 0.075);
}

} // namespace ecu::desktop
