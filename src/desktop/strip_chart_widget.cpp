#include "desktop/strip_chart_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "logging/chart_channels.h"

#include <QDateTime>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ecu::desktop {

using platform::Property;
using platform::StripChart;

namespace {

constexpr int least_ms_between_pictures = 33;
constexpr int after_sample_ms = 4; // by then the next message is under way
constexpr int no_more_samples_ms = 120;
constexpr std::size_t most_stamps = 200;
constexpr double shortest_window = 0.5; // seconds
constexpr double longest_window = 25 * 3600;
constexpr double zoom_step = 1.25;
constexpr double margin = 0.02; // of full scale, above and below
const QCPRange whole_height(-margin, 1 + margin);
constexpr double least_height = 0.1;
constexpr double most_height = 3;
constexpr double right_edge = 0.01; // of the window: a zoom about it goes on scrolling
constexpr double picture_ratio = 2;
constexpr int legend_margin = 8;
const QColor paper = theme::to_qt(logging::chart_paper);
const QColor paper_grid(0x2c, 0x33, 0x3d);
const QColor paper_ink(0xd8, 0xde, 0xe6);

QString clock_text(double time, int decimals) {
    const QString text = QDateTime::fromMSecsSinceEpoch(std::llround(time * 1000), Qt::UTC).toString("hh:mm:ss.zzz");
    return text.chopped(decimals > 0 ? 3 - decimals : 4);
}

QString legend_text(const StripChart::Channel& channel) { return QString::fromUtf8("\u25a0 ") + qt(channel.caption); }

// The time of day, with as many decimals of the second as the ticks need to differ.
class TimeTicker final : public QCPAxisTickerDateTime {
protected:
    double getTickStep(const QCPRange& range) override {
        const double step = QCPAxisTickerDateTime::getTickStep(range);
        decimals_ = 0;
        for (double part = step; decimals_ < 3 && std::abs(part - std::round(part)) > 1e-6; part *= 10) {
            ++decimals_;
        }
        return step;
    }
    QString getTickLabel(double tick, const QLocale&, QChar, int) override { return clock_text(tick, decimals_); }

private:
    int decimals_ = 0;
};

} // namespace

StripChartWidget::StripChartWidget(StripChart& chart)
    : chart_(chart), history_(chart.channels().size()), percent_(new QCPAxisTickerText),
      live_seconds_(chart.seconds_shown()), model_seconds_(live_seconds_) {
    setMinimumSize(300, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setNoAntialiasingOnDrag(false);
    setNotAntialiasedElements(QCP::aePlottables | QCP::aeGrid | QCP::aeAxes);

    xAxis->setTicker(QSharedPointer<TimeTicker>::create());
    for (int percent = -100; percent <= 200; percent += 10) {
        percent_->addTick(percent / 100.0, QString::number(percent) + "%");
    }
    yAxis->setTicker(percent_);
    yAxis->setRange(whole_height);
    yAxis->setLabel("of full scale");
    xAxis2->setVisible(true);
    yAxis2->setVisible(true);
    for (QCPAxis* axis : {xAxis2, yAxis2}) {
        axis->setTicks(false);
        axis->setTickLabels(false);
    }
    for (std::size_t i = 0; i < chart_.channels().size(); ++i) {
        addGraph()->setAdaptiveSampling(false); // the lines come thinned out already
    }

    addLayer("pointer", layer("overlay"), QCustomPlot::limAbove);
    layer("pointer")->setMode(QCPLayer::lmBuffered); // moves without drawing the lines again
    pointer_line_ = new QCPItemStraightLine(this);
    pointer_line_->setLayer("pointer");
    pointer_line_->setPen(QPen(paper_ink, 1, Qt::DashLine));
    pointer_line_->setVisible(false);
    hint_ = new QCPItemText(this);
    hint_->position->setType(QCPItemPosition::ptAxisRectRatio);
    hint_->position->setCoords(0.5, 0.5);
    hint_->setColor(paper_ink);
    hint_->setVisible(false);
    reading_box_ = new QLabel(this);
    reading_box_->setAttribute(Qt::WA_TransparentForMouseEvents);
    reading_box_->setTextFormat(Qt::RichText);
    reading_box_->setStyleSheet("background: rgba(10, 13, 17, 215); color: #d8dee6; border: 1px solid #48525f;"
                                "border-radius: 4px; padding: 4px 6px;");
    reading_box_->hide();

    picture_timer_.setSingleShot(true);
    QObject::connect(&picture_timer_, &QTimer::timeout, this, [this] { draw_picture(); });
    since_picture_.start();
    style();
    chart_.on_sample = [this](const StripChart::Sample& sample) { take(sample); };
    chart_.on_stamp = [this](const StripChart::Stamp& given) { stamp(given); };
}

StripChartWidget::~StripChartWidget() {
    chart_.on_sample = nullptr;
    chart_.on_stamp = nullptr;
}

// -- What comes in

void StripChartWidget::take(const StripChart::Sample& sample) {
    // A few samples missing is the link's doing; longer than that nobody was recording.
    const double gap = std::max(2.0, chart_.seconds_shown() / 100);
    const double before = history_.last();
    history_.add(sample.time, sample.fractions, gap);
    if (isVisible()) {
        schedule_sample_picture(before);
    }
}

void StripChartWidget::stamp(const StripChart::Stamp& stamp) {
    stamps_.push_back({history_.continued(stamp.time), stamp.height, qt(stamp.text)});
    if (stamps_.size() > most_stamps) {
        stamps_.pop_front();
    }
    schedule_picture();
}

double StripChartWidget::newest() const {
    return stamps_.empty() ? history_.last() : std::max(history_.last(), stamps_.back().time);
}

void StripChartWidget::refresh(Property) {
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        const StripChart::Channel& now = chart_.channels()[i];
        if (now.span != drawn_as_[i].span || now.offset != drawn_as_[i].offset) {
            history_.clear(); // two scales on one paper would mislead
            stamps_.clear();
            live_ = true;
            break;
        }
    }
    if (model_seconds_ != chart_.seconds_shown()) {
        model_seconds_ = chart_.seconds_shown();
        live_seconds_ = model_seconds_;
    }
    tell_view();
    drawn_as_ = chart_.channels();
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        QCPGraph* line = graph(static_cast<int>(i));
        line->setPen(QPen(theme::to_qt(drawn_as_[i].colour), 1.0));
        line->setVisible(drawn_as_[i].enabled);
    }
    schedule_picture();
}

void StripChartWidget::set_hint(const QString& text) {
    hint_->setText(text);
    hint_->setVisible(!text.isEmpty());
    schedule_picture();
}

// -- When to draw

void StripChartWidget::schedule_picture() {
    start_picture_timer(std::max(1, least_ms_between_pictures - static_cast<int>(since_picture_.elapsed())));
}

void StripChartWidget::schedule_sample_picture(double sample_before) {
    if (!live_ && xAxis->range().upper < sample_before) {
        return; // what is shown does not change
    }
    // Not before the pen has moved by a pixel; the next sample looks again, and a timer serves the last one.
    const double seconds_per_pixel = xAxis->range().size() / std::max(1, xAxis->axisRect()->width());
    const int least = std::max(least_ms_between_pictures, static_cast<int>(seconds_per_pixel * 1000));
    const auto since = static_cast<int>(since_picture_.elapsed());
    if (since >= least) {
        start_picture_timer(after_sample_ms);
    } else if (!picture_timer_.isActive()) {
        start_picture_timer(std::max(no_more_samples_ms, least - since));
    }
}

void StripChartWidget::start_picture_timer(int wait) {
    if (!picture_timer_.isActive() || picture_timer_.remainingTime() > wait) {
        picture_timer_.start(wait);
    }
}

void StripChartWidget::draw_picture() {
    picture_timer_.stop();
    if (!isVisible()) {
        return;
    }
    since_picture_.restart();
    ++pictures_;
    if (live_) {
        xAxis->setRange(newest() - live_seconds_, newest());
    }
    fill_graphs();
    place_stamps();
    place_pointer();
    replot(QCustomPlot::rpQueuedRefresh);
}

void StripChartWidget::fill_graphs() {
    const QCPRange shown = xAxis->range();
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        if (!drawn_as_[i].enabled) {
            continue;
        }
        history_.line(i, shown.lower, shown.upper, xAxis->axisRect()->width(), line_);
        QVector<QCPGraphData> points(static_cast<qsizetype>(line_.size()));
        std::ranges::transform(line_, points.begin(), [](const logging::ChartHistory::Point& point) {
            return QCPGraphData(point.time, static_cast<double>(point.fraction));
        });
        graph(static_cast<int>(i))->data()->set(points, true);
    }
}

void StripChartWidget::place_stamps() {
    while (stamp_texts_.size() < stamps_.size()) {
        auto* text = new QCPItemText(this);
        text->setColor(paper_ink);
        text->setPositionAlignment(Qt::AlignRight | Qt::AlignBottom);
        text->setPadding(QMargins(3, 1, 3, 1));
        text->setBrush(QColor(0x12, 0x16, 0x1c, 190));
        stamp_texts_.push_back(text);
        auto* line = new QCPItemLine(this);
        line->setPen(QPen(paper_ink, 1, Qt::DotLine));
        stamp_lines_.push_back(line);
    }
    for (std::size_t i = 0; i < stamp_texts_.size(); ++i) {
        const bool shown = i < stamps_.size() && xAxis->range().contains(stamps_[i].time);
        stamp_texts_[i]->setVisible(shown);
        stamp_lines_[i]->setVisible(shown);
        if (shown) {
            stamp_texts_[i]->setText(stamps_[i].text);
            stamp_texts_[i]->position->setCoords(stamps_[i].time, static_cast<double>(stamps_[i].height));
            stamp_lines_[i]->start->setCoords(stamps_[i].time, 0);
            stamp_lines_[i]->end->setCoords(stamps_[i].time, 1);
        }
    }
}

// -- The pointer's line and its reading

void StripChartWidget::place_pointer() {
    pointer_fractions_.clear();
    if (pointer_x_ && !dragging_) {
        pointer_fractions_ = history_.nearest(xAxis->pixelToCoord(*pointer_x_), pointer_time_);
    }
    const bool shown = !pointer_fractions_.empty() && xAxis->range().contains(pointer_time_);
    pointer_line_->setVisible(shown);
    reading_box_->setVisible(shown);
    if (!shown) {
        pointer_fractions_.clear();
        return;
    }
    pointer_line_->point1->setCoords(pointer_time_, 0);
    pointer_line_->point2->setCoords(pointer_time_, 1);
    reading_box_->setText(reading_lines(true));
    reading_box_->adjustSize();
    const QRect area = axisRect()->rect();
    const int at = static_cast<int>(xAxis->coordToPixel(pointer_time_));
    const bool on_the_left = at + 14 + reading_box_->width() > area.right();
    reading_box_->move(on_the_left ? std::max(area.left(), at - 14 - reading_box_->width()) : at + 14, area.top() + 8);
}

QString StripChartWidget::reading_lines(bool rich) const {
    QString lines =
        rich ? "<b>" + clock_text(pointer_time_, 2) + "</b><table cellspacing='0'>" : clock_text(pointer_time_, 2);
    const QString row = rich ? QStringLiteral("<tr><td style='color:%4'>\u25a0 %1&nbsp;&nbsp;</td>"
                                              "<td align='right'>%2</td><td>&nbsp;%3</td></tr>")
                             : QStringLiteral("\n%1 %2 %3");
    for (std::size_t i = 0; i < pointer_fractions_.size(); ++i) {
        const StripChart::Channel& channel = drawn_as_[i];
        if (channel.enabled) {
            const double value = static_cast<double>(channel.offset) +
                                 static_cast<double>(pointer_fractions_[i]) * static_cast<double>(channel.span);
            const QString text =
                row.arg(qt(channel.name()), QString::number(value, 'f', channel.decimals), qt(channel.unit));
            lines += rich ? text.arg(theme::to_qt(channel.colour).name()) : text;
        }
    }
    return rich ? lines + "</table>" : lines;
}

QString StripChartWidget::reading() const { return pointer_fractions_.empty() ? QString() : reading_lines(false); }

// -- The window over time

void StripChartWidget::tell_view() {
    if (view_changed) {
        view_changed();
    }
}

bool StripChartWidget::is_at_default() const {
    return live_ && live_seconds_ == model_seconds_ && yAxis->range() == whole_height;
}

void StripChartWidget::go_live() {
    yAxis->setRange(whole_height);
    live_ = true;
    live_seconds_ = model_seconds_;
    show_range(newest() - live_seconds_, newest());
}

void StripChartWidget::show_range(double from, double to) {
    xAxis->setRange(from, to);
    tell_view();
    schedule_picture();
}

void StripChartWidget::zoom(double factor, double about) {
    if (history_.empty()) {
        return;
    }
    const QCPRange now = xAxis->range();
    const double width = std::clamp(now.size() * factor, shortest_window, longest_window);
    if (live_ && now.upper - about <= now.size() * right_edge) {
        live_seconds_ = width;
        show_range(now.upper - width, now.upper);
        return;
    }
    live_ = false;
    const double from = about - (about - now.lower) * width / now.size();
    show_range(from, from + width);
}

void StripChartWidget::zoom_height(double factor, double about) {
    const QCPRange now = yAxis->range();
    const double height = std::clamp(now.size() * factor, least_height, most_height);
    const double from = about - (about - now.lower) * height / now.size();
    yAxis->setRange(from, from + height);
    tell_view();
    schedule_picture();
}

// Half of the window at most may lie before the first sample or after the last one.
void StripChartWidget::pan(double seconds) {
    if (history_.empty()) {
        return;
    }
    live_ = false;
    const double width = xAxis->range().size();
    const double from = std::clamp(xAxis->range().lower + seconds, history_.first() - width / 2,
                                   std::max(history_.first() - width / 2, history_.last() - width / 2));
    show_range(from, from + width);
}

// -- The user

void StripChartWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        pressed_at_ = event->position();
        drag_x_ = event->position().x();
    }
}

void StripChartWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (pressed_at_ && !dragging_ && std::abs(at.x() - pressed_at_->x()) >= QApplication::startDragDistance()) {
        dragging_ = true;
        setCursor(Qt::ClosedHandCursor);
    }
    if (dragging_) {
        pan(xAxis->pixelToCoord(drag_x_) - xAxis->pixelToCoord(at.x()));
        drag_x_ = at.x();
    }
    pointer_x_ = axisRect()->rect().contains(at.toPoint()) ? std::optional(at.x()) : std::nullopt;
    place_pointer();
    layer("pointer")->replot();
}

void StripChartWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_at_) {
        return;
    }
    pressed_at_.reset();
    if (dragging_) {
        dragging_ = false;
        unsetCursor();
    } else if (chart_.clicked) {
        chart_.clicked();
    }
}

void StripChartWidget::wheelEvent(QWheelEvent* event) {
    const QPoint turn = event->angleDelta();
    const int eighths = turn.y() != 0 ? turn.y() : turn.x();
    const double factor = std::pow(zoom_step, -eighths / 120.0);
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        zoom_height(factor, yAxis->pixelToCoord(event->position().y()));
    } else {
        zoom(factor,
             std::clamp(xAxis->pixelToCoord(event->position().x()), xAxis->range().lower, xAxis->range().upper));
    }
    event->accept();
}

void StripChartWidget::keyPressEvent(QKeyEvent* event) {
    const QCPRange now = xAxis->range();
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoom(1 / zoom_step, live_ ? now.upper : now.center());
        break;
    case Qt::Key_Minus:
        zoom(zoom_step, live_ ? now.upper : now.center());
        break;
    case Qt::Key_Left:
        pan(-now.size() / 10);
        break;
    case Qt::Key_Right:
        pan(now.size() / 10);
        break;
    case Qt::Key_End:
        go_live();
        break;
    case Qt::Key_Space:
        if (chart_.clicked) {
            chart_.clicked();
        }
        break;
    default:
        QCustomPlot::keyPressEvent(event);
    }
}

void StripChartWidget::leaveEvent(QEvent* event) {
    pointer_x_.reset();
    place_pointer();
    layer("pointer")->replot();
    QCustomPlot::leaveEvent(event);
}

// -- Looks

void StripChartWidget::style() {
    const QColor text = palette().color(QPalette::WindowText);
    setBackground(QBrush(palette().color(QPalette::Window)));
    axisRect()->setBackground(QBrush(paper));
    for (QCPAxis* axis : {xAxis, yAxis, xAxis2, yAxis2}) {
        axis->setBasePen(QPen(theme::panel_edge(palette())));
        axis->setTickPen(QPen(theme::muted_text(palette())));
        axis->setSubTickPen(QPen(theme::muted_text(palette())));
        axis->setTickLabelColor(text);
        axis->setLabelColor(theme::muted_text(palette()));
        axis->setTickLabelFont(font());
        axis->setLabelFont(font());
        axis->grid()->setPen(QPen(paper_grid, 1));
        axis->grid()->setZeroLinePen(QPen(paper_grid, 1));
    }
    hint_->setFont(font());
}

void StripChartWidget::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if ((event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) && hint_ != nullptr) {
        style();
        schedule_picture();
    }
}

void StripChartWidget::showEvent(QShowEvent* event) {
    QCustomPlot::showEvent(event);
    draw_picture();
}

void StripChartWidget::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    schedule_picture();
}

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
    strip.fill(paper);
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
