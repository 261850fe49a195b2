// The strip chart on the screen. It keeps the past (ChartHistory) and draws the enabled channels over a window that
// scrolls with the newest sample. The wheel zooms the time about the pointer (with Shift the height), a drag pans over
// what is held, and either stops the scrolling until go_live(), unless the zoom was about the newest sample. The
// pointer shows a line with time and values in units; a click without a drag belongs to the model, which stamps the
// time.
// Keys: + and - zoom, Left and Right pan, End goes live, Space does what a click does.
// Drawing never holds up the sampling: at most 30 pictures a second, none finer than the screen can show, and each a
// few milliseconds after a sample, when the next message is on the wire.
#pragma once

#include "logging/chart_history.h"
#include "logging/chart_window.h"
#include "platform/strip_chart.h"

#include <qcustomplot.h>

#include <QElapsedTimer>
#include <QTimer>

#include <deque>
#include <optional>

namespace ecu::desktop {

class StripChartWidget final : public QCustomPlot {
public:
    // Takes the chart's samples and stamps for as long as it lives.
    explicit StripChartWidget(platform::StripChart& chart);
    ~StripChartWidget() override;

    void refresh(platform::Property property); // for Binding::bind_custom

    bool is_live() const { return window_.live(); }
    // Whether go_live() would change anything.
    bool is_at_default() const { return window_.at_default(); }
    // Scrolls again, with the window and the height that the model gives.
    void go_live();
    QCPRange shown_range() const { return xAxis->range(); }
    bool save_png(const QString& path); // what is shown, with a legend below, at twice the screen's resolution
    static QString clock_text(double time, int decimals); // the time of day, decimals of the second
    int pictures_drawn() const { return pictures_; }
    bool picture_due() const { return picture_timer_.isActive(); }
    QString reading() const; // time and values at the pointer's line, as plain text; empty without one

    std::function<void()> view_changed; // the user's view of the past: is_live() and is_at_default() may be new

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Stamp {
        double time; // as the history counts
        float height;
        QString text;
    };
    void take(const platform::StripChart::Sample& sample);
    void stamp(const platform::StripChart::Stamp& stamp);
    double newest() const; // time of the last sample or stamp
    void view_moved();
    void zoom(double factor, double about);
    void zoom_height(double factor, double about);
    void pan(double seconds);
    void tell_view();
    void style();
    void schedule_picture();
    void schedule_sample_picture(double sample_before);
    void start_picture_timer(int wait);
    void draw_picture();
    void fill_graphs();
    void place_stamps();
    void place_pointer();
    QString reading_lines(bool rich) const;
    QPixmap draw_legend(double pixel_ratio);

    platform::StripChart& chart_;
    logging::ChartHistory history_;
    std::vector<platform::StripChart::Channel> drawn_as_;
    std::vector<logging::ChartHistory::Point> line_; // kept to spare allocations
    QSharedPointer<QCPAxisTickerText> percent_;
    std::deque<Stamp> stamps_;
    std::vector<QCPItemText*> stamp_texts_;
    std::vector<QCPItemLine*> stamp_lines_;
    QCPItemStraightLine* pointer_line_ = nullptr;
    QCPItemText* hint_ = nullptr;
    QLabel* reading_box_ = nullptr;
    std::optional<double> pointer_x_; // pixels
    double pointer_time_ = 0;
    std::vector<float> pointer_fractions_;
    QTimer picture_timer_;
    QElapsedTimer since_picture_;
    int pictures_ = 0;
    logging::ChartWindow window_;
    bool dragging_ = false;
    std::optional<QPointF> pressed_at_;
    double drag_x_ = 0;
};

} // namespace ecu::desktop
