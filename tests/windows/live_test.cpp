#include "desktop/gauge_widget.h"
#include "desktop/strip_chart_widget.h"
#include "desktop/windows/windows.h"
#include "logging/frm_plotter.h"
#include "views/frm_dashboard.h"
#include "windows/window_bench.h"

#include <QCheckBox>
#include <QDir>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>

#include <cmath>

namespace ecu::desktop {
namespace {

using platform::Gauge;

TEST(GaugeLayout, TurnsFromLowerLeftToLowerRightAndHoldsTheNeedleAtItsEnds) {
    const Gauge::Scale scale{
        .minimum = -20, .full_scale = 140, .tick_step = 20, .zone_a_start = 100, .zone_b_start = 120};
    EXPECT_DOUBLE_EQ(needle_angle(scale, -20), 225);
    EXPECT_DOUBLE_EQ(needle_angle(scale, 60), 90);
    EXPECT_DOUBLE_EQ(needle_angle(scale, 140), -45);
    EXPECT_DOUBLE_EQ(needle_angle(scale, 1e9), -49);
    EXPECT_DOUBLE_EQ(needle_angle(scale, -40), 229);
    EXPECT_DOUBLE_EQ(needle_angle(scale, std::nan("")), 225);
    const GaugeLayout layout = gauge_layout(scale, {400, 300});
    EXPECT_EQ(layout.centre, QPointF(200, 150));
    ASSERT_EQ(layout.numbers.size(), 9U);
    EXPECT_EQ(layout.numbers.front().text, "-20");
    EXPECT_EQ(layout.numbers.back().text, "140");
    EXPECT_NEAR(layout.zone_a.start, 22.5, 1e-9);
    EXPECT_NEAR(layout.zone_a.span, -33.75, 1e-9);
    EXPECT_NEAR(layout.zone_b.span, -33.75, 1e-9);
    for (const GaugeLayout::Tick& tick : layout.ticks) {
        EXPECT_LE(QLineF(layout.centre, tick.outer).length(), layout.radius);
    }
}

TEST(GaugeLayout, KeepsItsTextsApartAndInsideTheTicksHoweverLongTheNumbers) {
    for (const Gauge::Scale& scale : std::vector<Gauge::Scale>{{.full_scale = 100, .tick_step = 20},
                                                               {.minimum = -20, .full_scale = 120, .tick_step = 20},
                                                               {.minimum = -20, .full_scale = 60, .tick_step = 10},
                                                               {.full_scale = 4, .tick_step = 0.5F},
                                                               {.full_scale = 650, .tick_step = 65},
                                                               {.full_scale = 10.8F, .tick_step = 1},
                                                               {.full_scale = 50000, .tick_step = 4}}) {
        const GaugeLayout layout = gauge_layout(scale, {200, 200});
        std::vector<QRectF> areas{layout.value, layout.caption};
        for (const GaugeLayout::Number& number : layout.numbers) {
            areas.push_back(number.area);
        }
        for (std::size_t i = 0; i < areas.size(); ++i) {
            for (const QPointF corner : {areas[i].topLeft(), areas[i].bottomLeft(), areas[i].bottomRight()}) {
                EXPECT_LT(QLineF(layout.centre, corner).length(), layout.radius * (i == 0 ? 0.94 : 0.82)) << i;
            }
            for (std::size_t other = 0; other < i; ++other) {
                EXPECT_FALSE(areas[i].intersects(areas[other])) << scale.full_scale << ": " << i << " on " << other;
            }
        }
        EXPECT_GT(layout.value_height, layout.radius * 0.2) << scale.full_scale; // still read from two metres
    }
    EXPECT_EQ(gauge_layout({.full_scale = 120, .tick_step = 12, .zone_a_start = 0, .zone_b_start = 110}, {200, 200})
                  .zone_a.span,
              0); // the whole scale is no caution
}

TEST(GaugeLayout, SurvivesScalesThatNoDialCanShow) {
    // The tachometer's widest scale would ask for 12,500 ticks.
    EXPECT_EQ(gauge_layout({.full_scale = 50000, .tick_step = 4, .zone_a_start = 32, .zone_b_start = 36}, {300, 300})
                  .numbers.size(),
              13U);
    EXPECT_TRUE(gauge_layout({.minimum = 5, .full_scale = 5, .tick_step = 1}, {300, 300}).ticks.empty());
    EXPECT_TRUE(gauge_layout({.tick_step = 0}, {300, 300}).ticks.empty());
    EXPECT_EQ(gauge_layout({}, {5, 5}).radius, 0);
    EXPECT_EQ(gauge_text({.minimum = -20, .full_scale = 60}, -0.01), "0.0");
}

TEST(Dashboard, NeedlesSettleWithinAFifthOfASecondAndOnlyWhenSeen) {
    QtHost host;
    views::FrmDashboard form;
    const auto window = make_frm_dashboard_window(form, host);
    expect_complete(*window);
    auto& tachometer = static_cast<GaugeWidget&>(named<QWidget>(*window, "tachometer"));
    form.tachometer.set_value(3);
    EXPECT_DOUBLE_EQ(tachometer.shown_value(), 3); // not on the screen: no movement
    form.form.show();
    QTest::qWait(1);
    const auto shows = [&](double value) { return [&tachometer, value] { return tachometer.shown_value() == value; }; };
    bool in_time = false;
    for (int tries = 0; tries < 5 && !in_time; ++tries) { // a busy machine may be late with a frame once
        form.tachometer.set_value(3);
        ASSERT_TRUE(QTest::qWaitFor(shows(3), 5000));
        form.tachometer.set_value(7.5F);
        EXPECT_LT(tachometer.shown_value(), 7.5);
        in_time = QTest::qWaitFor(shows(7.5), 250);
    }
    EXPECT_TRUE(in_time);
    EXPECT_EQ(tachometer.accessibleDescription(), "7.50 thousand rpm");

    form.GPO_duty[0].set_visible(false);
    form.GPO_duty[3].set_visible(true);
    EXPECT_TRUE(named<QWidget>(*window, "GPO_duty(3)").isVisible());
    EXPECT_FALSE(named<QWidget>(*window, "GPO_duty(0)").isVisible());
    form.manifold_pressure.set_value(101);
    form.water_temp.set_value(92);
    form.air_temp.set_value(31);
    form.bat_volts.set_value(13.8F);
    form.Timing.set_value(24.5F);
    form.afr_led[9].set_back_colour(views::lamp_lit(9));
    form.lambda_val.set_text("=14.7");
    for (std::size_t i = 0; i < 9; ++i) {
        form.lambda_label[i].set_text(
            std::array{"20.6", "19.1", "17.6", "16.2", "14.7", "13.2", "11.8", "10.3", "8.8"}[i]);
    }
    form.ecu_pgm[0].confirm("10.200");
    form.ecu_pgm[1].set_text("-.520");
    form.ecu_pgm[1].set_back_colour(platform::pending);
    form.base_offset_deg.confirm("-8.25");
    form.control_ego_gain.set_text("1.047");
    QTest::qWait(200);
    for (const QSize size : {QSize(853, 506), QSize(1280, 800)}) { // a small screen at a scale of 150 %
        window->resize(size);
        QTest::qWait(1);
        const auto* scroll = window->findChild<QScrollArea*>();
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width()) << size.width();
        EXPECT_LE(scroll->widget()->minimumSizeHint().height(), scroll->viewport()->height()) << size.height();
    }
    save_picture(*window);
}

struct PlotterWindow {
    QtHost host;
    logging::FrmPlotter form;
    std::unique_ptr<FormWindow> window = make_frm_plotter_window(form, host);
    StripChartWidget& chart = static_cast<StripChartWidget&>(named<QWidget>(*window, "Strip1"));
    float time = 36000;

    PlotterWindow() {
        for (std::size_t i = 0; i < logging::channel_count; ++i) {
            const logging::ChartChannel& channel = logging::chart_channels[i];
            form.Strip1.set_channel(i, {.colour = channel.colour,
                                        .enabled = true,
                                        .caption = std::string(channel.caption),
                                        .unit = std::string(channel.field->unit),
                                        .offset = channel.offset,
                                        .span = channel.span != 0 ? channel.span : 8000,
                                        .decimals = channel.decimals});
            form.Check3d1[i].set_checked(true);
        }
        form.Strip1.set_seconds_shown(60);
        form.form.show();
        window->resize(1240, 760);
        QTest::qWait(1);
    }
    void sample(int count, float seconds_apart = 0.125F) {
        for (int n = 0; n < count; ++n, time += seconds_apart) {
            std::array<float, logging::channel_count> fractions{};
            for (std::size_t i = 0; i < fractions.size(); ++i) {
                const auto phase = static_cast<float>(i);
                fractions[i] = 0.04F + 0.044F * phase + 0.03F * std::sin(time * 0.3F + phase);
            }
            form.Strip1.add_sample({.time = time, .fractions = fractions});
        }
    }
    // Until the picture that the samples ask for is there, however long a busy machine takes to draw it.
    void await_picture() const {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !chart.picture_due(); }, 60000));
    }
    void wheel(int steps, double share, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        QWheelEvent turn(inside(share), chart.mapToGlobal(inside(share)), {}, {0, 120 * steps}, Qt::NoButton, keys,
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(&chart, &turn);
    }
    void drag(double from, double to) {
        QTest::mousePress(&chart, Qt::LeftButton, {}, inside(from));
        QTest::mouseMove(&chart, inside((from + to) / 2));
        QTest::mouseMove(&chart, inside(to));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, inside(to));
    }
    QPoint inside(double share) const {
        const QRect area = chart.axisRect()->rect();
        return {area.left() + static_cast<int>(area.width() * share), area.center().y()};
    }
};

TEST(StripChart, ScrollsWithTheNewestSampleUntilDraggedOrZoomedAndReturnsLive) {
    PlotterWindow bench;
    expect_complete(*bench.window);
    bench.wheel(-1, 0.5); // nothing to see yet: neither ends the scrolling
    bench.drag(0.3, 0.8);
    EXPECT_TRUE(bench.chart.is_live());
    bench.sample(1500);
    bench.await_picture();
    EXPECT_NEAR(bench.chart.shown_range().upper, 36187.375, 0.01);
    EXPECT_NEAR(bench.chart.shown_range().size(), 60, 1e-6);
    auto& live = named<QPushButton>(*bench.window, "chart_live");
    EXPECT_FALSE(live.isEnabled());

    int stamps = 0;
    bench.form.Strip1.clicked = [&] { ++stamps; };
    bench.drag(0.3, 0.8);
    EXPECT_EQ(stamps, 0);
    EXPECT_NEAR(bench.chart.shown_range().upper, 36187.375 - 30, 0.5);
    EXPECT_TRUE(live.isEnabled());
    bench.sample(10);
    bench.await_picture();
    EXPECT_NEAR(bench.chart.shown_range().upper, 36187.375 - 30, 0.5); // stands still while the samples go on
    bench.wheel(1, 0.5);
    EXPECT_NEAR(bench.chart.shown_range().size(), 48, 0.1);
    live.click();
    EXPECT_NEAR(bench.chart.shown_range().upper, 36188.625, 0.01);
    EXPECT_NEAR(bench.chart.shown_range().size(), 60, 1e-6);
    EXPECT_FALSE(live.isEnabled());

    QTest::keyClick(&bench.chart, Qt::Key_Minus); // about the newest sample: scrolls on, wider
    EXPECT_TRUE(bench.chart.is_live() && live.isEnabled());
    EXPECT_NEAR(bench.chart.shown_range().size(), 75, 1e-6);
    live.click();
    bench.wheel(1, 0.5, Qt::ShiftModifier);
    EXPECT_TRUE(bench.chart.is_live() && live.isEnabled());
    live.click();
    EXPECT_TRUE(bench.chart.is_at_default());
    bench.wheel(-2, 0.5); // past the newest sample, into the room that the next ones fill
    bench.await_picture();
    const int pictures = bench.chart.pictures_drawn();
    bench.sample(10);
    bench.await_picture();
    EXPECT_GT(bench.chart.pictures_drawn(), pictures);
    bench.wheel(16, 0.5); // to ticks closer than a second: their labels must tell them apart
    bench.await_picture();
    for (qsizetype i = 0; i < bench.chart.xAxis->tickVector().size(); ++i) {
        const QString label = bench.chart.xAxis->tickVectorLabels()[i];
        EXPECT_NEAR(QTime::fromString(label, "hh:mm:ss.z").msecsSinceStartOfDay() / 1000.0,
                    bench.chart.xAxis->tickVector()[i], 1e-3);
    }
    live.click();

    QTest::mouseClick(&bench.chart, Qt::LeftButton, {}, bench.inside(0.5));
    QTest::keyClick(&bench.chart, Qt::Key_Space);
    EXPECT_EQ(stamps, 2);
}

TEST(StripChart, ReadsTheValuesUnderThePointerInUnitsAndSavesAPicture) {
    PlotterWindow bench;
    bench.sample(400);
    bench.form.Strip1.add_stamp({.time = bench.time, .height = 0.05F, .text = "10:00:50."});
    bench.sample(200);
    bench.await_picture();
    QTest::mouseMove(&bench.chart, bench.inside(0.5));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !bench.chart.reading().isEmpty(); }, 60000));
    const QStringList lines = bench.chart.reading().split('\n');
    ASSERT_EQ(lines.size(), 22);
    EXPECT_TRUE(lines[0].startsWith("10:00:44.") || lines[0].startsWith("10:00:45.")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("RPM ") && lines[1].endsWith(" rpm"));
    save_picture(*bench.window, {1240, 760});
    bench.form.Strip1.set_channel_enabled(0, false);
    bench.form.Strip1.set_channel_enabled(20, false);
    bench.await_picture();
    EXPECT_EQ(bench.chart.reading().split('\n').size(), 20);
    const QTemporaryDir folder;
    EXPECT_TRUE(bench.chart.save_png(folder.filePath("chart.png")));
    const QImage picture(folder.filePath("chart.png"));
    EXPECT_EQ(picture.width(), 2 * bench.chart.width());
    EXPECT_GT(picture.height(), 2 * bench.chart.height()); // by the legend
    EXPECT_FALSE(bench.chart.save_png(folder.filePath("missing/chart.png")));
}

TEST(StripChart, DrawsAtMostThirtyPicturesASecondHoweverFastTheRowsCome) {
    PlotterWindow bench;
    bench.form.Strip1.set_seconds_shown(15);
    bench.await_picture();
    const int before = bench.chart.pictures_drawn();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 1000 || (bench.chart.pictures_drawn() < before + 5 && timer.elapsed() < 60000)) {
        bench.sample(5, 0.00390625F);
        QTest::qWait(1);
    }
    const int drawn = bench.chart.pictures_drawn() - before;
    EXPECT_LE(drawn, 1 + timer.elapsed() * 31 / 1000);
    EXPECT_GE(drawn, 5);
    bench.chart.hide();
    QTest::qWait(150);
    const int hidden = bench.chart.pictures_drawn();
    bench.sample(100);
    QTest::qWait(150);
    EXPECT_EQ(bench.chart.pictures_drawn(), hidden);
}

} // namespace
} // namespace ecu::desktop
