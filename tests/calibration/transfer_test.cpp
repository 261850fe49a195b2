#include "calibration/setup_file.h"
#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu::calibration {
namespace {

using Outcome = TransferResult::Outcome;
using controller::ControllerMemory;
using testing::ElementsAre;
using testing::HasSubstr;

struct TransferBench {
    test::SimDesktop desktop;
    console::Console console{desktop.ports()};
    Transfer& transfer = console.transfer;
    test::WiredController wired{desktop, desktop.line()};
    FrmWait& wait = console.forms.frm_wait;
    std::vector<std::uint8_t> commands; // of every request, in order

    TransferBench() {
        console.forms.registry.set_host(&desktop);
        console.state.comm_port_number = 3;
        wired.controller.on_request = [this](const link::Request& request) { commands.push_back(request[2]); };
    }
    // The plug is pulled, and another controller, or the same one, is there before anybody notices.
    void replug(std::uint32_t serial) {
        desktop.line().unplug();
        desktop.line().plug_in();
        if (serial != 104077) {
            wired.controller.exchange(serial);
        }
    }
    void ask_who() {
        console.link_selection.open_comm_link();
        console.comm.poll({'R'}, 5);
        console.comm.poll({'-'}, 6);
    }
    ControllerMemory& memory() { return wired.controller.memory(); }
    void at_request(std::size_t number, std::function<void()> action) {
        wired.controller.on_request = [this, number, action](const link::Request& request) {
            commands.push_back(request[2]);
            if (commands.size() == number) {
                action();
            }
        };
    }
    void expect_usable_console() {
        EXPECT_TRUE(console.forms.frm_ecu.form.enabled());
        EXPECT_FALSE(console.forms.frm_ecu.form.hourglass());
        EXPECT_FALSE(wait.form.visible());
        EXPECT_FALSE(console.state.polling_paused);
    }
};

std::string with_line_ends(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const std::string_view line : lines) {
        text += std::string(line) + "\r\n";
    }
    return text;
}

TEST(Download, AsksInItsOrderAndPrintsEveryLineOfTheControllersMemory) {
    TransferBench bench;
    bench.memory().store(controller::slot("ACC_SEN"), 300);
    bench.memory().store(controller::slot("BO_P") + 3, 4096);
    bench.memory().store(controller::slot("INJO") + 7, 65286); // -250
    bench.memory().store_cell(0x01FF, 9);
    bench.memory().store_cell(0x0AB0, 255);
    bool files_closed = false;
    bool kept_out = false;
    bench.transfer.close_files = [&] {
        files_closed = true;
        kept_out = bench.console.state.polling_paused && !bench.console.forms.frm_ecu.form.enabled() &&
                   bench.console.forms.frm_ecu.form.hourglass() && bench.wait.form.visible();
    };
    bench.desktop.choose_file(bench.desktop.path("engine.set"));
    bench.transfer.menufilesave_Click();

    const std::vector<std::uint8_t> batch{'R', 'C', 'B', '@', '!', '%', '^', 'Z', 'S', 'T', 'U', 'V', 'W', 127,
                                          132, 134, 136, 138, 140, 142, 144, 148, 155, 165, 127, 157, 159, 161,
                                          163, 167, 170, 172, 176, 183, 208, 212, 225, 217, 227, 229, 231, 34,
                                          38,  30,  233, 235, 24,  26,  237, 239, 241, 243, 28,  10,  6,   8,
                                          14,  16,  22,  18,  20,  249, 253, 251, 245, 46,  40,  48};
    constexpr std::size_t cells_before_injectors = 4 * 256 + 81 + 16 * 9;
    ASSERT_EQ(bench.commands.size(), 1 + 67 + 1897 + 4);
    EXPECT_TRUE(std::equal(batch.begin(), batch.end(), bench.commands.begin()));
    EXPECT_EQ(bench.commands[68 + cells_before_injectors - 1], 'E');
    EXPECT_EQ(bench.commands[68 + cells_before_injectors], 201);
    EXPECT_EQ(bench.commands[68 + cells_before_injectors + 3], 203);
    EXPECT_EQ(bench.desktop.file_dialogs()[0].filter, "Setup Files (*.set)|");

    const std::string text = bench.desktop.read_file("engine.set");
    EXPECT_EQ(split_lines(text).size(), 2126U);
    EXPECT_EQ(std::ranges::count(text, '\r'), 2126);
    EXPECT_THAT(text, testing::StartsWith("SET_REV = 10000\r\nSW_REV  = V1.02.00 02/12/10\r\nFW_REV  = "));
    EXPECT_THAT(text, HasSubstr("\r\nACC_SEN = 300\r\nACC_RATE= "));
    EXPECT_THAT(text, HasSubstr("\r\nBO_P[003]= = 4096\r\nBO_I[000]= "));
    EXPECT_THAT(text, HasSubstr("\r\nMAPM[255]=9\r\nIGN3[000]="));
    EXPECT_THAT(text, HasSubstr("\r\nINJO[007]=-250\r\nINJL[000]="));
    EXPECT_THAT(text, testing::EndsWith("\r\nBMP3[080]=255\r\n"));
    EXPECT_TRUE(files_closed);
    EXPECT_TRUE(kept_out);
    bench.expect_usable_console();
    bench.transfer.download_to("again.set");
    EXPECT_EQ(bench.desktop.read_file("again.set"), text);
}

TEST(Download, ShowsItsProgressInBytesAndBar) {
    TransferBench bench;
    bench.desktop.line().pace(38400);
    bench.desktop.choose_file(bench.desktop.path("engine.set"));
    bench.transfer.menufilesave_Click();
    EXPECT_EQ(bench.wait.form.caption(), "ECU->" + bench.desktop.path("engine.set"));
    EXPECT_EQ(bench.wait.tx_bytes.text(), std::to_string(8 * (1 + 67 + 1897 + 4)));
    // 66 of the batch, 50 scalars, 17 vectors and the 102 told for them, 1897 cells, 4 injector vectors.
    EXPECT_FLOAT_EQ(bench.wait.percent_bar.width(), bench.wait.percent_track.width() * 2136 / 2150);
    const int looks = bench.desktop.changes("frm_wait", "percent_comp(1)");
    EXPECT_GT(looks, 40);
    EXPECT_LT(looks, 200); // painting for every cell would slow the wire
}

TEST(Upload, IntoAnEmptyControllerLeavesWhatTheFileHoldsButTheBoostGains) {
    TransferBench source;
    for (std::size_t i = 0; i < 4; ++i) {
        source.memory().store(controller::slot("BO_P") + i, static_cast<std::uint16_t>(1000 + i));
    }
    ASSERT_EQ(source.transfer.download_to("engine.set").outcome, Outcome::done);
    TransferBench target;
    target.memory().clear_cells();
    for (std::size_t slot = 0; slot < element_count; ++slot) {
        target.memory().store(slot, 0);
    }
    target.desktop.write_file("engine.set", source.desktop.read_file("engine.set"));
    target.desktop.choose_file(target.desktop.path("engine.set"));
    target.transfer.menufileopen_Click();
    EXPECT_EQ(target.commands.size(), 1U + 2123U);
    EXPECT_EQ(target.commands[0], 'C');

    for (std::size_t i = 0; i < 4; ++i) {
        source.memory().store(controller::slot("BO_P") + i, 0);
    }
    source.memory().store(controller::slot("map_change_time"), 0); // no file holds it
    EXPECT_TRUE(source.memory() == target.memory());
    target.expect_usable_console();
}

TEST(Upload, GoesOnAfterAnUnknownKeyAndLeavesTheLastTextStanding) {
    TransferBench bench;
    bench.desktop.write_file("engine.set", with_line_ends({"SET_REV = 10000", "ABCD[003]=5", "MAPM[007]=12"}));
    const TransferResult result = bench.transfer.upload_from("engine.set");
    EXPECT_EQ(result.outcome, Outcome::done);
    EXPECT_THAT(result.unknown_at, ElementsAre(2));
    EXPECT_EQ(bench.wait.update_info.text(), "Unknown variable in data set file -->ABCD");
    EXPECT_THAT(bench.commands, ElementsAre('C', 'e'));
    EXPECT_EQ(bench.memory().cell(0x0107), 12);

    bench.desktop.write_file("engine.set", "");
    EXPECT_EQ(bench.transfer.upload_from("engine.set").outcome, Outcome::done);
    bench.desktop.write_file("engine.set", with_line_ends({"SET_REV = 10000", "SW_REV  = any", "FW_REV  = 1"}));
    EXPECT_EQ(bench.transfer.upload_from("engine.set").messages, 0);
    EXPECT_EQ(bench.wait.update_info.text(), "");
}

TEST(Upload, StopsAtALineThatFitsNoMessageAndSaysWhereAndHowFar) {
    TransferBench bench;
    bench.desktop.write_file("engine.set",
                             with_line_ends({"SET_REV = 10000", "ACC_SEN = 300", "MAPM[007]=256", "MAPM[008]=1"}));
    bench.desktop.choose_file(bench.desktop.path("engine.set"));
    bench.desktop.expect_box("has stopped at line 3, MAPM[007] = 256: the value is above 255");
    bench.transfer.menufileopen_Click();
    EXPECT_THAT(bench.desktop.boxes()[0].text,
                testing::AllOf(HasSubstr("engine.set"), HasSubstr("\n1 line had been sent before it and stays")));
    EXPECT_THAT(bench.commands, ElementsAre('C', 'g'));
    bench.expect_usable_console();
}

TEST(Transfers, AreRefusedInDemoModeAndWithoutAnAnswerAndEndSilentlyWithoutAFile) {
    TransferBench bench;
    bench.desktop.choose_file("");
    bench.transfer.menufilesave_Click();
    bench.desktop.choose_file("/calibrations/*.SET");
    bench.transfer.menufileopen_Click();
    EXPECT_THAT(bench.commands, ElementsAre('R', 'C'));

    bench.wired.silence();
    bench.desktop.on_modal("frm_Dialog", [&](auto&) { bench.console.forms.frm_dialog.dialog_button[0].press(); });
    bench.desktop.expect_box("The device controller is not communicating, so this feature cannot be executed.");
    bench.transfer.menufilesave_Click();
    bench.console.state.demo_mode = true;
    bench.desktop.expect_box("This program is running in demo mode, so this feature cannot be executed.");
    bench.transfer.menufileopen_Click();
    EXPECT_EQ(bench.desktop.file_dialogs().size(), 2U);
    bench.expect_usable_console();
}

// All the error paths of a line that is bad for a moment, and what each loses: nothing.
struct Disturbance {
    const char* name;
    controller::Fault fault;
    int times;
    double late_by = 0.15;
};
constexpr std::array disturbances{Disturbance{"lost", controller::Fault::lost, 3},
                                  Disturbance{"cut", controller::Fault::cut, 2},
                                  Disturbance{"corrupted", controller::Fault::corrupted, 2},
                                  Disturbance{"surplus", controller::Fault::surplus, 2},
                                  Disturbance{"foreign", controller::Fault::foreign, 3},
                                  Disturbance{"just late", controller::Fault::late, 1, 0.1005},
                                  Disturbance{"late", controller::Fault::late, 3},
                                  Disturbance{"very late", controller::Fault::late, 1, 0.35}};

TEST(Transfers, LoseNothingByALineThatIsBadForAMoment) {
    TransferBench bench;
    for (int i = 0; i < 256; ++i) {
        bench.memory().store_cell(static_cast<std::size_t>(0x0100 + i), static_cast<std::uint8_t>(i));
    }
    bench.transfer.download_to("clean.set");
    const ControllerMemory held = bench.memory();
    for (const Disturbance& d : disturbances) {
        for (const std::size_t at : {std::size_t{20}, std::size_t{100}}) { // a block, a cell
            SCOPED_TRACE(std::string(d.name) + " at " + std::to_string(at));
            if (at == 20 && d.fault != controller::Fault::foreign) {
                continue;
            }
            bench.wired.controller.faults().set_late_by(d.late_by);
            const auto strike = [&] { bench.wired.controller.faults().strike_next(d.fault, d.times); };
            bench.commands.clear();
            bench.at_request(at, strike);
            const TransferResult read = bench.transfer.download_to("bad.set", Transfer::Accept::whole_only);
            EXPECT_EQ(read.outcome, Outcome::done);
            EXPECT_EQ(read.messages, 67 + 1897 + 4);
            EXPECT_EQ(bench.desktop.read_file("bad.set"), bench.desktop.read_file("clean.set"));

            bench.memory().clear_cells();
            bench.commands.clear();
            bench.at_request(at, strike);
            EXPECT_EQ(bench.transfer.upload_from("clean.set").unanswered, 0);
            for (std::size_t i = 0; i < 4; ++i) {
                bench.memory().store(controller::slot("BO_P") + i, held.value(controller::slot("BO_P") + i));
            }
            EXPECT_TRUE(bench.memory() == held);
            bench.expect_usable_console();
        }
    }
}

// All the ways in which a transfer does not get to its end, and what is left: the older file, and a usable console.
TEST(Download, LeavesTheOlderFileWhereItEndsBeforeItsEnd) {
    const auto another = [](TransferBench& bench) { bench.replug(55); };
    struct End {
        const char* name;
        std::function<void(TransferBench&)> disaster;
        bool asked_before;
        Outcome outcome;
        const char* said;
    };
    for (const End& end : std::vector<End>{
             {"another controller", another, true, Outcome::other_controller, "serial number 55 in place of 104077"},
             {"one that was never asked", [](TransferBench& b) { b.replug(104077); }, false, Outcome::other_controller,
              "cannot be shown to be the same controller"},
             {"the same one", [](TransferBench& b) { b.replug(104077); }, true, Outcome::done, nullptr},
             {"silence", [](TransferBench& b) { b.wired.controller.faults().strike_next(controller::Fault::lost, 10); },
              true, Outcome::incomplete, nullptr}}) {
        for (const std::size_t at : {std::size_t{30}, std::size_t{700}}) {
            SCOPED_TRACE(std::string(end.name) + " at " + std::to_string(at));
            TransferBench bench;
            bench.desktop.write_file("engine.set", "an older calibration");
            std::string result;
            bench.transfer.tell_result = [&](const std::string& text) { result = text; };
            if (end.asked_before) {
                bench.ask_who();
            }
            bench.commands.clear();
            bench.at_request(at, [&] { end.disaster(bench); });
            if (end.said != nullptr) {
                bench.desktop.expect_box(end.said);
            }
            if (end.outcome == Outcome::incomplete) {
                bench.desktop.on_modal("frm_Dialog",
                                       [&](auto&) { bench.console.forms.frm_dialog.dialog_button[0].press(); });
            }
            const TransferResult read = bench.transfer.download_to("engine.set", Transfer::Accept::whole_only);
            EXPECT_EQ(read.outcome, end.outcome);
            const bool done = end.outcome == Outcome::done;
            EXPECT_EQ(bench.desktop.read_file("engine.set") == "an older calibration", !done);
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(bench.desktop.folder()), {}), 1);
            EXPECT_THAT(result, testing::StartsWith(done ? "engine.set: 2,126 lines saved" : "engine.set: "));
            if (end.outcome == Outcome::other_controller) {
                EXPECT_EQ(bench.commands.back(), '-') << "nothing more goes out";
                EXPECT_LT(read.lines, 2126) << "nor into the file";
            }
            bench.expect_usable_console();
            EXPECT_EQ(bench.console.comm.send_ecu_message({'C'}, 21), link::Outcome::accepted);
        }
    }
}

TEST(Upload, WritesNothingIntoAnotherControllerThatWasPluggedIn) {
    for (const bool same : {true, false}) {
        TransferBench bench;
        bench.transfer.download_to("engine.set");
        bench.ask_who();
        bench.commands.clear();
        ControllerMemory other = bench.memory();
        bench.at_request(700, [&] {
            bench.replug(same ? 104077 : 55);
            other = bench.memory();
        });
        if (!same) {
            bench.desktop.expect_box("The upload of engine.set has stopped at line 702: the port was lost");
        }
        const TransferResult result = bench.transfer.upload_from("engine.set");
        EXPECT_EQ(result.outcome, same ? Outcome::done : Outcome::other_controller);
        EXPECT_EQ(result.lines, same ? 2126 : 701);
        EXPECT_EQ(std::ranges::count(bench.commands, 'R'), 1);
        if (!same) {
            EXPECT_TRUE(bench.memory() == other);
        }
        bench.expect_usable_console();
    }
}

TEST(Transfers, BeginWithWhoeverIsThereWhenTheFileIsChosen) {
    TransferBench bench;
    bench.desktop.choose_file(bench.desktop.path("engine.set"));
    bench.desktop.while_choosing = [&] { bench.replug(55); };
    bench.transfer.menufilesave_Click();
    EXPECT_EQ(split_lines(bench.desktop.read_file("engine.set")).size(), 2126U);
    bench.replug(56);
    EXPECT_EQ(bench.console.comm.send_ecu_message({'C'}, 21), link::Outcome::accepted) << "only the transfer held on";
}

TEST(Transfers, RunOneAtATime) {
    TransferBench bench;
    TransferResult second;
    bench.at_request(100, [&] { bench.desktop.post([&] { second = bench.transfer.download_to("second.set"); }); });
    EXPECT_EQ(bench.transfer.download_to("first.set").lines, 2126);
    EXPECT_EQ(second.outcome, Outcome::cancelled);
    EXPECT_FALSE(std::filesystem::exists(bench.desktop.path("second.set")));
}

TEST(Transfers, LeaveNoPartOfAFileWhenAnExceptionEndsThem) {
    TransferBench bench;
    bench.at_request(500, [&] { bench.wired.silence(); });
    bench.desktop.on_modal("frm_Dialog", [&](auto&) { bench.console.forms.frm_dialog.dialog_button[3].press(); });
    EXPECT_THROW(bench.transfer.download_to("engine.set"), test::ProgramEnded);
    EXPECT_TRUE(std::filesystem::is_empty(bench.desktop.folder()));
    bench.expect_usable_console();
}

TEST(Transfers, StopTheRunningLogAndTellTheirResultInTheMainWindow) {
    TransferBench bench;
    const platform::Label& told = bench.console.forms.frm_ecu.transfer_result;
    bench.console.forms.frm_plotter.start_log_button.press();
    ASSERT_TRUE(bench.console.plotter.logging_active());
    bench.transfer.download_to("tune1.set");
    EXPECT_FALSE(bench.console.plotter.logging_active());
    EXPECT_EQ(told.text(), "tune1.set: 2,126 lines saved");
    bench.desktop.write_file("tune2.set", bench.desktop.read_file("tune1.set") +
                                              "ABCD[003]=5\r\nACC_SEN = nan\r\nX\x1B_MORE = 1\r\nACC_SEN = 12\r\n");
    bench.transfer.upload_from("tune2.set");
    EXPECT_EQ(told.text(), "tune2.set: 2,130 lines sent, 2 unknown: 2127, 2129, 1 with no clean number: 2128");
    EXPECT_EQ(bench.wait.update_info.text(), "Unknown variable in data set file -->X\\x1B_MORE");
    bench.desktop.write_file("tune3.set", "ACC_SEN = 1\r\nACC_SEN = 1e400\r\nACC_SEN = 2\r\n");
    bench.desktop.expect_box("stopped at line 2, ACC_SEN = 1e400: the value is above 65535");
    bench.transfer.upload_from("tune3.set");
    EXPECT_EQ(told.text(), "tune3.set: stopped after 1 line");
    EXPECT_EQ(bench.memory().value(controller::slot("ACC_SEN")), 1);
    bench.desktop.write_file("tune4.set", "ACC_SEN = " + std::string(400, '9') + "\r\n");
    bench.desktop.expect_box("stopped at line 1");
    bench.transfer.upload_from("tune4.set");
    EXPECT_EQ(bench.memory().value(controller::slot("ACC_SEN")), 1);
}

TEST(Download, GoesToItsEndWithStaleValuesWhenTheTunerTurnsToDemoMode) {
    TransferBench bench;
    bench.at_request(500, [&] { bench.wired.silence(); });
    bench.desktop.on_modal("frm_Dialog", [&](auto&) { bench.console.forms.frm_dialog.dialog_button[1].press(); });
    bench.desktop.expect_box(" lines of engine.set hold older values: the controller did not answer there.");
    const TransferResult result = bench.transfer.download_to("engine.set");
    EXPECT_EQ(result.outcome, Outcome::done);
    EXPECT_EQ(result.older_lines, 1897 + 4 * 8 - (500 - 1 - 67)); // but the cells before
    EXPECT_EQ(split_lines(bench.desktop.read_file("engine.set")).size(), 2126U);
}

TEST(Download, NeverDestroysAnOlderCalibration) {
    TransferBench bench;
    bench.desktop.write_file("engine.set", "an older calibration");
    bench.desktop.write_file("engine.set.new", "the tuner's own");
    bench.at_request(500, [&] { bench.wired.silence(); });
    bench.desktop.on_modal("frm_Dialog", [&](auto&) {
        EXPECT_EQ(bench.desktop.read_file("engine.set"), "an older calibration");
        bench.console.before_end(); // as the window's program does when it ends at once
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(bench.desktop.folder()), {}), 2);
        bench.console.forms.frm_dialog.dialog_button[3].press(); // the program ends
    });
    bool ended = false;
    try {
        bench.transfer.download_to("engine.set");
    } catch (const test::ProgramEnded&) {
        ended = true;
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(bench.desktop.read_file("engine.set"), "an older calibration");
    EXPECT_EQ(bench.desktop.read_file("engine.set.new"), "the tuner's own");
    bench.expect_usable_console();
}

TEST(Transfers, SayWhyAFileCannotBeWrittenOrRead) {
    TransferBench bench;
    std::filesystem::create_directory(bench.desktop.path("stick"));
    bench.desktop.expect_box("stick: it is a folder.");
    EXPECT_EQ(bench.transfer.download_to("stick").outcome, Outcome::file_failed);
    EXPECT_EQ(bench.commands.size(), 1U); // it is told before the seconds of reading, not after
    bench.desktop.expect_box("gone/engine.set could not be read: No such file or directory.");
    bench.transfer.upload_from("gone/engine.set");
    bench.at_request(900, [&] { std::filesystem::remove_all(bench.desktop.path("stick")); });
    bench.desktop.expect_box("stick/engine.set: No such file or directory.");
    EXPECT_EQ(bench.transfer.download_to("stick/engine.set").outcome, Outcome::file_failed);
    bench.expect_usable_console();
}

} // namespace
} // namespace ecu::calibration
