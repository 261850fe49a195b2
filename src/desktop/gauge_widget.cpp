#include "desktop/gauge_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QEvent>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace ecu::desktop {

using platform::Property;

namespace {

constexpr double settling_ms = 150;
constexpr int frame_ms = 25;
constexpr double least_turn = 0.2; // degrees; a smaller one can't be seen

const QColor ink(0x1c, 0x1e, 0x21);
const QColor zone_a_colour(0xf2, 0xb1, 0x34);
const QColor zone_b_colour(0xd6, 0x30, 0x31);
const QColor needle_colour(0x12, 0x4f, 0x9c);

QFont sized(QFont font, double height, QFont::Weight weight) {
    font.setPixelSize(std::max(1, static_cast<int>(height)));
    font.setWeight(weight);
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
    if (property == Property::value) {
        move_needle();
    } else {
        drop_face();
    }
    const QString text = gauge_text(gauge_.scale(), static_cast<double>(gauge_.value()));
    if (accessibleDescription() != text) {
        setAccessibleDescription(text);
    }
}

void GaugeWidget::move_needle() {
    const auto target = static_cast<double>(gauge_.value());
    const double turn = needle_angle(gauge_.scale(), target) - needle_angle(gauge_.scale(), shown_);
    if (!isVisible() || std::abs(turn) < least_turn) {
        frames_.stop();
        shown_ = target;
        update();
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
    update();
}

void GaugeWidget::drop_face() {
    layout_ = gauge_layout(gauge_.scale(), QSizeF(size()));
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

QPixmap GaugeWidget::draw_face() const {
    QPixmap face(size() * devicePixelRatioF());
    face.setDevicePixelRatio(devicePixelRatioF());
    face.fill(Qt::transparent);
    QPainter painter(&face);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto background = gauge_.back_colour();
    const QColor dial = background ? theme::to_qt(*background) : QColor(0xf4, 0xf5, 0xf7);
    painter.setPen(QPen(theme::panel_edge(palette()).darker(130), layout_.radius * 0.03));
    painter.setBrush(dial);
    painter.drawEllipse(layout_.centre, layout_.radius * 0.985, layout_.radius * 0.985);

    const auto draw_zone = [&](const GaugeLayout::Arc& arc, const QColor& colour) {
        if (arc.span != 0) {
            painter.setPen(QPen(colour, layout_.zone_width, Qt::SolidLine, Qt::FlatCap));
            painter.drawArc(layout_.zone_ring, static_cast<int>(std::lround(arc.start * 16)),
                            static_cast<int>(std::lround(arc.span * 16)));
        }
    };
    draw_zone(layout_.zone_a, zone_a_colour);
    draw_zone(layout_.zone_b, zone_b_colour);
    for (const GaugeLayout::Tick& tick : layout_.ticks) {
        painter.setPen(QPen(ink, layout_.radius * (tick.major ? 0.022 : 0.012), Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(tick.outer, tick.inner);
    }
    painter.setPen(ink);
    painter.setFont(sized(font(), layout_.number_height, QFont::DemiBold));
    for (const GaugeLayout::Number& number : layout_.numbers) {
        const double reach = layout_.radius;
        painter.drawText(QRectF(number.centre.x() - reach, number.centre.y() - reach, 2 * reach, 2 * reach),
                         Qt::AlignCenter, number.text);
    }
    painter.setPen(ink.lighter(190));
    painter.setFont(sized(font(), layout_.caption_height, QFont::Medium));
    painter.drawText(layout_.caption, Qt::AlignCenter, qt(gauge_.text()));
    return face;
}

void GaugeWidget::paintEvent(QPaintEvent*) {
    if (layout_.radius <= 0) {
        return;
    }
    if (face_.isNull()) {
        face_ = draw_face();
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawPixmap(0, 0, face_);
    painter.setPen(ink);
    QFont figures = theme::figure_font(10);
    painter.setFont(sized(figures, layout_.value_height, QFont::Bold));
    painter.drawText(layout_.value, Qt::AlignCenter, gauge_text(gauge_.scale(), static_cast<double>(gauge_.value())));
    const std::vector<QPointF> needle = needle_shape(layout_, needle_angle(gauge_.scale(), shown_));
    painter.setPen(QPen(Qt::white, layout_.radius * 0.01));
    painter.setBrush(needle_colour);
    painter.drawPolygon(needle.data(), static_cast<int>(needle.size()));
    painter.setBrush(ink);
    painter.drawEllipse(layout_.centre, layout_.radius * 0.075, layout_.radius * 0.075);
}

} // namespace ecu::desktop
