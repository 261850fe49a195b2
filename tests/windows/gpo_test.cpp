#include "console/console.h"
#include "desktop/grid_view.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "windows/window_bench.h"

#include <QClipboard>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QTabWidget>

namespace ecu::desktop {
namespace {

// The window of a whole console in demo mode, every value shown; replies are taken for what the test sets.
struct GpoWindow : testing::Test {
    DesktopConsole desktop;
    console::Console& console = desktop.console();
    maps::FrmSup& form = console.forms.frm_sup;
    FormWindow* window = nullptr;

    GpoWindow() {
        console.state.demo_mode = true;
        console.navigation.open(link::View::gpo_mapping);
        EXPECT_TRUE(QTest::qWaitFor([&] { return form.update_button.enabled() && !console.state.polling_paused; }));
        window = &desktop.host().window_of(form.form);
        window->resize(1350, 690);
        QTest::qWait(1);
    }
    ~GpoWindow() override {
        form.form.unload();
        QTest::qWait(1);
    }
    void choose(std::size_t page, std::size_t mode) {
        form.GPO_tab.set_current(static_cast<int>(page));
        form.gpo_mode[page][mode].click();
        QTest::qWait(1);
    }
    void look(const std::string& name, QSize size = {1350, 690}) {
        window->setObjectName(QString::fromStdString("frm_sup_" + name));
        save_picture(*window, size);
        window->setObjectName("frm_sup");
    }
    template <typename Widget> Widget& of(const char* name) { return named<Widget>(*window, name); }
    // Axis captions and the lines of the frame speak for themselves.
    static bool is_axis(const platform::Control& control) {
        const auto has = [&control](const char* part) { return control.name().find(part) != std::string::npos; };
        return has("_lbl") || has("_text") || has("_beg") || has("_end");
    }
    std::string focus() const { return QApplication::focusWidget()->objectName().toStdString(); }
};

TEST_F(GpoWindow, IsCompleteAndEveryPageAndModeCanBeLookedAt) {
    expect_complete(*window);
    for (const platform::Control* control : form.form.controls()) {
        if (const QWidget* widget = window->binding().widget_of(*control);
            widget != nullptr && control->kind() != platform::Kind::tabs && !is_axis(*control)) {
            EXPECT_FALSE(widget->toolTip().isEmpty()) << control->full_name();
        }
    }
    for (std::size_t page = 0; page < 4; ++page) {
        form.GPO_tab.set_current(static_cast<int>(page));
        EXPECT_EQ(of<QTabWidget>("GPO_tab").currentIndex(), static_cast<int>(page));
        look("page_" + std::to_string(page));
    }
    for (std::size_t mode = 0; mode < 11; ++mode) {
        choose(0, mode);
        look("mode_" + std::to_string(mode));
        EXPECT_EQ(of<GridView>("GPO_tbl_0").isVisible(), mode >= 1 && (mode <= 5 || mode == 10)) << mode;
    }
    form.use_as_pwm[1].click();
    form.boost_gpo[1].set_cell_text(3, 3, "123.4");
    choose(1, 1);
    console.polling.timer1().on_tick();
    look("pending");
    look("small", {902, 472}); // a screen of 1366 by 768 at 150 %
    form.GPO_params[2].set_visible(false);
    form.GPO_tab.set_current(2);
    look("missing");
}

TEST_F(GpoWindow, NothingIsClippedAndNarrowScreensStackTheHalves) {
    for (const QSize size : {QSize(1350, 690), QSize(902, 472)}) {
        window->resize(size);
        QTest::qWait(1);
        for (const auto* area : window->findChildren<QScrollArea*>()) {
            if (area->isVisible()) {
                EXPECT_LE(area->widget()->width(), area->viewport()->width()) << size.width();
            }
        }
    }
}

TEST_F(GpoWindow, IsUsedByKeyboardAlone) {
    EXPECT_EQ(focus(), "boost_gpo_0"); // output 1 has no map yet
    choose(0, 3);
    QTest::keyClick(window, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(of<QTabWidget>("GPO_tab").currentIndex(), 2);
    EXPECT_EQ(focus(), "boost_gpo_2");
    QTest::keyClick(window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(focus(), "GPO_tbl_0");
    const std::array<const char*, 4> round{"boost_p(0)", "boost_gpo_0", "gpo_0_mode(3)", "GPO_tbl_0"};
    for (const char* stop : round) {
        QTest::keyClick(window, Qt::Key_F6);
        EXPECT_EQ(focus(), stop);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_7);
    EXPECT_EQ(form.GPO_tbl[0].cell_text(1, 1), "7");
    window->resize(902, 472); // the halves stand one below the other, and the page follows the keyboard
    QTest::qWait(1);
    form.boost_loop_rate[0].set_focus();
    EXPECT_FALSE(of<QWidget>("boost_loop_rate(0)").visibleRegion().isEmpty());
    of<QWidget>("GPO_tbl_0").setFocus();
    choose(0, 0); // the map goes, and F6 passes it by
    EXPECT_EQ(focus(), "gpo_0_mode(0)");
    QTest::keyClick(window, Qt::Key_F6);
    EXPECT_EQ(focus(), "boost_p(0)");
}

TEST_F(GpoWindow, TabsTellOfPendingValuesAndMarksAreReadable) {
    auto& tabs = of<QTabWidget>("GPO_tab");
    EXPECT_EQ(tabs.tabText(3), "GPO 4");
    EXPECT_TRUE(tabs.tabIcon(3).isNull());
    form.dont_interpolate[3].click();
    QTest::qWait(1);
    EXPECT_EQ(tabs.tabText(3), "GPO 4: 1 pending");
    EXPECT_FALSE(tabs.tabIcon(3).isNull());
    const auto& option = of<QRadioButton>("gpo_3_mode(0)");
    const QColor mark = option.palette().color(QPalette::WindowText);
    EXPECT_NE(mark, QApplication::palette().color(QPalette::WindowText));
    EXPECT_NEAR(option.palette().color(QPalette::Base).hue(), 60, 5); // the field of the mark, as a pending box
    EXPECT_NEAR(mark.hue(), 60, 5);                                   // yellow still, but not too light for its ground
    form.gpo_mode[3][0].set_fore_colour(platform::black);
    EXPECT_EQ(option.palette().color(QPalette::WindowText), QApplication::palette().color(QPalette::WindowText));
}

TEST_F(GpoWindow, BlocksAndPastesLeaveTheHiddenColumnsAlone) {
    choose(0, 10);
    auto& view = of<GridView>("GPO_tbl_0");
    view.setFocus();
    view.selectAll();
    QApplication::clipboard()->setText("12");
    view.paste_block();
    EXPECT_EQ(maps::pending_cells(form.GPO_tbl[0]), 9);
    EXPECT_EQ(form.GPO_tbl[0].cell_text(5, 2), "0.0");
    QApplication::clipboard()->setText("1\t2\n3\t4\n");
    view.setCurrentIndex(view.model()->index(0, 0));
    view.paste_block();
    EXPECT_EQ(form.GPO_tbl[0].cell_text(2, 1), "3");
    EXPECT_EQ(maps::pending_cells(form.GPO_tbl[0]), 9);
    QTest::keyClick(&view, Qt::Key_A, Qt::ControlModifier);
    view.copy_block();
    EXPECT_EQ(QApplication::clipboard()->text(), "1\n3\n12\n12\n12\n12\n12\n12\n12\n");
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(form.GPO_tbl[0].cell_text(9, 1), "");
    EXPECT_EQ(maps::pending_cells(form.GPO_tbl[0]), 9);
    EXPECT_EQ(console.block_selection.block_end_col, 1);
}

TEST_F(GpoWindow, MarkersStandOnTheShownPageAtTheirShareOfTheCellsMiddles) {
    console.state.polling_paused = true; // the test gives the live values
    choose(0, 1);
    choose(2, 1);
    console.live.engine_rpm = console.scales.full_scale_rpm / 2;
    console.live.manifold_kpa = console.scales.map_base;
    console.gpo_mapping.refresh_live();
    const auto middle = [this](const char* name) {
        const auto& widget = of<QWidget>(name);
        return widget.mapTo(window, widget.rect().center());
    };
    EXPECT_NEAR(middle("supp_x_ptr").x(), middle("GPO_2_X_lbl(4)").x(), 2);
    EXPECT_NEAR(middle("supp_y_ptr").y(), middle("GPO_2_Y_lbl(0)").y(), 2);
    EXPECT_NEAR(middle("boost_x_ptr").x(), middle("GPO_boost_X_lbl_2(4)").x(), 2);
    EXPECT_TRUE(of<QWidget>("supp_x_ptr").isVisible());
    form.GPO_tab.set_current(0);
    EXPECT_NEAR(middle("supp_x_ptr").x(), middle("GPO_0_X_lbl(4)").x(), 2);
    EXPECT_TRUE(of<QWidget>("supp_x_ptr").isVisible());
    form.gpo_mode[0][6].click();
    EXPECT_FALSE(of<QWidget>("supp_x_ptr").isVisible());
    console.state.polling_paused = false;
}

TEST_F(GpoWindow, AMissingOutputLeavesItsPageWithAWordAboutIt) {
    form.GPO_tab.set_current(1);
    form.GPO_params[1].set_visible(false);
    EXPECT_FALSE(of<QWidget>("GPO_params(1)").isVisible());
    EXPECT_TRUE(of<QTabWidget>("GPO_tab").currentWidget()->isVisible());
    const auto labels = of<QTabWidget>("GPO_tab").currentWidget()->findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
        return label->isVisible() && label->text() == "This controller has no output driver 2.";
    }));
}

} // namespace
} // namespace ecu::desktop
