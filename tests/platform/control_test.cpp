#include "platform/gauge.h"
#include "platform/grid.h"
#include "support/sim_desktop.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace ecu::platform {
namespace {

struct FrmSample {
    Form form{"frm_sample", "Sample"};
    TextBox box{form, "box"};
    CheckBox check{form, "check"};
    ControlArray<OptionButton, 3> options{form, "options"};
    Button command{form, "command", "&Go"};
    MenuItem menu_file{form, "menu_file", "&File"};
    ControlArray<MenuItem, 2> menu_file_item{menu_file, "menu_file_item", {"&Open", "&Close"}};
    ScrollBar bar{form, "bar", 10, 20, 15};
    Gauge gauge{form, "gauge"};
    Grid grid{form, "grid", 2, 3};
};

struct ControlTest : testing::Test {
    ControlTest() { f.form.set_host(&desktop); }
    test::SimDesktop desktop;
    FrmSample f;
    int fired = 0;
    std::function<void()> count = [this] { ++fired; };
};

TEST_F(ControlTest, WritingTheSameTextStillMakesBoxPending) {
    f.box.set_text("1");
    f.box.changed = [this] { f.box.set_back_colour(pending); };
    f.box.set_text("1");
    EXPECT_TRUE(f.box.is_pending());
    f.box.confirm("1");
    EXPECT_EQ(f.box.back_colour(), confirmed) << "white comes after the event's yellow";
    EXPECT_EQ(desktop.changes("frm_sample", "box", Property::text), 1) << "the same text is not repainted";
}

TEST_F(ControlTest, CheckBoxSetByProgramFiresOnlyWhenItDiffers) {
    f.check.clicked = count;
    f.check.set_checked(true);
    f.check.set_checked(true);
    EXPECT_EQ(fired, 1);
    f.check.click();
    EXPECT_FALSE(f.check.checked());
    EXPECT_EQ(fired, 2);
    f.check.set_enabled(false);
    f.check.click();
    EXPECT_EQ(fired, 2);
}

TEST_F(ControlTest, OptionsExcludeEachOtherAndOnlyTheChosenFires) {
    for (OptionButton& option : f.options) {
        option.clicked = count;
    }
    EXPECT_EQ(chosen(f.options), -1);
    f.options[0].set_checked(true);
    f.options[2].click();
    EXPECT_EQ(chosen(f.options), 2);
    EXPECT_FALSE(f.options[0].checked());
    EXPECT_EQ(fired, 2);
    f.options[2].set_checked(true);
    EXPECT_EQ(fired, 2) << "the program's choice of the chosen one is no event";
    f.options[2].click();
    EXPECT_EQ(fired, 3) << "the user's click on it is";
}

TEST_F(ControlTest, DisabledButtonAndMenuItemDoNothing) {
    f.command.clicked = f.menu_file_item[1].clicked = count;
    f.menu_file_item[1].set_checked(true);
    EXPECT_EQ(fired, 0) << "ticking a menu item is no click";
    f.command.press();
    f.menu_file_item[1].click();
    EXPECT_EQ(fired, 2);
    f.command.set_enabled(false);
    f.menu_file_item[1].set_enabled(false);
    f.command.press();
    f.menu_file_item[1].click();
    EXPECT_EQ(fired, 2);
}

TEST_F(ControlTest, ScrollBarHoldsItsLimits) {
    f.bar.changed = count;
    f.bar.set_value(25);
    f.bar.set_value(20);
    EXPECT_EQ(f.bar.value(), 20);
    f.bar.set_value(-1);
    EXPECT_EQ(f.bar.value(), 10);
    EXPECT_EQ(fired, 2);
}

TEST_F(ControlTest, UnchangedPropertiesAreNotRepainted) {
    for (int i = 0; i < 2; ++i) {
        f.gauge.set_value(5);
        f.gauge.set_scale({.full_scale = 12000});
        f.options[1].set_fore_colour(light_red);
        f.options[1].set_visible(false);
    }
    EXPECT_EQ(desktop.changes("frm_sample", "gauge"), 2);
    EXPECT_EQ(desktop.changes("frm_sample", "options(1)"), 2);
}

TEST_F(ControlTest, GridCellWrittenAgainIsPendingAndConfirmEndsWhite) {
    std::vector<std::pair<int, int>> changed;
    f.grid.cell_changed = [&](int row, int column) {
        changed.emplace_back(row, column);
        f.grid.set_cell_back(row, column, pending);
    };
    f.grid.set_cell_text(2, 3, "1.0");
    EXPECT_TRUE(f.grid.cell_pending(2, 3));
    f.grid.confirm_cell(2, 3, "1.0");
    EXPECT_EQ(f.grid.cell_back(2, 3), confirmed);
    EXPECT_EQ(changed, (std::vector<std::pair<int, int>>{{2, 3}, {2, 3}}));
    for (const auto& [row, column] : {std::pair{0, 1}, {1, 0}, {3, 1}, {1, 4}}) {
        EXPECT_THROW(f.grid.set_cell_text(row, column, ""), std::out_of_range);
    }
}

TEST_F(ControlTest, GridBatchIsOneRepaint) {
    f.grid.begin_batch();
    for (int column = 1; column <= 3; ++column) {
        f.grid.confirm_cell(1, column, "0.5");
    }
    EXPECT_EQ(desktop.changes("frm_sample", "grid"), 0);
    f.grid.end_batch();
    EXPECT_EQ(desktop.changes("frm_sample", "grid"), 1);
    EXPECT_EQ(f.grid.changed_row(), 0) << "anywhere";
}

TEST_F(ControlTest, UnknownDoubleOrMistypedControlIsRefusedByName) {
    FormRegistry registry;
    registry.add(f.form);
    EXPECT_EQ(&registry.get<OptionButton>("frm_sample", "options", 2), &f.options[2]);
    const auto refused = [](auto&& use, const std::string& named) {
        try {
            use();
            ADD_FAILURE() << "accepted: " << named;
        } catch (const std::logic_error& error) {
            EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
        }
    };
    refused([&] { registry.get<OptionButton>("frm_sample", "options", 3); }, "options(3)");
    refused([&] { registry.get<TextBox>("frm_other", "box"); }, "frm_other");
    refused([&] { registry.get<Label>("frm_sample", "box"); }, "box");
    refused([&] { const Label twice(f.form, "box"); }, "box");
    refused([&] { registry.add(f.form); }, "frm_sample");
}

TEST_F(ControlTest, ActivationComesWithTheNextEventsAndNotWhenHiddenByThen) {
    f.form.on_activate = count;
    f.form.show();
    EXPECT_EQ(fired, 0);
    desktop.process_events();
    EXPECT_EQ(fired, 1);
    f.form.hide();
    f.form.show();
    f.form.hide();
    desktop.process_events();
    EXPECT_EQ(fired, 1);
}

TEST_F(ControlTest, UnloadingRunsItsHandlerFirstAndKeepsContents) {
    f.form.on_load = count;
    f.form.on_unload = [this] { EXPECT_TRUE(f.form.visible()); };
    f.form.show();
    f.box.set_text("12");
    f.form.close_requested();
    EXPECT_FALSE(f.form.loaded());
    EXPECT_FALSE(f.form.visible());
    f.form.show();
    EXPECT_EQ(f.box.text(), "12");
    EXPECT_EQ(fired, 2);
    f.form.on_close = [] {};
    f.form.close_requested();
    EXPECT_TRUE(f.form.visible()) << "the form may refuse to close";
}

TEST_F(ControlTest, ModalFormHoldsTheCallerUntilTheUserActs) {
    f.command.clicked = [this] { f.form.unload(); };
    desktop.on_modal("frm_sample", [this](Form&) { f.command.press(); });
    f.form.on_activate = count;
    f.form.show_modal();
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(f.form.visible());
}

// Else a test of something else would pass over it.
TEST_F(ControlTest, UnforeseenQuestionFailsTheTestAndGetsTheSafeAnswer) {
    auto answer = Answer::yes;
    EXPECT_NONFATAL_FAILURE(answer = desktop.message_box({.text = "Erase?", .buttons = Buttons::yes_no}), "Erase?");
    EXPECT_EQ(answer, Answer::no);
    EXPECT_NONFATAL_FAILURE(f.form.show_modal(), "frm_sample");
    EXPECT_FALSE(f.form.visible());
}

} // namespace
} // namespace ecu::platform
