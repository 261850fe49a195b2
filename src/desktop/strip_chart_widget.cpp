#include "desktop/strip_chart_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "logging/chart_channels.h"

#include <QLabel>

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
constexpr platform::Colour paper_grid{0x2c, 0x33, 0x3d};
constexpr platform::Colour paper_ink{0xd8, 0xde, 0xe6};

QColor ink() { return theme::readable_on(theme::to_qt(paper_ink), theme::to_qt(logging::chart_paper)); }

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
    QString getTickLabel(double tick, const QLocale&, QChar, int) override {
        return StripChartWidget::clock_text(tick, decimals_);
    }

private:
    int decimals_ = 0;
};

} // namespace

StripChartWidget::StripChartWidget(StripChart& chart)
    : chart_(chart), history_(chart.channels().size()), percent_(new QCPAxisTickerText),
      window_(chart.seconds_shown()) {
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
    yAxis->setRange(window_.heights().from, window_.heights().to);
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
    pointer_line_->setVisible(false);
    hint_ = new QCPItemText(this);
    hint_->position->setType(QCPItemPosition::ptAxisRectRatio);
    hint_->position->setCoords(0.5, 0.5);
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
    chart_.save_picture = [this](const std::string& path) { return save_png(qt(path)); };
}

StripChartWidget::~StripChartWidget() {
    chart_.on_sample = nullptr;
    chart_.on_stamp = nullptr;
    chart_.save_picture = nullptr;
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
            window_.hold_nothing();
            break;
        }
    }
    window_.set_model_seconds(chart_.seconds_shown());
    hint_->setText(qt(chart_.hint()));
    hint_->setVisible(!chart_.hint().empty());
    tell_view();
    drawn_as_ = chart_.channels();
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        QCPGraph* line = graph(static_cast<int>(i));
        line->setPen(QPen(theme::to_qt(drawn_as_[i].colour), 1.0));
        line->setVisible(drawn_as_[i].enabled);
    }
    schedule_picture();
}

// -- When to draw

void StripChartWidget::schedule_picture() {
    start_picture_timer(std::max(1, least_ms_between_pictures - static_cast<int>(since_picture_.elapsed())));
}

void StripChartWidget::schedule_sample_picture(double sample_before) {
    if (!is_live() && xAxis->range().upper < sample_before) {
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
    window_.follow(newest());
    xAxis->setRange(window_.times().from, window_.times().to);
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
        text->setColor(ink());
        text->setPositionAlignment(Qt::AlignRight | Qt::AlignBottom);
        text->setPadding(QMargins(3, 1, 3, 1));
        text->setBrush(QColor(0x12, 0x16, 0x1c, 190));
        stamp_texts_.push_back(text);
        auto* line = new QCPItemLine(this);
        line->setPen(QPen(ink(), 1, Qt::DotLine));
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

// -- Looks

void StripChartWidget::style() {
    const QColor text = palette().color(QPalette::WindowText);
    setBackground(QBrush(palette().color(QPalette::Window)));
    axisRect()->setBackground(QBrush(theme::to_qt(logging::chart_paper)));
    for (QCPAxis* axis : {xAxis, yAxis, xAxis2, yAxis2}) {
        axis->setBasePen(QPen(theme::panel_edge(palette())));
        axis->setTickPen(QPen(theme::muted_text(palette())));
        axis->setSubTickPen(QPen(theme::muted_text(palette())));
        axis->setTickLabelColor(text);
        axis->setLabelColor(theme::muted_text(palette()));
        axis->setTickLabelFont(font());
        axis->setLabelFont(font());
        axis->grid()->setPen(QPen(theme::to_qt(paper_grid), 1));
        axis->grid()->setZeroLinePen(QPen(theme::to_qt(paper_grid), 1));
    }
    hint_->setFont(font());
    hint_->setColor(ink());
    pointer_line_->setPen(QPen(ink(), 1, Qt::DashLine));
    for (QCPItemText* stamp : stamp_texts_) {
        stamp->setColor(ink());
    }
    for (QCPItemLine* line : stamp_lines_) {
        line->setPen(QPen(ink(), 1, Qt::DotLine));
    }
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

} // namespace ecu::desktop
