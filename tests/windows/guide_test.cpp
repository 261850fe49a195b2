#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "windows/window_bench.h"

#include <QAction>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QToolBar>
#include <QWindow>

namespace ecu::desktop {
namespace {

QString text_of(const QString& page) {
    QFile file(":/guide/" + page + ".md");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << page.toStdString();
    return QString::fromUtf8(file.readAll());
}

TEST(Guide, HasAPageForEveryWindowWhoseLinksAndPicturesAreThere) {
    const DesktopConsole desktop;
    for (const platform::Form* form : const_cast<DesktopConsole&>(desktop).console().forms.registry.forms()) {
        EXPECT_TRUE(Guide::has_page(QString::fromStdString(form->name()))) << form->name();
    }
    static const QRegularExpression link(R"(\]\(([^)]+)\))");
    for (const QString& page : Guide::pages()) {
        const QString text = text_of(page);
        EXPECT_TRUE(text.startsWith("# ")) << page.toStdString();
        for (auto found = link.globalMatch(text); found.hasNext();) {
            const QString target = found.next().captured(1);
            EXPECT_TRUE(QFile::exists(QDir::cleanPath(":/guide/" + target)))
                << page.toStdString() << ": " << target.toStdString();
        }
        if (page != "index") {
            EXPECT_TRUE(text_of("index").contains("(" + page + ".md)"))
                << page.toStdString() << " is not in the contents";
        }
    }
}

TEST(Guide, SaysOfEachFigureOfTheMonitorWhatItsTipSays) {
    QtHost host;
    views::FrmMon form;
    const auto window = make_frm_mon_window(form, host);
    const QString page = text_of("frm_mon");
    for (const platform::Control* control : form.form.controls()) {
        const QWidget* widget = window->binding().widget_of(*control);
        if (control->kind() != platform::Kind::label || widget == nullptr || !widget->isVisibleTo(window.get()) ||
            control->name() == "Label1" || control->full_name() == "ECU_Data(13)") { // never written
            continue;
        }
        EXPECT_FALSE(control->tool_tip().empty()) << control->full_name();
        EXPECT_TRUE(page.contains("| " + QString::fromStdString(control->tool_tip()) + " |")) << control->full_name();
    }
}

TEST(Guide, OpensAtTheWindowsPageAndIsReadByKeyboard) {
    DesktopConsole desktop;
    FormWindow& map = desktop.host().window_of(desktop.console().forms.frm_3d.form);
    map.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&map));
    QTest::keyClick(&map, Qt::Key_F1);
    GuideWindow* guide = desktop.guide().window();
    ASSERT_NE(guide, nullptr);
    EXPECT_TRUE(guide->isVisible());
    EXPECT_EQ(guide->page(), "frm_3d");
    EXPECT_TRUE(guide->browser().toPlainText().contains("spreadsheet"));
    if (const QString folder = qEnvironmentVariable("ECU_PICTURES"); !folder.isEmpty()) {
        for (const char* page : {"index", "frm_3d", "frm_mon", "keys"}) {
            guide->show_page(page);
            QTest::qWait(20);
            guide->grab().save(folder + "/guide_" + page + ".png");
        }
        guide->show_page("frm_3d");
    }
    QTest::keyClick(&guide->browser(), Qt::Key_F1);
    EXPECT_EQ(guide->page(), "index");
    guide->browser().backward();
    EXPECT_EQ(guide->page(), "frm_3d");
    desktop.guide().open("no such page");
    EXPECT_EQ(guide->page(), "index");
    QTest::keyClick(guide, Qt::Key_Escape);
    EXPECT_FALSE(guide->isVisible());
    desktop.console().forms.frm_ecu.menu_view_keys.click();
    EXPECT_EQ(guide->page(), "keys");
    guide->close();
    map.put_away();
}

// A click by way of the window system, which a window that is held does not get.
void click_contents(GuideWindow& guide) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&guide));
    auto& bar = *guide.findChild<QToolBar*>();
    QWidget* contents = bar.widgetForAction(bar.actions().at(2));
    guide.show_page("keys");
    QTest::mouseClick(guide.windowHandle(), Qt::LeftButton, {}, contents->mapTo(&guide, contents->rect().center()));
    EXPECT_EQ(guide.page(), "index");
}

TEST(Guide, IsReadInFrontOfAWindowThatHoldsTheOthersAndHoldsNoneItself) {
    DesktopConsole desktop;
    FormWindow& map = desktop.host().window_of(desktop.console().forms.frm_3d.form);
    map.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&map));
    desktop.guide().open("frm_3d");
    GuideWindow& guide = *desktop.guide().window();
    {
        QDialog holding;
        holding.setModal(true);
        holding.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&holding));
        QTest::keyClick(&holding, Qt::Key_F1);
        click_contents(guide);
    }
    map.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&map));
    QMenu menu;
    menu.addAction("item");
    menu.popup({0, 0});
    QTest::keyClick(&menu, Qt::Key_F1);
    EXPECT_FALSE(menu.isVisible());
    EXPECT_EQ(guide.page(), "frm_3d");
    click_contents(guide);
    guide.close();
    map.put_away();
}

} // namespace
} // namespace ecu::desktop
