#include "desktop/windows/desktop_console.h"
#include "windows/window_bench.h"

#include <QDialog>
#include <QListWidget>

#include <gmock/gmock.h>

namespace ecu::desktop {
namespace {

class Finding : public testing::Test {
protected:
    Finding() {
        console.state.demo_mode = true;
        console.polling.timer1().set_running(true);
        console.forms.frm_ecu.form.show();
    }
    std::size_t number_of(const std::string& query) {
        const auto found = shell::find_items(desktop.finder().items(), query, 1);
        EXPECT_FALSE(found.empty()) << query;
        return found.empty() ? 0 : found.front();
    }
    bool focused(const char* name) {
        return QTest::qWaitFor([name] {
            return QApplication::focusWidget() != nullptr && QApplication::focusWidget()->objectName() == name;
        });
    }
    DesktopConsole desktop;
    console::Console& console = desktop.console();
};

TEST_F(Finding, WordsOpenTheWindowTurnToTheTabAndPutTheFocusThere) {
    FormWindow& main = desktop.host().window_of(console.forms.frm_ecu.form);
    QTest::keyClick(&main, Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(&main, Qt::Key_K, Qt::ControlModifier);
    QWidgetList dialogs = QApplication::topLevelWidgets();
    dialogs.removeIf([](const QWidget* window) { return window->objectName() != "find"; });
    ASSERT_EQ(dialogs.size(), 1);
    QWidget* dialog = dialogs.front();
    auto* words = dialog->findChild<QWidget*>("find_words");
    QTest::keyClicks(words, "hot pulse");
    const auto& list = *dialog->findChild<QListWidget*>("find_list");
    ASSERT_GT(list.count(), 1);
    EXPECT_THAT(list.item(0)->text().toStdString(),
                testing::HasSubstr("Configuration > Powerup/Options > Priming Pulses"));
    QTest::keyClick(words, Qt::Key_Down);
    EXPECT_EQ(list.currentRow(), 1);
    QTest::keyClick(words, Qt::Key_Up);
    if (const QString folder = qEnvironmentVariable("ECU_PICTURES"); !folder.isEmpty()) {
        dialog->grab().save(folder + "/find.png");
    }
    QTest::keyClick(words, Qt::Key_Return);
    EXPECT_TRUE(focused("priming_pw_hot"));
    EXPECT_EQ(console.state.current_view, link::View::configuration);
    // From there to another view, as by its menu.
    desktop.finder().open(number_of("engine speed monitor"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return console.forms.frm_mon.form.visible(); }));
    EXPECT_FALSE(console.forms.frm_tool.form.visible());
    // And to a command, for which the main window comes back.
    desktop.finder().open(number_of("large digits menu"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return console.forms.frm_ecu.menu_view_large_digits.checked(); }));
    EXPECT_TRUE(console.forms.frm_ecu.form.visible());
    EXPECT_EQ(console.state.current_view, link::View::none);
    console.forms.frm_ecu.menu_view_large_digits.click();
}

TEST_F(Finding, EveryBoxOfTheConfigurationAndEveryMapIsFound) {
    for (const char* query : {"accel sensitivity", "full scale speed", "fuel map", "lambda target", "boost", "com 3",
                              "restore point", "battery", "trig rpm", "H2O dashboard"}) {
        number_of(query);
    }
    for (const shell::Findable& item : desktop.finder().items()) {
        EXPECT_FALSE(item.name.empty() || item.place.empty()) << item.name << item.place;
    }
    EXPECT_GT(desktop.finder().items().size(), 300U);
}

TEST_F(Finding, LeavesTheFlashUtilityAlone) {
    console.forms.frm_ecu.form.hide(); // as the flash utility and the server do, with no view up
    desktop.finder().open(number_of("engine speed monitor"));
    QTest::qWait(60);
    EXPECT_FALSE(console.forms.frm_mon.form.visible());
}

} // namespace
} // namespace ecu::desktop
