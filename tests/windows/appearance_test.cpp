// The themes, and what is remembered from one start to the next.
#include "desktop/windows/desktop_console.h"
#include "windows/window_bench.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTemporaryDir>

namespace ecu::desktop {
namespace {

using theme::contrast;
using theme::Theme;

class Themes : public testing::TestWithParam<Theme> {
protected:
    Themes() { theme::use(GetParam()); }
    ~Themes() override { theme::use(Theme::system); }
};
INSTANTIATE_TEST_SUITE_P(All, Themes, testing::ValuesIn(theme::themes), [](const auto& theme) {
    return QString::fromUtf8(theme::name_of(theme.param).data()).remove('-').toStdString();
});

TEST_P(Themes, KeepEveryTextReadable) {
    const QPalette palette = QApplication::palette();
    const QColor window = palette.color(QPalette::Window);
    const QColor panel = theme::panel_fill(palette);
    const auto on = [&palette](QPalette::ColorRole text, QPalette::ColorRole ground) {
        return contrast(palette.color(text), palette.color(ground));
    };
    EXPECT_GE(on(QPalette::WindowText, QPalette::Window), 4.5);
    EXPECT_GE(on(QPalette::Text, QPalette::Base), 4.5);
    EXPECT_GE(on(QPalette::Text, QPalette::AlternateBase), 4.5);
    EXPECT_GE(on(QPalette::ButtonText, QPalette::Button), 4.5);
    if (GetParam() != Theme::system) { // which is as the desktop gives it
        for (const auto& [text, ground] : {std::pair{QPalette::WindowText, QPalette::Window},
                                           {QPalette::Text, QPalette::Base},
                                           {QPalette::ButtonText, QPalette::Button}}) { // read while a window waits
            EXPECT_GE(contrast(palette.color(QPalette::Disabled, text), palette.color(QPalette::Disabled, ground)),
                      4.5);
        }
        EXPECT_GE(on(QPalette::HighlightedText, QPalette::Highlight), 4.5);
        EXPECT_GE(on(QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
    }
    for (const QColor& ground : {window, panel}) {
        EXPECT_GE(contrast(palette.color(QPalette::WindowText), ground), 4.5);
        EXPECT_GE(contrast(theme::muted_text(palette), ground), 4.5);
        EXPECT_GE(contrast(theme::readable_on(theme::to_qt(platform::light_red), ground), ground), 4.5);
    }
    EXPECT_GE(contrast(theme::accent(palette), panel), 4.5);
    for (const platform::Colour state : {platform::pending, platform::confirmed}) {
        const QPalette box = theme::edit_palette(palette, state, {});
        EXPECT_GE(contrast(box.color(QPalette::Disabled, QPalette::Text), box.color(QPalette::Base)), 4.5);
    }
    EXPECT_GE(contrast(theme::wrong_text(), theme::to_qt(platform::pending)), 4.5);
    for (int level = 0; level < 256; level += 15) { // the states, and the shades of the maps between them
        const auto byte = static_cast<std::uint8_t>(level);
        const auto rest = static_cast<std::uint8_t>(255 - level);
        for (const platform::Colour colour : {platform::Colour{byte, byte, byte},
                                              {byte, rest, 0x55},
                                              {0xFF, byte, rest},
                                              {0xFF, 0xFF, byte},
                                              {byte, 0x55, 0xFF}}) {
            const QColor ground = theme::to_qt(colour);
            EXPECT_GE(contrast(theme::text_on(ground), ground), 4.5) << ground.name().toStdString();
        }
    }
    EXPECT_GE(contrast(theme::to_qt(platform::pending), theme::to_qt(platform::confirmed)), 1.05);
}

TEST_P(Themes, ShowThemselvesInEachWindow) {
    DesktopConsole desktop;
    for (auto* form : {&desktop.console().forms.frm_3d.form, &desktop.console().forms.frm_mon.form,
                       &desktop.console().forms.frm_dashboard.form, &desktop.console().forms.frm_tool.form,
                       &desktop.console().forms.frm_plotter.form, &desktop.console().forms.frm_ecu.form}) {
        FormWindow& window = desktop.host().window_of(*form);
        const QString name = window.objectName();
        window.setObjectName(name + '_' + QString::fromUtf8(theme::name_of(GetParam()).data()));
        save_picture(window, {1366, 728});
        window.setObjectName(name);
    }
}

class Appearances : public testing::Test {
protected:
    ~Appearances() override {
        theme::use(Theme::system);
        theme::use_large_digits(false);
    }
    QTemporaryDir folder;
    QString file = folder.filePath("console.ini");
};

TEST_F(Appearances, ChangeAtOnceFromTheMenuAndByKey) {
    DesktopConsole desktop;
    shell::FrmEcu& main = desktop.console().forms.frm_ecu;
    link::FrmDialog& dialog = desktop.console().forms.frm_dialog;
    FormWindow& window = desktop.host().window_of(desktop.console().forms.frm_tool.form);
    auto& box = *static_cast<QLineEdit*>(
        window.binding().widget_of(desktop.console().forms.frm_tool.form.get<platform::TextBox>("accel_flt_rate")));
    const QColor by_day = box.palette().color(QPalette::Base);
    QLabel caption("rpm", &window);
    theme::mute(caption);
    platform::Label& duty = desktop.console().forms.frm_mon.inj_duty[0];
    duty.set_fore_colour(platform::Colour{0, 0, 0xFF});
    QWidget& figure = *desktop.host().window_of(desktop.console().forms.frm_mon.form).binding().widget_of(duty);
    main.menu_view_themes[3].click();
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), theme::palette_of(Theme::night).color(QPalette::Window));
    EXPECT_TRUE(QTest::qWaitFor([&] { return box.palette().color(QPalette::Base) != by_day; }));
    EXPECT_EQ(caption.palette().color(QPalette::WindowText), theme::muted_text(QApplication::palette()));
    EXPECT_TRUE(QTest::qWaitFor([&] { // a colour of its own, as this theme shows it
        return contrast(figure.palette().color(QPalette::WindowText), theme::panel_fill(QApplication::palette())) >=
               4.5;
    }));
    EXPECT_TRUE(main.menu_view_themes[3].checked());
    EXPECT_FALSE(main.menu_view_themes[0].checked());
    FormWindow& question = desktop.host().window_of(dialog.form);
    QTest::keyClick(&question, Qt::Key_F9); // in every window
    EXPECT_TRUE(main.menu_view_themes[4].checked());
    QTest::keyClick(&question, Qt::Key_F9);
    EXPECT_TRUE(main.menu_view_themes[0].checked());
    const double points = QApplication::font().pointSizeF();
    QTest::keyClick(&question, Qt::Key_F9, Qt::ShiftModifier);
    EXPECT_GT(QApplication::font().pointSizeF(), points * 1.2);
    main.menu_view_large_digits.click();
    EXPECT_NEAR(QApplication::font().pointSizeF(), points, 0.01);
}

TEST_F(Appearances, AreRememberedWithWindowsTabsAndTheChart) {
    {
        DesktopConsole desktop(file);
        console::Forms& forms = desktop.console().forms;
        forms.frm_ecu.menu_view_themes[2].click();
        forms.frm_ecu.menu_view_large_digits.click();
        forms.frm_plotter.Check3d1[2].click();
        forms.frm_plotter.menu_log_int[5].click();
        FormWindow& window = desktop.host().window_of(forms.frm_tool.form);
        window.open();
        window.resize(901, 603);
        window.findChild<QTabWidget*>()->setCurrentIndex(4);
        window.put_away();
    }
    theme::use(Theme::system);
    theme::use_large_digits(false);
    for (const bool fresh : {false, true}) {
        DesktopConsole desktop(fresh ? QString() : file);
        console::Forms& forms = desktop.console().forms;
        EXPECT_EQ(forms.frm_ecu.menu_view_themes[2].checked(), !fresh);
        EXPECT_EQ(forms.frm_ecu.menu_view_large_digits.checked(), !fresh);
        EXPECT_EQ(forms.frm_plotter.Check3d1[2].checked(), !fresh);
        EXPECT_EQ(forms.frm_plotter.Strip1.channels()[2].enabled, !fresh);
        EXPECT_EQ(forms.frm_plotter.menu_log_int[5].checked(), !fresh);
        FormWindow& window = desktop.host().window_of(forms.frm_tool.form);
        EXPECT_EQ(window.findChild<QTabWidget*>()->currentIndex(), fresh ? 0 : 4);
        window.open();
        EXPECT_EQ(window.size() == QSize(901, 603), !fresh);
        window.put_away();
    }
}

TEST_F(Appearances, ASpoiledFileStartsAsWithout) {
    QFile spoiled(file);
    ASSERT_TRUE(spoiled.open(QIODevice::WriteOnly));
    spoiled.write("[General]\ntheme=pink\nlarge_digits=perhaps\n[plotter]\nchannels=10\ninterval=99\n[tabs]\n"
                  "config_tab=77\nframes=-3\n[windows]\n800x800+0+0\\frm_tool=@ByteArray(junk)\n\x00\xFF");
    spoiled.close();
    DesktopConsole desktop(file);
    EXPECT_TRUE(desktop.console().forms.frm_ecu.menu_view_themes[0].checked());
    EXPECT_FALSE(desktop.console().forms.frm_plotter.Check3d1[0].checked());
    FormWindow& window = desktop.host().window_of(desktop.console().forms.frm_tool.form);
    window.open();
    EXPECT_TRUE(window.isVisible());
    EXPECT_GT(window.width(), 600);
    window.put_away();
}

} // namespace
} // namespace ecu::desktop
