#include "platform/picture.h"
#include "windows/window_bench.h"

#include "desktop/qt_dialogs.h"
#include "desktop/theme.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

namespace ecu::desktop {
namespace {

using platform::confirmed;
using platform::pending;

struct Sample {
    platform::Form form{"frm_sample", "Sample"};
    platform::MenuItem menu_file{form, "menu_file", "&File"};
    platform::MenuItem menu_port{menu_file, "menu_port", "&Port"};
    platform::ControlArray<platform::MenuItem, 2> menu_number{menu_port, "menu_number", {"&1", "&2"}};
    platform::MenuItem menu_update{form, "menu_update", "&Update"};
    platform::Label shown{form, "shown", "start"};
    platform::ControlArray<platform::TextBox, 2> box{form, "box", "1.0"};
    platform::CheckBox check{form, "check", "Check"};
    platform::ControlArray<platform::OptionButton, 3> option{form, "option", {"A", "B", "C"}};
    platform::Button button{form, "button", "&Go"};
    platform::ScrollBar bar{form, "bar", 0, 10, 5};
    platform::Tabs tabs{form, "tabs"};
    platform::Picture picture{form, "picture"};
};

class SampleWindow : public testing::Test {
protected:
    SampleWindow() {
        Panel panel = window_.panel("Panel");
        panel.row("Shown", form_.shown, "units");
        panel.boxes("Box", each(form_.box));
        panel.add(form_.check);
        panel.column(each(form_.option));
        panel.add(form_.bar, "Bar");
        panel.add(form_.picture, "Drawing");
        window_.set_body(window_.tabs(form_.tabs, {{"One", panel}, {"Two", new QWidget}}));
        window_.set_footer(window_.buttons({&form_.button}));
        form_.box[0].changed = [this] { form_.box[0].set_back_colour(pending); };
        form_.form.show();
        QTest::qWait(1);
    }
    QLineEdit& edit(int i) { return named<QLineEdit>(window_, i == 0 ? "box(0)" : "box(1)"); }

    // A box without the focus shows its value as soon as there is time.
    void await(const std::function<bool()>& shown) { EXPECT_TRUE(QTest::qWaitFor(shown)); }
    bool is(int n, const platform::Colour& colour) {
        return edit(n).palette().color(QPalette::Base) == theme::to_qt(colour);
    }

    QtHost host_;
    Sample form_;
    FormWindow window_{form_.form, host_};
};

TEST_F(SampleWindow, BindsEachControlOnceAndNoStranger) {
    expect_complete(window_);
    EXPECT_EQ(window_.objectName(), "frm_sample");
    EXPECT_THROW(window_.make(form_.shown), std::logic_error);
    Sample other;
    EXPECT_THROW(window_.make(other.shown), std::logic_error);
}

TEST_F(SampleWindow, ABoxShowsAndSaysWhatItsColourDoesNot) {
    form_.box[0].set_tool_tip("Milliseconds");
    form_.box[0].blank();
    await([this] { return edit(0).palette().brush(QPalette::Base).style() == Qt::TexturePattern; });
    EXPECT_EQ(edit(0).palette().color(QPalette::Base), theme::to_qt(pending));
    EXPECT_EQ(edit(0).toolTip(), "Milliseconds\nnot read");
    EXPECT_EQ(edit(0).accessibleDescription(), "not read");
    edit(0).setFocus();
    QTest::keyClicks(&edit(0), "1,5");
    EXPECT_EQ(form_.box[0].text(), "1.5");
    EXPECT_EQ(edit(0).palette().brush(QPalette::Base).style(), Qt::SolidPattern);
    EXPECT_NE(edit(0).palette().color(QPalette::Text), theme::wrong_text());
    QTest::keyClicks(&edit(0), "%");
    EXPECT_EQ(edit(0).palette().color(QPalette::Text), theme::wrong_text());
    EXPECT_EQ(edit(0).toolTip(), "Milliseconds\npending, no number");
    form_.box[0].set_back_colour(confirmed); // sent, and never echoed
    EXPECT_TRUE(edit(0).font().underline());
    form_.box[0].confirm("1.5");
    EXPECT_FALSE(edit(0).font().underline());
    EXPECT_EQ(edit(0).toolTip(), "Milliseconds");
    QTest::keyClicks(&edit(1), "a,b"); // no value of the controller
    EXPECT_EQ(form_.box[1].text(), "a,b1.0");
}

TEST_F(SampleWindow, TypingTurnsABoxYellowAndTheEchoTurnsItWhite) {
    QTest::keyClicks(&edit(0), "2");
    EXPECT_EQ(form_.box[0].text(), "21.0");
    await([this] { return is(0, pending); });
    form_.box[0].confirm("1.125");
    await([this] { return edit(0).text() == "1.125" && is(0, confirmed); });
    form_.box[0].set_fore_colour(platform::light_red);
    await([this] { return edit(0).palette().color(QPalette::Text) == theme::to_qt(platform::light_red); });
    form_.box[0].confirm("7");
    QTest::keyClicks(&edit(0), "8"); // before there was time: it is added to what the box holds
    EXPECT_EQ(form_.box[0].text(), "87");
    EXPECT_EQ(edit(1).palette().color(QPalette::Base), theme::to_qt(confirmed)); // its neighbour is left alone
}

TEST_F(SampleWindow, TypingIntoABoxThatTheProgramFocusedOrRewroteReplacesItsValue) {
    form_.box[1].set_text("14.000");
    form_.box[1].set_focus();
    QTest::keyClicks(&edit(1), "12");
    EXPECT_EQ(form_.box[1].text(), "12");
    for (const char* reply : {"12", "12.000"}) { // the controller's answer, in its own digits or the user's
        form_.box[1].set_back_colour(pending);
        form_.box[1].confirm(reply);
        QTest::keyClicks(&edit(1), "12");
        EXPECT_EQ(form_.box[1].text(), "12") << reply;
    }
    edit(1).setSelection(1, 1);
    form_.box[1].confirm("12"); // what the typing left modified
    edit(1).setSelection(1, 1);
    form_.box[1].confirm("12"); // a poll of the same value
    EXPECT_EQ(edit(1).selectedText(), "2");
    edit(0).setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(edit(0).hasSelectedText());
}

TEST_F(SampleWindow, ClearedCaptionLeavesTheTitle) {
    form_.form.set_caption("");
    EXPECT_EQ(window_.windowTitle(), "Sample");
}

TEST_F(SampleWindow, KeysReachTheBoxFirstAndAConsumedKeyGoesNoFurther) {
    std::vector<int> codes;
    form_.box[0].key_down = [&](platform::KeyPress& key) {
        codes.push_back(key.code);
        if (key.code == platform::key::up && key.shift) {
            key.code = 0;
        }
        if (key.code == 'X') {
            key.code = platform::key::shift;
        }
    };
    QTest::keyClick(&edit(0), Qt::Key_Return);
    QTest::keyClick(&edit(0), Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(&edit(0), Qt::Key_X);
    EXPECT_EQ(codes, (std::vector{13, 16, 38, 88}));
    EXPECT_EQ(form_.box[0].text(), "1.0");
}

TEST_F(SampleWindow, FocusIsToldOnceAndSurvivesAMenu) {
    std::string told;
    for (auto& box : form_.box) {
        box.got_focus = [&] { told += "+" + std::to_string(box.index()); };
        box.lost_focus = [&] { told += "-" + std::to_string(box.index()); };
    }
    window_.activateWindow();
    form_.box[0].set_focus();
    QFocusEvent to_menu(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(&edit(0), &to_menu);
    QFocusEvent back(QEvent::FocusIn, Qt::PopupFocusReason);
    QApplication::sendEvent(&edit(0), &back);
    form_.box[1].set_focus();
    EXPECT_EQ(told, "+0-0+1");
}

TEST_F(SampleWindow, OptionsAndChecksFollowTheModelBothWays) {
    int clicks = 0;
    form_.option[1].clicked = [&] { ++clicks; };
    named<QRadioButton>(window_, "option(1)").click();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(platform::chosen(form_.option), 1);
    form_.option[2].set_checked(true);
    EXPECT_FALSE(named<QRadioButton>(window_, "option(1)").isChecked());
    form_.option[2].set_checked(false); // none is chosen, which Qt's own group would not allow
    EXPECT_FALSE(named<QRadioButton>(window_, "option(2)").isChecked());

    form_.check.clicked = [&] { ++clicks; };
    named<QCheckBox>(window_, "check").click();
    EXPECT_TRUE(form_.check.checked());
    EXPECT_EQ(clicks, 2);
    form_.check.set_checked(false);
    EXPECT_FALSE(named<QCheckBox>(window_, "check").isChecked());
}

TEST_F(SampleWindow, ButtonsBarsAndTabsWorkAndShowWhatTheFormSets) {
    int presses = 0;
    form_.button.clicked = [&] { ++presses; };
    auto& button = named<QPushButton>(window_, "button");
    button.click();
    form_.button.set_enabled(false);
    button.click();
    EXPECT_EQ(presses, 1);
    EXPECT_FALSE(button.isEnabled());
    form_.button.set_tool_tip("why");
    EXPECT_EQ(button.toolTip(), "why");

    named<QScrollBar>(window_, "bar").setValue(8);
    EXPECT_EQ(form_.bar.value(), 8);
    form_.tabs.set_current(1);
    EXPECT_EQ(named<QTabWidget>(window_, "tabs").currentIndex(), 1);

    form_.shown.set_visible(false);
    EXPECT_TRUE(named<QLabel>(window_, "shown").isHidden());
    form_.shown.set_text("<b>12</b>");
    EXPECT_EQ(named<QLabel>(window_, "shown").text(), "<b>12</b>"); // and never as markup
    EXPECT_EQ(named<QLabel>(window_, "shown").accessibleName(), "Shown");
}

TEST_F(SampleWindow, MenusAreBuiltFromTheItemsInTheirOrder) {
    const auto top = window_.menuBar()->actions();
    ASSERT_EQ(top.size(), 2);
    EXPECT_EQ(top[0]->text(), "&File");
    EXPECT_EQ(top[1]->objectName(), "menu_update");
    EXPECT_EQ(top[1]->menu(), nullptr);
    auto& second = named<QAction>(window_, "menu_number(1)");
    form_.menu_number[1].clicked = [&] { form_.menu_number[1].set_checked(true); };
    second.trigger();
    EXPECT_TRUE(second.isChecked());
    EXPECT_TRUE(named<QAction>(window_, "menu_number(0)").isCheckable()) << "one choice, one look";
    EXPECT_FALSE(top[1]->isCheckable());
    form_.menu_number[1].clicked = nullptr;
    second.trigger();
    EXPECT_TRUE(second.isChecked()) << "only the form moves the mark";
    form_.menu_update.set_enabled(false);
    EXPECT_FALSE(top[1]->isEnabled());
}

TEST_F(SampleWindow, PictureIsReplayedAndTakesTheSizeOfItsWidget) {
    int redraws = 0;
    form_.picture.resized = [&] { ++redraws; };
    auto& view = named<QWidget>(window_, "picture");
    view.setFixedSize(333, 222);
    QTest::qWait(1);
    EXPECT_EQ(form_.picture.width(), 333);
    EXPECT_EQ(redraws, 1);
    form_.picture.line(10, 20, 300, 20, platform::yellow);
    form_.picture.refresh();
    const QImage image = view.grab().toImage();
    const double ratio = image.devicePixelRatio();
    const int y = static_cast<int>(20 * ratio);
    EXPECT_EQ(image.pixelColor(static_cast<int>(100 * ratio), y), theme::to_qt(platform::yellow));
    EXPECT_EQ(image.pixelColor(static_cast<int>(100 * ratio), y - 2), QColor(Qt::black));
}

TEST_F(SampleWindow, ActivationComesWithTheNextEventsAndClosingIsTheFormsDecision) {
    int activations = 0;
    form_.form.hide();
    form_.form.on_activate = [&] { ++activations; };
    form_.form.show();
    EXPECT_EQ(activations, 0);
    QTest::qWait(1);
    EXPECT_EQ(activations, 1);
    bool asked = false;
    form_.form.on_close = [&] { asked = true; };
    window_.close();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(window_.isVisible());
    form_.form.on_close = nullptr;
    window_.close();
    EXPECT_FALSE(form_.form.loaded());
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(SampleWindow, ModalFormHoldsItsCallerUntilItHides) {
    form_.form.hide();
    std::string order;
    form_.form.on_activate = [&] {
        order += "active ";
        QTimer::singleShot(5, &window_, [&] {
            order += window_.windowModality() == Qt::NonModal ? "loose " : "held ";
            form_.form.hide();
        });
    };
    form_.form.show_modal();
    order += "returned";
    EXPECT_EQ(order, "active held returned");
}

TEST(QtDialogs, MessageBoxShowsTheExactTextAndItsDefault) {
    QtDialogs dialogs;
    QString text;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        text = box->text();
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::No));
        EXPECT_EQ(box->detailedText(), "the reason");
        QTest::keyClick(box, Qt::Key_Return);
    });
    const auto answer = dialogs.message_box({.text = "this <i>overwrites</i>, continue?",
                                             .title = "CAUTION!",
                                             .buttons = platform::Buttons::yes_no,
                                             .icon = platform::Icon::warning,
                                             .preset = platform::Answer::no,
                                             .details = "the reason"});
    EXPECT_EQ(answer, platform::Answer::no);
    EXPECT_EQ(text, "this <i>overwrites</i>, continue?");
}

TEST(QtDialogs, FileDialogAddsTheSuffixAndFiltersBothCases) {
    EXPECT_EQ(qt_filter("Setup Files (*.set)|"), "Setup Files (*.set *.SET)");
    QTemporaryDir folder;
    QtDialogs dialogs;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->setDirectory(folder.path());
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText("mine");
        dialog->findChild<QLineEdit*>("fileNameEdit")->setFocus();
        QMetaObject::invokeMethod(dialog, "accept");
    });
    const std::string path = dialogs.save_file(
        {.title = "Save", .default_extension = "set", .filter = "Setup Files (*.set)|", .initial_name = "*.SET"});
    EXPECT_EQ(path, folder.filePath("mine.set").toStdString());
}

} // namespace
} // namespace ecu::desktop
