#include "desktop/strip_chart_widget.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "logging/chart_channels.h"

#include <QDateTime>
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
constexpr double shortest_window = 0.5; // seconds
constexpr double longest_window = 25 * 3600;
constexpr double zoom_step = 1.25;
constexpr double margin = 0.02; // of full scale, above and below
const QColor paper = theme::to_qt(logging::chart_paper);
const QColor paper_grid(0x2c, 0x33, 0x3d);
const QColor paper_ink(0xd8, 0xde, 0xe6);

QString clock_text(double time) {
    return QDateTime::fromMSecsSinceEpoch(std::llround(time * 1000), Qt::UTC).toString("hh:mm:ss.zzz").chopped(1);
}

} // namespace

StripChartWidget::StripChartWidget(StripChart& chart)
    : chart_(chart), history_(chart.channels().size()), percent_(new QCPAxisTickerText) {
    setMinimumSize(300, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setNoAntialiasingOnDrag(false);
    setNotAntialiasedElements(QCP::aePlottables | QCP::aeGrid | QCP::aeAxes);

    QSharedPointer<QCPAxisTickerDateTime> time_of_day(new QCPAxisTickerDateTime);
    time_of_day->setDateTimeSpec(Qt::UTC);
    time_of_day->setDateTimeFormat("hh:mm:ss");
    xAxis->setTicker(time_of_day);
    for (int percent = -100; percent <= 200; percent += 10) {
        percent_->addTick(percent / 100.0, QString::number(percent) + "%");
    }
    yAxis->setTicker(percent_);
    yAxis->setRange(-margin, 1 + margin);
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
    chart_.on_stamp = [this](std::string_view text, float height) { stamp(text, height); };
    show_range(-chart_.seconds_shown(), 0);
}

StripChartWidget::~StripChartWidget() {
    chart_.on_sample = nullptr;
    chart_.on_stamp = nullptr;
}

// -- What comes in

void StripChartWidget::take(const StripChart::Sample& sample) {
    // A few samples missing is the link's doing; longer than that nobody was recording.
    const double gap = std::max(2.0, chart_.seconds_shown() / 100);
    history_.add(sample.time, sample.fractions, gap);
    if (isVisible()) {
        schedule_picture(true);
    }
}

void StripChartWidget::stamp(std::string_view text, float height) {
    stamps_.push_back({history_.last(), height, qt(text)});
    if (stamps_.size() > most_stamps) {
        stamps_.pop_front();
    }
    schedule_picture(false);
}

void StripChartWidget::refresh(Property) {
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        const StripChart::Channel& now = chart_.channels()[i];
        if (now.span != drawn_as_[i].span || now.offset != drawn_as_[i].offset) {
            history_.clear(); // two scales on one paper would mislead
            stamps_.clear();
            break;
        }
    }
    drawn_as_ = chart_.channels();
    for (std::size_t i = 0; i < drawn_as_.size(); ++i) {
        QCPGraph* line = graph(static_cast<int>(i));
        line->setPen(QPen(theme::to_qt(drawn_as_[i].colour), 1.0));
        line->setVisible(drawn_as_[i].enabled);
    }
    schedule_picture(false);
}

void StripChartWidget::set_hint(const QString& text) {
    hint_->setText(text);
    hint_->setVisible(!text.isEmpty());
    schedule_picture(false);
}

// -- When to draw

void StripChartWidget::schedule_picture(bool fresh_sample) {
    const auto since = static_cast<int>(since_picture_.elapsed());
    int wait = after_sample_ms;
    if (fresh_sample && live_) {
        // Not before the pen has moved by a pixel; the next sample looks again, and a timer serves the last one.
        const double seconds_per_pixel = xAxis->range().size() / std::max(1, xAxis->axisRect()->width());
        const int least = std::max(least_ms_between_pictures, static_cast<int>(seconds_per_pixel * 1000));
        if (since < least) {
            wait = std::max(no_more_samples_ms, least - since);
            if (picture_timer_.isActive()) {
                return;
            }
        }
    } else if (fresh_sample) {
        return; // what is shown does not change
    } else {
        wait = std::max(1, least_ms_between_pictures - since);
    }
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
        xAxis->setRange(history_.last() - chart_.seconds_shown(), history_.last());
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
        rich ? "<b>" + clock_text(pointer_time_) + "</b><table cellspacing='0'>" : clock_text(pointer_time_);
    const QString row = rich ? QStringLiteral("<tr><td style='color:%4'>\u25a0 %1&nbsp;&nbsp;</td>"
                                              "<td align='right'>%2</td><td>&nbsp;%3</td></tr>")
                             : QStringLiteral("\n%1 %2 %3");
    for (std::size_t i = 0; i < pointer_fractions_.size(); ++i) {
        const StripChart::Channel& channel = drawn_as_[i];
        if (channel.enabled) {
            const double value = static_cast<double>(channel.offset) +
                                 static_cast<double>(pointer_fractions_[i]) * static_cast<double>(channel.span);
            const QString text =
                row.arg(qt(channel.caption), QString::number(value, 'f', channel.decimals), qt(channel.unit));
            lines += rich ? text.arg(theme::to_qt(channel.colour).name()) : text;
        }
    }
    return rich ? lines + "</table>" : lines;
}

QString StripChartWidget::reading() const { return pointer_fractions_.empty() ? QString() : reading_lines(false); }

// -- The window over time

void StripChartWidget::set_live(bool live) {
    if (live_ != live) {
        live_ = live;
        if (live_changed) {
            live_changed();
        }
    }
}

void StripChartWidget::go_live() {
    yAxis->setRange(-margin, 1 + margin);
    set_live(true);
    show_range(history_.last() - chart_.seconds_shown(), history_.last());
}

void StripChartWidget::show_range(double from, double to) {
    xAxis->setRange(from, to);
    schedule_picture(false);
}

void StripChartWidget::zoom(double factor, double about) {
    set_live(false);
    const QCPRange now = xAxis->range();
    const double width = std::clamp(now.size() * factor, shortest_window, longest_window);
    const double from = about - (about - now.lower) * width / now.size();
    show_range(from, from + width);
}

// Half of the window at most may lie before the first sample or after the last one.
void StripChartWidget::pan(double seconds) {
    set_live(false);
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
        const double about = yAxis->pixelToCoord(event->position().y());
        const QCPRange now = yAxis->range();
        const double height = std::clamp(now.size() * factor, 0.1, 3.0);
        const double from = about - (about - now.lower) * height / now.size();
        yAxis->setRange(from, from + height);
        schedule_picture(false);
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
        schedule_picture(false);
    }
}

void StripChartWidget::showEvent(QShowEvent* event) {
    QCustomPlot::showEvent(event);
    draw_picture();
}

void StripChartWidget::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    schedule_picture(false);
}

bool StripChartWidget::save_png(const QString& path) {
    draw_picture();
    return savePng(path, width(), height(), 2.0);
}

} // namespace ecu::desktop
