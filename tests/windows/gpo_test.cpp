#include "console/console.h"
#include "desktop/grid_view.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "windows/window_bench.h"

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
        EXPECT_TRUE(QTest::qWaitFor([&] { return form.Command3d2.enabled() && !console.state.polling_paused; }));
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
    std::string focus() const { return QApplication::focusWidget()->objectName().toStdString(); }
};

TEST_F(GpoWindow, IsCompleteAndEveryPageAndModeCanBeLookedAt) {
    expect_complete(*window);
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

} // namespace
} // namespace ecu::desktop
