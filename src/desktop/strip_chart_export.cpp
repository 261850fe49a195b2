// The strip chart as a picture file: what is shown, with the enabled channels in their colours below.
#include "desktop/strip_chart_widget.h"
#include "logging/chart_channels.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QPainter>

namespace ecu::desktop {

using platform::StripChart;

namespace {

constexpr double picture_ratio = 2;
constexpr int legend_margin = 8;

QString legend_text(const StripChart::Channel& channel) { return QString::fromUtf8("\u25a0 ") + qt(channel.caption); }

} // namespace

// The enabled channels in their colours, in as many columns as fit.
QPixmap StripChartWidget::draw_legend(double pixel_ratio) {
    std::vector<const StripChart::Channel*> enabled;
    const QFontMetrics metrics(font());
    int widest = 1;
    for (const StripChart::Channel& channel : drawn_as_) {
        if (channel.enabled) {
            enabled.push_back(&channel);
            widest = std::max(widest, metrics.horizontalAdvance(legend_text(channel)));
        }
    }
    const int row_height = metrics.height() + 2;
    const int column_width = widest + 2 * legend_margin;
    const int columns = std::max(1, (width() - legend_margin) / column_width);
    const int rows = (static_cast<int>(enabled.size()) + columns - 1) / columns;
    QPixmap strip(QSize(width(), rows * row_height + legend_margin) * pixel_ratio);
    strip.setDevicePixelRatio(pixel_ratio);
    strip.fill(theme::to_qt(logging::chart_paper));
    QPainter painter(&strip);
    painter.setFont(font());
    for (int i = 0; i < static_cast<int>(enabled.size()); ++i) {
        const StripChart::Channel& channel = *enabled[static_cast<std::size_t>(i)];
        painter.setPen(theme::to_qt(channel.colour));
        painter.drawText(QRect(2 * legend_margin + i / rows * column_width, legend_margin / 2 + i % rows * row_height,
                               widest, row_height),
                         Qt::AlignLeft | Qt::AlignVCenter, legend_text(channel));
    }
    return strip;
}

bool StripChartWidget::save_png(const QString& path) {
    draw_picture();
    const QPixmap chart = toPixmap(width(), height(), picture_ratio);
    const QPixmap captions = draw_legend(picture_ratio);
    QPixmap whole(chart.width(), chart.height() + captions.height());
    QPainter painter(&whole);
    for (const auto& [part, top] : {std::pair(&chart, 0), std::pair(&captions, chart.height())}) {
        painter.drawPixmap(QRect(0, top, part->width(), part->height()), *part, part->rect());
    }
    painter.end();
    return whole.save(path, "PNG");
}

} // namespace ecu::desktop
