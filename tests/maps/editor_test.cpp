// What every editor owes the engine beside its order: what was never read, never arrived, was held, or is no number.
#include "link/link_bench.h"
#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Editor : MapBench, testing::Test {
    std::function<bool(const Request&)> lost; // a request of which every try goes unanswered

    Editor() {
        const auto answered = controller.responder;
        controller.responder = [this, answered](const Request& request) {
            return lost && lost(request) ? Bytes{} : answered(request);
        };
    }
    void press_in_failure_dialog(std::size_t button) {
        desktop.on_modal("frm_Dialog",
                         [this, button](platform::Form&) { console.forms.frm_dialog.dialog_button[button].press(); });
    }
    static bool is_block(const Request& request, int address) {
        return request[2] == 'l' && request[3] + 256 * request[4] == address;
    }
    static bool is_cell(const Request& request, int address) {
        return request[2] == 'e' && request[3] + 256 * request[4] == address;
    }
    // Opens with the boxes of `B` and the second block of the fuel map never answered.
    void open_with_gaps() {
        memory.fill(128);
        words['m'] = {0xE7, 0x18};
        words['o'] = {0xB8, 0x3E};
        lost = [](const Request& request) { return request[2] == 'B' || is_block(request, 0x0120); };
        press_in_failure_dialog(0);
        press_in_failure_dialog(0);
        console.navigation.open(link::View::basic_mapping);
        desktop.run_for(30);
        lost = nullptr;
        controller.clear_sent();
    }
    const std::string& status() { return frm_3d.map_status.text(); }
    platform::TextBox& scaler() { return frm_3d.ecu_pgm[0]; }
};

TEST_F(Editor, WhatWasNeverReadIsCountedAndNeverSentUntilAnEntryFillsIt) {
    open_with_gaps();
    EXPECT_TRUE(scaler().is_pending() && scaler().unread() && frm_3d.inj_map.cell_unread(1, 3));
    EXPECT_EQ(status(), "34 values not read: read again");
    EXPECT_THAT(update(), IsEmpty());
    platform::KeyPress up{.code = platform::key::up, .shift = true};
    frm_3d.inj_map.set_active_cell(1, 3);
    frm_3d.inj_map.key_down(up);
    platform::KeyPress down{.code = platform::key::down, .shift = true};
    scaler().key_down(down);
    scaler().set_text(""); // emptied: still nothing that was filled
    frm_3d.inj_map.set_cell_text(2, 3, "");
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0, 1, 141}));
    EXPECT_EQ(status(), "34 values not read: read again"); // no yellow of theirs counts as pending, nor does it go
    scaler().set_text("10");
    frm_3d.inj_map.set_cell_text(1, 3, ".5");
    EXPECT_THAT(update(), ElementsAre(Bytes{'m', 0x6A, 0x18, 0}, Bytes{'e', 47, 1, 64}));
    EXPECT_EQ(status(), "32 values not read: read again");
}

TEST_F(Editor, ReadingAgainAsksForWhatIsMissingOnlyAndKeepsWhatWasTyped) {
    open_with_gaps();
    EXPECT_TRUE(frm_3d.read_again.enabled());
    frm_3d.inj_map.set_cell_text(16, 3, "1.5"); // in the block that will come
    frm_3d.ign_map.set_cell_text(1, 1, "7");    // and in one that will not
    frm_3d.ecu_pgm[1].set_text("-1");           // beside one that is missing
    bool locked = false;
    on_request = [&](const Request& request) { locked = locked || (request[2] == 'l' && frm_3d.inj_map.locked()); };
    EXPECT_THAT(sent_by([this] { frm_3d.read_again.press(); }),
                ElementsAre(Bytes{'B', '0', '0', '0'}, Bytes{'l', 0x20, 1, 0}));
    EXPECT_TRUE(locked);
    EXPECT_EQ(scaler().text() + " " + fuel(1, 3) + " " + fuel(16, 3), "10.200 1.000 1.5");
    EXPECT_FALSE(scaler().is_pending() || frm_3d.inj_map.cell_pending(1, 3) || console.state.polling_paused);
    EXPECT_EQ(status(), "3 values pending: Boxes 1, Fuel 1, Ignition 1");
    EXPECT_FALSE(frm_3d.read_again.enabled());
    EXPECT_TRUE(sent_by([this] { console.basic_mapping.editor().read_again(); }).empty());
    EXPECT_EQ(update().size(), 3U);
}

TEST_F(Editor, AbortInTheSecondReadClosesAsInTheFirstAndLeavingIsNoLessPossible) {
    open_with_gaps();
    lost = [](const Request& request) { return is_block(request, 0x0120); };
    press_in_failure_dialog(2);
    frm_3d.read_again.press();
    desktop.run_for(20);
    EXPECT_FALSE(frm_3d.form.visible() || console.state.polling_paused);
    EXPECT_TRUE(frm_3d.inj_map.cell_unread(16, 1) && scaler().unread());
}

TEST_F(Editor, AnUpdateThatIsAbortedAndClosedSendsNoneOfItsBlankedValuesToTheNextController) {
    memory.fill(128);
    open();
    editing::write_all(frm_3d.inj_map, "1.1");
    frm_3d.ign_map.set_cell_text(16, 1, "9");
    lost = [](const Request& request) { return is_cell(request, 0x0101); };
    desktop.on_modal("frm_Dialog", [this](platform::Form&) {
        console.forms.frm_dialog.dialog_button[2].press(); // Abort
        desktop.post([this] {
            frm_3d.exit_button.press();
            console.state.comm_aborted = false; // another view opens the link at once
            lost = nullptr;
        });
    });
    const auto sent = update();
    desktop.run_for(20);
    EXPECT_EQ(memory[0x0100], 141);
    EXPECT_EQ(memory[0x0102], 128);
    EXPECT_EQ(memory[0x0600], 128);
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(Editor, AValueThatNeverArrivedKeepsItsMarkAndIsToldUntilItsEchoOrANewRead) {
    memory.fill(128);
    open();
    lost = [](const Request& request) { return is_cell(request, 0x0100); };
    press_in_failure_dialog(0);
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    update();
    desktop.run_for(20);
    EXPECT_FALSE(frm_3d.inj_map.cell_pending(16, 1)); // the shading took the yellow
    EXPECT_TRUE(frm_3d.inj_map.cell_unconfirmed(16, 1));
    EXPECT_EQ(status(), "1 value was not taken by the controller");
    lost = nullptr;
    frm_3d.inj_map.set_cell_text(15, 1, "1.1"); // a later Update of other cells does not hide it
    update();
    EXPECT_EQ(status(), "1 value was not taken by the controller");
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    desktop.run_for(0.1);
    EXPECT_EQ(status(), "1 value pending: Fuel 1");
    update();
    EXPECT_EQ(status(), "No values pending");
    EXPECT_FALSE(frm_3d.inj_map.cell_unconfirmed(16, 1));
}

TEST_F(Editor, DemoChosenInTheFailureDialogDoesNotMakeUnsentValuesArrive) {
    open();
    lost = [](const Request& request) { return request[2] == 'e'; };
    press_in_failure_dialog(1);
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    frm_3d.inj_map.set_cell_text(15, 1, "1.1");
    update();
    desktop.run_for(20);
    EXPECT_TRUE(console.state.demo_mode);
    EXPECT_EQ(status(), "2 values not sent: demo mode");
    frm_3d.ign_map.set_cell_text(16, 1, "5");
    update();
    EXPECT_EQ(status(), "3 values not sent: demo mode");
}

TEST_F(Editor, ACellEnteredBehindItsOwnMessageOutlivesTheEchoAndAClosedWindowSaysNothingMore) {
    memory.fill(128);
    open();
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    frm_3d.inj_map.set_cell_text(15, 1, "1.2");
    on_request = [this](const Request& request) {
        if (is_cell(request, 0x0100)) {
            frm_3d.inj_map.set_cell_text(16, 1, "1.5");
        }
    };
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0, 1, 141}, Bytes{'e', 1, 1, 154}));
    on_request = nullptr;
    EXPECT_TRUE(frm_3d.inj_map.cell_pending(16, 1)) << "nor does the shading take its yellow";
    EXPECT_EQ(fuel(16, 1), "1.5");
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0, 1, 192}));
    EXPECT_EQ(fuel(16, 1), "1.500");

    frm_3d.ecu_pgm[0].set_text("9");
    frm_3d.tps_rpm.set_text("20000"); // would be refused with a box
    frm_3d.inj_map.set_cell_text(16, 1, "1");
    on_request = [this](const Request&) { frm_3d.exit_button.press(); };
    const auto sent = update();
    EXPECT_EQ(sent.back(), (Bytes{'e', 0, 1, 128})) << "what needs no word still goes";
    EXPECT_FALSE(frm_3d.form.visible());
}

TEST_F(Editor, ARefusedValueIsShownAndItsBoxSaysWhereItStands) {
    memory.fill(128);
    open();
    frm_3d.show_map_type[2].click();
    frm_3d.inj_map.set_cell_text(4, 2, "2.5"); // 12 / 16 of 115 kPa from 10, a sixteenth of 10000 rpm
    frm_3d.tps_rpm.set_text("20000");
    desktop.expect_box("The value for the TPS Map cut-in RPM was too high");
    desktop.expect_box("too high");
    desktop.clear_changes();
    update();
    EXPECT_EQ(desktop.boxes()[0].details, "Boxes, TPS Map cut-in RPM");
    EXPECT_EQ(desktop.boxes()[1].details, "Fuel, 96 kPa, 625 rpm");
    EXPECT_EQ(desktop.changes("frm_3d", "tps_rpm", platform::Property::focus), 1);
    EXPECT_TRUE(frm_3d.inj_map.visible());
    EXPECT_EQ(frm_3d.inj_map.active_row() * 100 + frm_3d.inj_map.active_column(), 402);
}

// The one order of all entries: question, replaced text, notice, message; and nothing of it for values that are gone.
TEST_F(Editor, AnEntryIsAskedForReplacedNoticedAndSentInThisOrder) {
    open();
    editing::EditorLink link(console.ports, console.state, console.comm, console.scales);
    auto& pulses = console.forms.registry.get<platform::TextBox>("frm_tool", "num_pulses_hot");
    auto& gain = console.forms.registry.get<platform::TextBox>("frm_tool", "min_ego_gain");
    const auto send = [&](const calibration::Parameter& row, platform::TextBox& box, const char* text,
                          const editing::GoOn& go_on = {}) {
        box.set_text(text);
        controller.clear_sent();
        return link.send_entry(row, 0, box, go_on);
    };
    const auto& hot = calibration::parameter("HOT_#P");
    const auto& low = calibration::parameter("EGO_A_LO");
    lost = [](const Request& request) { return request[2] == 't' || request[2] == '<'; };
    for (const platform::Answer answer : {platform::Answer::no, platform::Answer::cancel}) {
        desktop.answer_box("more than 1 hot priming pulse", answer);
        EXPECT_EQ(send(hot, pulses, "2"), editing::Fate::skipped);
        EXPECT_THAT(controller.messages(), IsEmpty());
    }
    desktop.answer_box("more than 1 hot priming pulse", platform::Answer::yes);
    EXPECT_EQ(send(hot, pulses, "2", [] { return false; }), editing::Fate::skipped); // closed behind the question
    EXPECT_EQ(desktop.boxes().back().preset, platform::Answer::no);
    desktop.answer_box("more than 1 hot priming pulse", platform::Answer::yes);
    press_in_failure_dialog(0);
    EXPECT_EQ(send(hot, pulses, "2"), editing::Fate::unanswered);
    EXPECT_EQ(controller.messages().front(), (Bytes{'t', 2, 0, 0}));
    desktop.expect_box("The Minimum EGO Gain has been altered to within limits");
    EXPECT_EQ(send(low, gain, ".5", [] { return false; }), editing::Fate::skipped);
    EXPECT_EQ(gain.text(), ".614"); // before the notice
    EXPECT_THAT(controller.messages(), IsEmpty());
}

TEST_F(Editor, SilentHoldsAreToldAfterTheUpdateUntilTheNextEntry) {
    open();
    frm_3d.ign_map.set_cell_text(16, 1, "99");
    frm_3d.ign_map.set_cell_text(15, 1, "47.75"); // the limit itself is held to nothing
    frm_3d.inj_map.set_cell_text(15, 1, "1");
    update();
    EXPECT_EQ(status(), "No values pending; 3 sent, 1 held to its limit: 99 is 47.75");
    frm_3d.inj_map.set_cell_text(15, 1, "1");
    desktop.run_for(0.1);
    EXPECT_EQ(status(), "1 value pending: Fuel 1");
}

TEST_F(Editor, APasteTellsWhatItLeftOutAndWhatWouldNotArriveAsItIs) {
    memory.fill(128);
    open();
    frm_3d.ign_map.paste({16, 1, 16, 1}, "10\tabc\t60,5\t\t-17");
    desktop.run_for(0.1);
    EXPECT_EQ(frm_3d.ign_map.cell_text(16, 3) + frm_3d.ign_map.cell_text(16, 4), "60.516.00");
    EXPECT_THAT(status(), StartsWith("1 not pasted, no number: \"abc\" at 10 kPa, 625 rpm; 2 outside the map's range, "
                                     "first 60.5 at 10 kPa, 1250 rpm; 3 values pending: Ignition 3"));
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0, 6, 104}, Bytes{'e', 32, 6, 255}, Bytes{'e', 64, 6, 0}));
    EXPECT_THAT(status(), EndsWith("3 sent, 2 held to their limits: 60.5 is 47.75"));
}

// An editor of one box, one value of another kind, and nothing read that is not answered.
struct SmallEditor : LinkBench, testing::Test {
    calibration::Scales scales;
    shell::Navigation navigation{ports, state, comm, selection, main_form};
    platform::Form form{"frm_small", "Small"};
    platform::TextBox box{form, "box"};
    platform::Button update_button{form, "update"};
    platform::Button exit_button{form, "leave"};
    platform::Label status{form, "status"};
    int left_to_send = 1;
    int calls = 0;
    std::function<void()> behind_the_box; // while its message is under way
    editing::Editor editor{ports,
                           state,
                           comm,
                           scales,
                           navigation,
                           {.form = form,
                            .title = "Small",
                            .update_button = update_button,
                            .exit_button = exit_button,
                            .status = status,
                            .blanks = false,
                            .reads_each_time = true,
                            .read = [] { return true; }}};

    SmallEditor() {
        form.set_host(&desktop);
        editor.add(calibration::parameter("FUEL_MX"), 0, box, {.group = "Box"});
        editor.add({.pending = [this] { return left_to_send; }, .send = [this](editing::Walk&) { ++calls; }},
                   {.group = "Other"});
        sizes['m'] = 5;
        controller.responder = [this](const Request& request) {
            if (behind_the_box) {
                desktop.post(behind_the_box);
            }
            return reply_frame({request[2]}, sizes[request[2]]);
        };
        form.show();
        desktop.run_for(1);
        box.set_text("1");
    }
    int calls_after_update() {
        calls = 0;
        update_button.press();
        desktop.run_for(1);
        return calls;
    }
};

TEST_F(SmallEditor, TheWalkEndsWhereItsValuesAreGoneAndGoesOnBehindAClosedWindow) {
    EXPECT_EQ(calls_after_update(), 1);
    behind_the_box = [this] { exit_button.press(); };
    EXPECT_EQ(calls_after_update(), 1) << "the tuner asked for all of it";
    form.show();
    desktop.run_for(1);
    box.set_text("1");
    behind_the_box = [this] {
        state.comm_aborted = true;
        exit_button.press();
        state.comm_aborted = false; // another view has opened the link
    };
    EXPECT_EQ(calls_after_update(), 0) << "closed with the link lost";
    form.show();
    desktop.run_for(1);
    box.set_text("1");
    behind_the_box = [this] {
        exit_button.press();
        form.show();
    };
    EXPECT_EQ(calls_after_update(), 0) << "opened anew";
    EXPECT_FALSE(state.polling_paused);
}

TEST_F(SmallEditor, APageThatIsNotBlankedKeepsItsLookAndItsEntriesAndSendsNoOldText) {
    EXPECT_EQ(status.text(), "1 value not read: read again; 1 value pending: Other 1"); // as the opening left it
    box.confirm("2");
    editor.open();
    EXPECT_EQ(box.text(), "2");
    EXPECT_TRUE(box.unread() && !box.is_pending());
    EXPECT_EQ(status.text(), "1 value not read: read again; 1 value pending: Other 1");
    box.set_text("3");
    editor.open();
    EXPECT_TRUE(box.to_be_sent());
}

} // namespace
} // namespace ecu::test
