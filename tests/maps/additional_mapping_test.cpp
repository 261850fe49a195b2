#include "maps/map_bench.h"
#include "messages/capabilities.h"
#include "platform/display_mask.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using platform::KeyPress;
using platform::pending;
using testing::Each;
using testing::ElementsAre;

// Tables in the order of an Update: where they lie and what a raw byte shows, as text that an entry may have.
struct TableCase {
    const char* name;
    int base;
    double step;
    double zero;
    int limit;
    const char* reset; // menu entry
    const char* reset_text;
};
const std::array<TableCase, 14> cases{{{"clt_map", 0x0070, 1 / 64.0, 0, 255, "menuresetcoolant", "1.000"},
                                       {"mat_data", 0x0080, 1 / 64.0, 0, 255, "menuresetmat", "1.000"},
                                       {"Pressure_Gain", 0x0090, 1 / 64.0, 0, 255, "menuresetaux", "1.000"},
                                       {"ign_map", 0x0200, 0.25, -16, 255, "menuresetign_map", "0.0"},
                                       {"ign_rpm", 0x0210, 0.25, -16, 255, "menuresetign_rpm", "0.0"},
                                       {"ign_mat", 0x0240, 0.25, -16, 255, "menuresetign_mat", "0.0"},
                                       {"baro_gain", 0x0220, 1 / 128.0, 0, 255, "menureset_baro_gain", "1.000"},
                                       {"idle_rpm_map", 0x0230, 8, 0, 255, "menuresetidle", "800"},
                                       {"dwell_map", 0x0480, 1 / 64.0, 0, 160, "menureset_dwell_mult", "1.000"},
                                       {"ign_bar", 0x04A0, 0.25, -16, 255, "menuresetbaro", "0.0"},
                                       {"ign_clt", 0x04B0, 0.25, -16, 255, "menureset_CLT_ign", "0.0"},
                                       {"ign_aux", 0x04C0, 0.25, -16, 255, "menureset_AUX_ign", "0.0"},
                                       {"accel_map", 0x04D0, 1 / 64.0, 0, 255, "menuresetaccel", "1.000"},
                                       {"dwell_vbat", 0x0570, 1 / 64.0, 0, 255, "menureset_vbat_dwell_mult", "1.000"}}};

struct AdditionalMapping : MapBench, testing::Test {
    maps::Frm2d& frm_2d = console.forms.frm_2d;

    void open() {
        console.navigation.open(link::View::additional_mapping);
        desktop.run_for(3);
        controller.clear_sent();
    }
    std::vector<Bytes> update() {
        return sent_by([this] { frm_2d.update_button.press(); });
    }
    platform::TextBox& box(const char* name, int i) { return frm_2d.form.get<platform::TextBox>(name, i); }
    void abort_on_failure() {
        desktop.on_modal("frm_Dialog", [this](platform::Form&) {
            console.forms.frm_dialog.dialog_button[2].press(); // Abort
        });
    }
    // A value of its own in every byte of the tables.
    void fill_memory(int salt) {
        for (std::size_t t = 0; t < cases.size(); ++t) {
            for (int i = 0; i < 9; ++i) {
                memory.at(static_cast<std::size_t>(cases[t].base + i)) = raw(t, i, salt);
            }
        }
        for (int i = 0; i < 81; ++i) {
            memory.at(static_cast<std::size_t>(i)) = static_cast<std::uint8_t>(90 + i + salt);
        }
    }
    static std::uint8_t raw(std::size_t table, int i, int salt) {
        return static_cast<std::uint8_t>(1 + table * 10 + static_cast<std::size_t>(i + salt));
    }
    static double value(const TableCase& table, int raw) { return raw * table.step + table.zero; }
    void expect_screen_equals_memory() {
        for (const TableCase& table : cases) {
            for (int i = 0; i < 9; ++i) {
                const int held = memory.at(static_cast<std::size_t>(table.base + i));
                EXPECT_NEAR(std::stod(box(table.name, i).text()), value(table, held), 0.000501) << table.name << i;
                EXPECT_FALSE(box(table.name, i).is_pending()) << table.name << i;
            }
        }
        for (int i = 0; i < 81; ++i) {
            const int held = memory.at(static_cast<std::size_t>(i));
            EXPECT_NEAR(std::stod(frm_2d.lambda_sp_table.cell_text(9 - i % 9, i / 9 + 1)), held / 128.0,
                        held > 128 ? 0.0051 : 0.0006)
                << i;
        }
    }
};

TEST_F(AdditionalMapping, OpeningReadsScalesThenFourteenTablesInTheirOrderThenTheTargetsAndShowsAll) {
    fill_memory(0);
    frm_2d.inj_pw.set_text("9"); // of an earlier opening
    frm_2d.ego_sp_graph.line(0, 0, 1, 1, platform::yellow);
    std::map<int, int> pages; // by address
    bool polled_between = false;
    on_request = [&](const Request& request) {
        pages[request[3] + 256 * request[4]] = frm_2d.map_tabs.current();
        polled_between = polled_between || !console.state.polling_paused;
        EXPECT_FALSE(frm_2d.update_button.enabled() || frm_2d.map_tabs.enabled() || frm_2d.menureset.enabled());
        EXPECT_TRUE(frm_2d.inj_pw.text().empty() && frm_2d.ego_sp_graph.strokes().empty());
        EXPECT_TRUE(request[2] == 'C' || frm_2d.lambda_sp_table.locked());
    };
    const auto messages = sent_by([this] {
        console.navigation.open(link::View::additional_mapping);
        desktop.run_for(3);
    });
    EXPECT_THAT(messages, ElementsAre(Bytes{'C', '0', '0', '0'}, Bytes{'r', 0x70, 0, 0}, Bytes{'r', 0x80, 0, 0},
                                      Bytes{'r', 0x20, 2, 0}, Bytes{'r', 0x90, 0, 0}, Bytes{'r', 0xD0, 4, 0},
                                      Bytes{'r', 0x00, 2, 0}, Bytes{'r', 0x10, 2, 0}, Bytes{'r', 0x40, 2, 0},
                                      Bytes{'r', 0xB0, 4, 0}, Bytes{'r', 0xC0, 4, 0}, Bytes{'r', 0xA0, 4, 0},
                                      Bytes{'r', 0x70, 5, 0}, Bytes{'r', 0x80, 4, 0}, Bytes{'r', 0x30, 2, 0},
                                      Bytes{'k', 0, 0, 0}, Bytes{'k', 27, 0, 0}, Bytes{'k', 54, 0, 0}));
    EXPECT_FALSE(polled_between);
    EXPECT_EQ(pages[0x04D0] * 100 + pages[0x0200] * 10 + pages[0x0570], 12);
    expect_screen_equals_memory();
    EXPECT_EQ(frm_2d.lambda_sp_table.cell_back(1, 9), console.forms.frm_3d.bk_color[0].back_colour()); // the highest
    EXPECT_EQ(console.map_cell_colours.lambda[0], console.forms.frm_3d.bk_color[7].back_colour());
    EXPECT_EQ(frm_2d.form.caption() + frm_2d.map_status.text(), "Additional Mapping ->COM3No values pending");
    EXPECT_EQ(frm_2d.map_tabs.current(), 0);
    EXPECT_TRUE(frm_2d.update_button.enabled() && frm_2d.map_tabs.enabled() && frm_2d.menureset.enabled());
    EXPECT_FALSE(frm_2d.lambda_sp_table.locked() || console.state.polling_paused);
    EXPECT_EQ(frm_2d.ego_sp_graph.strokes().empty() || frm_2d.idle_speed_graph.strokes().empty(), false);
}

TEST_F(AdditionalMapping, AxesFollowTheSensorAndTheSpeedOfTheControllerAndTheBarometersDoNot) {
    controller.reply_to('C', [] {
        Bytes reply(19, 0);
        reply[0] = 'C';
        reply[14] = 0x40; // 8000 rpm
        reply[15] = 0x1F;
        reply[18] = 2; // 551 kPa from 79
        return reply_frame(reply);
    }());
    open();
    const auto ends = [](const maps::Frm2d::Axis& axis) { return axis[0].text() + " " + axis[7].text(); };
    for (const maps::Frm2d::Axis* axis : {&frm_2d.Label4, &frm_2d.Label5, &frm_2d.Label14}) {
        EXPECT_EQ(ends(*axis), "79 561"); // 482.125 cut off, and 79
    }
    for (const maps::Frm2d::Axis* axis : {&frm_2d.Label9, &frm_2d.Label13, &frm_2d.Label12}) {
        EXPECT_EQ(ends(*axis), "10 110"); // 100.625 cut off, and 10
    }
    for (const maps::Frm2d::Axis* axis :
         {&frm_2d.Label6, &frm_2d.Label2, &frm_2d.Label10, &frm_2d.Label11, &frm_2d.Label15, &frm_2d.Label17}) {
        EXPECT_EQ(ends(*axis), "-13 99");
    }
    EXPECT_EQ(ends(frm_2d.Label3) + ", " + ends(frm_2d.Label7), "0 7000, 0 7000");
    EXPECT_EQ(ends(frm_2d.Label1) + ", " + ends(frm_2d.Label16), "0.000 2.888, 0.000 2.888");
}

TEST_F(AdditionalMapping, EverythingChangedGoesOutOnceInTheOrderOfTheWalkAndTheScreenEqualsTheMemory) {
    fill_memory(0);
    open();
    std::vector<Bytes> wanted;
    for (std::size_t t = 0; t < cases.size(); ++t) {
        for (int i = 0; i < 9; ++i) {
            const std::uint8_t changed = raw(t, i, 7);
            box(cases[t].name, i).set_text(platform::plain_number(value(cases[t], changed)));
            const int address = cases[t].base + i;
            wanted.push_back(
                {'e', static_cast<std::uint8_t>(address), static_cast<std::uint8_t>(address / 256), changed});
        }
    }
    for (int i = 0; i < 81; ++i) {
        frm_2d.lambda_sp_table.set_cell_text(9 - i % 9, i / 9 + 1, platform::plain_number((97 + i) / 128.0));
        wanted.push_back({'e', static_cast<std::uint8_t>(i), 0, static_cast<std::uint8_t>(97 + i)});
    }
    desktop.run_for(0.01);
    EXPECT_EQ(frm_2d.tab_status[0].text() + frm_2d.tab_status[1].text() + frm_2d.tab_status[2].text(),
              "45 pending54 pending108 pending");
    EXPECT_EQ(frm_2d.tab_status[1].back_colour(), pending);
    controller.clear_sent();
    frm_2d.update_button.press();
    desktop.run_for(5);
    EXPECT_EQ(controller.messages(), wanted);
    expect_screen_equals_memory();
    EXPECT_EQ(frm_2d.map_status.text() + frm_2d.tab_status[0].text(), "No values pending");
    EXPECT_EQ(frm_2d.tab_status[0].back_colour(), std::nullopt);
    EXPECT_TRUE(update().empty());
}

TEST_F(AdditionalMapping, ValuesAreHeldInSilence) {
    struct Held {
        const char* name;
        const char* text;
        int raw;
        const char* shown;
    };
    open();
    for (const Held& one : {Held{"dwell_map", "3.0", 160, "2.500"},
                            {"dwell_vbat", "5", 255, "3.984"},
                            {"idle_rpm_map", "2100", 255, "2040"},
                            {"idle_rpm_map", "804", 100, "800"},
                            {"ign_mat", "60", 255, "47.750"},
                            {"ign_bar", "-20", 0, "-16.000"},
                            {"baro_gain", "1.5 rich", 192, "1.500"},
                            {"clt_map", "", 0, ".000"},
                            {"mat_data", "none", 0, ".000"},
                            {"accel_map", "-1", 0, ".000"}}) {
        box(one.name, 4).set_text(one.text);
        const auto sent = update();
        ASSERT_EQ(sent.size(), 1U) << one.name;
        EXPECT_EQ(sent[0][3], one.raw) << one.name;
        EXPECT_EQ(std::stod(box(one.name, 4).text()), std::stod(one.shown)) << one.name << box(one.name, 4).text();
    }
    frm_2d.lambda_sp_table.set_cell_text(9, 1, "9");
    EXPECT_EQ(update().at(0)[3], 255);
}

TEST_F(AdditionalMapping, TargetsSpeakTheChosenUnitAndTakeTheirMaskFromTheValue) {
    memory[0] = 128;
    memory[1] = 129;
    open();
    const auto target = [this](int row) { return frm_2d.lambda_sp_table.cell_text(row, 1); };
    EXPECT_EQ(target(9) + " " + target(8) + " " + target(7), "1.000 1.01 0.000");
    frm_2d.exit_button.press();
    console.scales.lambda_scale = 14.7F;
    console.scales.shows_lambda = false;
    open();
    EXPECT_EQ(target(9) + " " + target(8), "14.70 14.81");
    desktop.answer_box("this function will overwrite the table", platform::Answer::yes);
    frm_2d.menuresetegosetpoint.click();
    EXPECT_EQ(target(5), "14.70");
    controller.clear_sent();
    frm_2d.update_button.press();
    desktop.run_for(2);
    EXPECT_EQ(controller.messages().size(), 81U);
    EXPECT_EQ(memory[80], 128);
}

TEST_F(AdditionalMapping, WaitsTwoTenthsAroundAnUpdateAndKeepsPollingOutOfIt) {
    open();
    box("clt_map", 0).set_text("1");
    box("clt_map", 8).set_text("1");
    const double pressed = desktop.seconds();
    double first = 0;
    on_request = [&](const Request& request) {
        EXPECT_TRUE(console.state.polling_paused);
        first = request[3] == 0x70 ? desktop.seconds() : first;
    };
    frm_2d.update_button.press();
    EXPECT_NEAR(first - pressed, 0.2, 0.02);
    EXPECT_NEAR(desktop.seconds() - pressed, 0.4, 0.05);
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(AdditionalMapping, ExitInTheReadStopsItAndReopeningFromWithinIsNotClosedByTheFirst) {
    on_request = [this](const Request& request) {
        if (request[2] == 'k' && request[3] == 27) {
            desktop.post([this] { frm_2d.exit_button.press(); });
        }
    };
    auto messages = sent_by([this] { console.navigation.open(link::View::additional_mapping); });
    EXPECT_EQ(messages.back(), (Bytes{'k', 27, 0, 0}));
    EXPECT_FALSE(frm_2d.form.visible() || console.state.polling_paused);
    EXPECT_EQ(console.state.current_view, link::View::none);

    on_request = [this](const Request& request) {
        if (request[2] == 'r' && request[3] == 0x80 && request[4] == 0) {
            on_request = nullptr;
            desktop.post([this] { frm_2d.exit_button.press(); });
            // The next free tick, while the first read still waits for its polling to come to rest.
            desktop.schedule(desktop.now() + 50'000, [this] {
                EXPECT_FALSE(console.state.polling_paused);
                console.navigation.open(link::View::additional_mapping);
            });
        }
    };
    messages = sent_by([this] { console.navigation.open(link::View::additional_mapping); });
    desktop.run_for(3);
    EXPECT_TRUE(frm_2d.form.visible());
    EXPECT_EQ(messages.size(), 3U + 18U);
    EXPECT_EQ(frm_2d.map_status.text(), "No values pending");
    EXPECT_TRUE(frm_2d.update_button.enabled() && frm_2d.map_tabs.enabled());
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(AdditionalMapping, AbortInTheReadOrLaterLeavesNothingOnTheScreenThatCouldBeWritten) {
    const auto expect_blank = [this] {
        EXPECT_FALSE(frm_2d.form.visible());
        for (const TableCase& table : cases) {
            EXPECT_TRUE(box(table.name, 3).is_pending() && box(table.name, 3).text().empty()) << table.name;
        }
        EXPECT_TRUE(frm_2d.lambda_sp_table.cell_pending(5, 5) && frm_2d.lambda_sp_table.cell_text(5, 5).empty());
    };
    fill_memory(0);
    on_request = [this](const Request& request) {
        if (request[2] == 'r' && request[4] == 5) {
            controller.silence();
        }
    };
    abort_on_failure();
    console.navigation.open(link::View::additional_mapping);
    desktop.run_for(5);
    expect_blank();
    on_request = nullptr;
    controller.speak();
    open();
    expect_screen_equals_memory();
    controller.silence();
    abort_on_failure();
    box("ign_rpm", 2).set_text("5");
    frm_2d.update_button.press();
    desktop.run_for(5);
    EXPECT_TRUE(box("ign_rpm", 2).is_pending());
    frm_2d.exit_button.press();
    expect_blank();
}

TEST_F(AdditionalMapping, FailedWritesKeepABoxYellowButNotATargetAndWhatIsTypedBehindTheWalkStays) {
    open();
    box("clt_map", 0).set_text("1");
    box("ign_map", 0).set_text("1");
    frm_2d.lambda_sp_table.set_cell_text(9, 1, "1");
    on_request = [this](const Request& request) {
        if (request[2] == 'e' && request[4] == 2) {
            controller.silence();
            box("clt_map", 0).set_text("1.25");
            frm_2d.lambda_sp_table.set_cell_text(1, 9, "0.5"); // ahead of the walk
        } else if (request[2] == 'e' && request[4] == 0 && request[3] == 0) {
            frm_2d.lambda_sp_table.set_cell_text(9, 1, "1.1"); // under the walk
        }
    };
    abort_on_failure();
    frm_2d.update_button.press();
    desktop.run_for(5);
    EXPECT_TRUE(box("ign_map", 0).is_pending() && box("clt_map", 0).is_pending());
    EXPECT_EQ(box("clt_map", 0).text(), "1.25");
    EXPECT_FALSE(frm_2d.lambda_sp_table.cell_pending(1, 9)); // the shading took it
    EXPECT_EQ(frm_2d.lambda_sp_table.cell_text(1, 9), "0.5");
    EXPECT_TRUE(frm_2d.lambda_sp_table.cell_unconfirmed(1, 9)); // and its mark stays
}

TEST_F(AdditionalMapping, ATableThatWasNotReadIsNeverSentNorDrawnAndIsReadAgainOnThePageThatShows) {
    fill_memory(0);
    on_request = [this](const Request& request) {
        if (request[2] == 'r' && request[3] == 0x10) {
            controller.silence();
        }
    };
    desktop.on_modal("frm_Dialog", [this](platform::Form&) {
        controller.speak();
        on_request = nullptr;
        console.forms.frm_dialog.dialog_button[0].press(); // Try Again
    });
    console.navigation.open(link::View::additional_mapping);
    desktop.run_for(8);
    ASSERT_TRUE(frm_2d.form.visible());
    EXPECT_TRUE(box("ign_rpm", 0).unread() && box("ign_rpm", 8).unread());
    EXPECT_EQ(frm_2d.rpm_ign_graph.strokes().size(), 9U); // no curve
    frm_2d.map_tabs.set_current(1);
    box("ign_rpm", 3).set_text("7");
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0x13, 2, 92}));
    frm_2d.tab_status[0].set_text("");
    EXPECT_THAT(sent_by([this] { frm_2d.read_again.press(); }), ElementsAre(Bytes{'r', 0x10, 2, 0}));
    EXPECT_EQ(frm_2d.map_tabs.current(), 1);
    EXPECT_EQ(desktop.changes("frm_2d", "ign_map(0)", platform::Property::focus), 1);
    expect_screen_equals_memory();
}

TEST_F(AdditionalMapping, OpeningReadsButNeverEnablesWhatTheControllerDoesNotHave) {
    messages::Capabilities capabilities(console.forms.registry);
    capabilities.apply(0x0400); // neither idle control nor fuel
    memory[0x0230] = 100;
    open();
    EXPECT_EQ(box("idle_rpm_map", 0).text(), "800");
    for (const char* name : {"idle_rpm_map", "clt_map", "mat_data", "baro_gain", "Pressure_Gain"}) {
        EXPECT_FALSE(box(name, 8).enabled()) << name;
    }
    EXPECT_TRUE(box("accel_map", 8).enabled() && box("ign_map", 0).enabled());
    frm_2d.menureset.click();
    EXPECT_FALSE(frm_2d.menuresetidle.enabled() || frm_2d.menuresetcoolant.enabled());
    EXPECT_TRUE(frm_2d.menuresetaccel.enabled());
    frm_2d.menuresetcoolant.clicked(); // by what is behind the menu it asks nothing and resets nothing
    EXPECT_FALSE(box("clt_map", 0).is_pending());
    capabilities.apply(0x0700);
    frm_2d.menureset.click();
    EXPECT_TRUE(frm_2d.menuresetidle.enabled() && box("idle_rpm_map", 0).enabled());
}

TEST_F(AdditionalMapping, EachResetAsksAndWritesItsOwnTableAndNothingIsSent) {
    open();
    for (const TableCase& table : cases) {
        auto& item = frm_2d.form.get<platform::MenuItem>(table.reset);
        const std::string before = box(table.name, 3).text();
        desktop.answer_box("this function will overwrite the table, continue?", platform::Answer::no);
        item.click();
        EXPECT_EQ(box(table.name, 3).text(), before);
        desktop.answer_box("this function will overwrite the table, continue?", platform::Answer::yes);
        EXPECT_TRUE(sent_by([&] { item.click(); }).empty());
        int written = 0;
        for (const platform::Control* control : frm_2d.form.controls()) {
            const auto* one = dynamic_cast<const platform::TextBox*>(control);
            if (one != nullptr && one->is_pending()) {
                EXPECT_EQ(one->name() + one->text(), std::string(table.name) + table.reset_text);
                ++written;
            }
        }
        EXPECT_EQ(written, 9) << table.name;
        update();
    }
    EXPECT_EQ(desktop.boxes().back().title, "CAUTION!");
    EXPECT_EQ(desktop.boxes().back().preset, platform::Answer::no);
}

TEST_F(AdditionalMapping, KeysStepAndMoveInThreeArraysOnlyAndEnterUpdatesFromEveryBox) {
    open();
    const auto press = [this](const char* name, int i, KeyPress key) {
        desktop.clear_changes();
        box(name, i).key_down(key);
        return key.code;
    };
    const auto focused = [this](const std::string& full_name) {
        return desktop.changes("frm_2d", full_name, platform::Property::focus) == 1;
    };
    const KeyPress up{.code = 38, .shift = true};
    const KeyPress down{.code = 40, .shift = true};
    for (const char* name : {"clt_map", "mat_data", "Pressure_Gain"}) {
        box(name, 1).set_text("3.98");
        EXPECT_EQ(press(name, 1, up), 16);
        EXPECT_EQ(box(name, 1).text(), "3.984") << name;
        box(name, 1).set_text("1");
        press(name, 1, down);
        EXPECT_EQ(box(name, 1).text(), ".984");
        box(name, 1).confirm(".000");
        press(name, 1, down);
        EXPECT_TRUE(box(name, 1).text() == ".000" && box(name, 1).is_pending());
        press(name, 0, {.code = 39});
        EXPECT_TRUE(focused(std::string(name) + "(1)"));
        EXPECT_EQ(press(name, 8, {.code = 39}) + press(name, 0, {.code = 37}), 39 + 37); // the ends
    }
    press("clt_map", 5, {.code = 40});
    EXPECT_TRUE(focused("mat_data(0)"));
    press("mat_data", 5, {.code = 40});
    EXPECT_TRUE(focused("Pressure_Gain(0)"));
    press("Pressure_Gain", 5, {.code = 38});
    EXPECT_TRUE(focused("mat_data(0)"));
    press("mat_data", 5, {.code = 38});
    EXPECT_TRUE(focused("clt_map(0)"));
    press("clt_map", 5, {.code = 38});
    press("Pressure_Gain", 5, {.code = 40});
    press("clt_map", 5, {.code = 40, .ctrl = true});
    EXPECT_FALSE(focused("clt_map(0)") || focused("Pressure_Gain(0)") || focused("mat_data(0)"));
    EXPECT_EQ(press("accel_map", 1, up), 38);
    for (const TableCase& table : cases) {
        box(table.name, 7).set_text("0");
        EXPECT_EQ(sent_by([&] { EXPECT_EQ(press(table.name, 2, {.code = 13}), 0); }).back()[3], table.zero < 0 ? 64 : 0)
            << table.name;
        const std::string name = table.name;
        EXPECT_EQ(bool(box(table.name, 0).got_focus), name.starts_with("clt") || name.starts_with("mat") ||
                                                          name.starts_with("Pr") || name.starts_with("acc") ||
                                                          name.starts_with("baro"))
            << name;
    }
    platform::Grid& grid = frm_2d.lambda_sp_table;
    grid.set_active_cell(2, 2);
    grid.set_cell_text(2, 2, "0.005");
    KeyPress key = down;
    grid.key_down(key);
    EXPECT_EQ(grid.cell_text(2, 2), ".00");
    key = up;
    grid.key_down(key);
    EXPECT_EQ(grid.cell_text(2, 2), ".01");
}

TEST_F(AdditionalMapping, GraphsFollowWhatIsTypedTheShownPageAndTheirSizes) {
    fill_memory(0);
    open();
    const auto points = [](const platform::Picture& picture) {
        std::vector<int> heights;
        for (const auto& stroke : picture.strokes()) {
            const auto& line = std::get<platform::Picture::Line>(stroke);
            if (line.colour == platform::yellow) {
                heights.push_back(line.y2);
            }
        }
        return heights;
    };
    const auto before = points(frm_2d.mat_enr_graph);
    box("mat_data", 8).set_text("3");
    desktop.run_for(0.01);
    EXPECT_NE(points(frm_2d.mat_enr_graph), before);
    EXPECT_EQ(frm_2d.mat_enr_graph.text(), ".172 to 3.000");
    EXPECT_EQ(frm_2d.aux_ign_graph.text(), "-16.000 to 48.000");
    box("ign_clt", 0).set_text("48"); // on a hidden page
    frm_2d.map_tabs.set_current(1);
    EXPECT_EQ(points(frm_2d.clt_ign_graph)[0], 12); // 400 less 85 % and 12 % of it
    update();                                       // which held it, and draws what stands on no page either
    EXPECT_EQ(points(frm_2d.clt_ign_graph)[0], 13);
    box("clt_map", 0).set_text("9");
    frm_2d.lambda_sp_table.set_cell_text(9, 1, "1.9");
    update();
    EXPECT_EQ(frm_2d.clt_enr_graph.text(), ".031 to 3.984");
    EXPECT_EQ(frm_2d.lambda_sp_table.cell_back(9, 1), console.forms.frm_3d.bk_color[0].back_colour());
    EXPECT_EQ(std::lround(100 * console.graphing.ego_surface_high()), 190);
    desktop.clear_changes();
    frm_2d.idle_speed_graph.resize(300, 200); // its page is shown for the first time
    frm_2d.ego_h_perspective.set_value(10);
    frm_2d.ego_v_perspective.set_value(90);
    frm_2d.ego_sp_graph.resize(500, 300);
    EXPECT_EQ(std::get<platform::Picture::Line>(frm_2d.idle_speed_graph.strokes()[0]).y2, 200);
    EXPECT_EQ(desktop.changes("frm_2d", "ego_sp_graph", platform::Property::content), 3);
    EXPECT_EQ(console.graphing.last_surface_kind(), 9);
    EXPECT_EQ(console.graphing.points().surface_x[8][0] - console.graphing.points().surface_x[0][0], 325);
}

TEST_F(AdditionalMapping, DemoShowsItsSampleEverywhereAndTheReadOutItsLetter) {
    console.state.demo_mode = true;
    open();
    for (const TableCase& table : cases) {
        EXPECT_EQ(box(table.name, 8).text(), "1.000");
        EXPECT_EQ(box(table.name, 8).back_colour(), platform::confirmed);
    }
    EXPECT_EQ(frm_2d.lambda_sp_table.cell_text(9, 9), "1.000");
    console.live.injector_pw = 0.0081234F;
    console.live.ignition_timing = -5.25F;
    console.additional_mapping.refresh_live();
    EXPECT_EQ(frm_2d.inj_pw.text() + " " + frm_2d.ign_deg.text(), "8.123 5.25A");
    console.live.ignition_timing = 0;
    console.additional_mapping.refresh_live();
    EXPECT_EQ(frm_2d.ign_deg.text(), "0.00B");
}

TEST_F(AdditionalMapping, ItsMenuAndItsOwnRequestLeaveForTheViewsByTheirNames) {
    const auto requested = [this](link::ViewRequest view) {
        return !frm_2d.form.visible() && console.state.pending_view_request[static_cast<std::size_t>(view)];
    };
    open();
    frm_2d.menu3d.click();
    EXPECT_TRUE(requested(link::ViewRequest::basic_mapping));
    console.state.drop_view_requests();
    open();
    console.block_selection.open_modifier();
    frm_2d.menudash.click();
    EXPECT_TRUE(requested(link::ViewRequest::dashboard));
    EXPECT_FALSE(console.forms.frm_cellblock_modifier.form.visible());
    console.state.drop_view_requests();
    open();
    console.state.request_view(link::ViewRequest::monitor);
    console.additional_mapping.open_anew();
    EXPECT_TRUE(requested(link::ViewRequest::additional_mapping));
    EXPECT_FALSE(requested(link::ViewRequest::monitor));
}

} // namespace
} // namespace ecu::test
