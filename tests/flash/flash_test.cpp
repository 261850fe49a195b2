// Flashing the virtual controller's monitor from the console, byte for byte, and every way in which a run ends.
#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu::flash {
namespace {

using platform::Answer;
using test::Bytes;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* other_applications =
    "The reflash opperation requires that ALL other applications be halted, or errors may occur. Press Cancel if you "
    "need to halt other applications";
constexpr const char* failed =
    "An error has occurred durring the program Flash opperation, you must Flash the controller again.";

std::string record(char type, const std::string& body) {
    std::array<char, 3> hex{};
    unsigned sum = 0;
    const unsigned count = static_cast<unsigned>(body.size() / 2) + 1;
    std::snprintf(hex.data(), hex.size(), "%02X", count);
    const std::string counted = hex.data() + body;
    for (std::size_t i = 0; i < counted.size(); i += 2) {
        sum += static_cast<unsigned>(std::stoul(counted.substr(i, 2), nullptr, 16));
    }
    std::snprintf(hex.data(), hex.size(), "%02X", 0xFFU & ~sum);
    return std::string("S") + type + counted + hex.data();
}

// "V1.03.00" in the header, then `count` records of 32 bytes, then the start address.
std::vector<std::string> image(int count) {
    std::vector<std::string> lines{record('0', "000056312E30332E3030")};
    for (int i = 0; i < count; ++i) {
        std::array<char, 9> address{};
        std::snprintf(address.data(), address.size(), "%06X", static_cast<unsigned>(i * 32));
        std::string data;
        for (int byte = 0; byte < 32; ++byte) {
            data += "0123456789ABCDEF"[(i + byte) % 16];
            data += "0123456789ABCDEF"[(i * 7 + byte) % 16];
        }
        lines.push_back(record('2', address.data() + data));
    }
    lines.push_back(record('8', "000000"));
    return lines;
}

std::string joined(const std::vector<std::string>& lines, const std::string& line_end) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + line_end;
    }
    return text;
}

class FlashTest : public testing::Test {
protected:
    explicit FlashTest(const controller::FaultPlan& faults = {})
        : wired(desktop, desktop.line(), {.firmware = {}, .faults = faults}) {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", test::tiny_jpeg);
        desktop.write_file("OEM.TXT", "");
        console.forms.registry.set_host(&desktop);
        const auto to_controller = desktop.line().peer;
        desktop.line().peer = [this, to_controller](std::span<const std::uint8_t> bytes) {
            line_.append(bytes.begin(), bytes.end());
            if (on_bytes) {
                on_bytes();
            }
            to_controller(bytes);
        };
        console.start("");
        desktop.run_for(0.2);
    }
    // The controller's firmware stopped, the utility open on its own port.
    void open_utility() {
        desktop.answer_box("Do you really want to stop the controller and re-flash its memory?", Answer::ok);
        desktop.expect_box("The controller is now ready to re-flash.");
        console.forms.frm_ecu.menu_tool_reflash.click();
        desktop.line().pace(flash_baud);
        console.forms.frm_ecu.menu_tool_flash_utility.click();
        desktop.run_for(0.3);
        line_.clear();
    }
    // Runs with the file until the buttons are back.
    void flash(const std::string& content) {
        desktop.run_for(0.3); // what an earlier run left on the wire
        desktop.write_file("firmware.s19", content);
        desktop.expect_box(other_applications);
        desktop.choose_file(desktop.path("firmware.s19"));
        line_.clear();
        form.flash_button.press();
    }
    void expect_idle() {
        EXPECT_TRUE(form.flash_button.enabled() && form.monitor_check_button.enabled() && form.exit_flash.enabled());
        EXPECT_FALSE(form.halt_button.enabled());
    }
    void expect_port_free_after_leaving() {
        form.exit_flash.press();
        EXPECT_FALSE(desktop.line().is_open());
        EXPECT_TRUE(console.forms.frm_ecu.form.visible());
        EXPECT_FALSE(form.form.visible());
    }
    void say(std::string_view text, double after = 0) {
        desktop.line().receive({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, after);
    }
    void in(double seconds, std::function<void()> action) {
        desktop.schedule(desktop.now() + test::to_microseconds(seconds), std::move(action));
    }

    test::SimDesktop desktop;
    test::WiredController wired;
    console::Console console{desktop.ports()};
    FrmSflash& form = console.forms.sflash;
    std::string line_; // all that left the console, as the wire had it
    std::function<void()> on_bytes;
};

TEST_F(FlashTest, UtilityIsOfferedByTheMonitorsReplyAloneAndAsksOnAPortOfItsOwn) {
    EXPECT_FALSE(console.forms.frm_ecu.menu_tool_flash_utility.enabled());
    desktop.answer_box("Do you really want to stop", Answer::cancel);
    console.forms.frm_ecu.menu_tool_reflash.click();
    EXPECT_FALSE(desktop.line().is_open());
    EXPECT_FALSE(console.forms.frm_ecu.menu_tool_flash_utility.enabled());
    open_utility();
    EXPECT_EQ(desktop.line().baud(), 19200);
    EXPECT_EQ(console.state.link_title_suffix, " ->COM3");
    EXPECT_EQ(form.form.caption(), "Kerrin Flash Utility");
    EXPECT_FALSE(console.forms.frm_ecu.form.visible());
    EXPECT_EQ(form.terminal.text(), "\nBoot monitor 1.0\n");
    expect_idle();
    form.monitor_check_button.press();
    desktop.run_for(0.3);
    EXPECT_EQ(line_, "q");
    expect_port_free_after_leaving();
    desktop.run_for(1);
    EXPECT_EQ(line_, "q") << "nothing is asked of a controller without firmware";
}

TEST_F(FlashTest, WholeImageGoesOverWithoutLineEndsAndTheControllerComesBackWithIt) {
    open_utility();
    const auto lines = image(2640); // 200 KB
    const double start = desktop.seconds();
    double end = 0;
    on_bytes = [&] { end = desktop.seconds(); };
    flash(joined(lines, "\r\n"));
    desktop.run_for(0.3);
    const std::string sent = line_;
    EXPECT_GE(sent.size(), 200'000U);
    EXPECT_EQ(sent, "q" + joined(lines, ""));
    EXPECT_EQ(form.lines_sent.text(), std::to_string(lines.size() - 1));
    EXPECT_THAT(form.terminal.text(), StartsWith("Flashing controller firmware.\nPlease stand by.\n"));
    EXPECT_FALSE(wired.controller.flash_monitor().running());
    EXPECT_THAT(form.flash_note.text(), StartsWith("All 2642 lines have been sent."));
    EXPECT_EQ(form.flash_file.text(), "firmware.s19, 206 kB, 2642 lines");
    EXPECT_EQ(form.flash_bar.width(), 1000);
    EXPECT_LE(desktop.line().most_waiting(), 128U);
    EXPECT_GE(static_cast<double>(sent.size()) / (flash_baud / 10.0) / (end - start - 0.25), 0.98)
        << "of the wire's rate";
    expect_idle();
    expect_port_free_after_leaving();
    desktop.line().pace(38400);
    desktop.on_modal("frm_about",
                     [this](platform::Form&) { in(1, [this] { console.forms.frm_about.exit_button.press(); }); });
    console.forms.frm_ecu.menu_about.click();
    EXPECT_EQ(console.forms.frm_about.FW_Rev.text(), "V1.03.00");
    EXPECT_EQ(desktop.line().baud(), 38400);
}

TEST_F(FlashTest, DelaysSendEachCharacterAndALineEndBehindEachLineButTheFirst) {
    open_utility();
    form.char_delay_box.click();
    form.line_delay_box.click();
    form.line_dly.set_text("0.5");
    const auto lines = image(20);
    const double start = desktop.seconds();
    flash(joined(lines, "\n"));
    desktop.run_for(0.2);
    EXPECT_EQ(line_, "q" + lines[0] + joined({lines.begin() + 1, lines.end()}, "\r\n"));
    EXPECT_GT(desktop.seconds() - start, 21 * 0.5 + 20 * 70 * 0.001);
    expect_idle();
}

TEST_F(FlashTest, LinesAreTakenAsTheyAre) {
    open_utility();
    wired.silence();
    const auto run = [this](const std::string& content) {
        say("B", 0.35);
        flash(content);
        desktop.run_for(0.5);
        return line_;
    };
    EXPECT_EQ(run("S1 one \r\n\r\n\n  two\tx\r\nlast"), "qS1 one   two\txlast");
    EXPECT_EQ(form.lines_sent.text(), "4");
    EXPECT_EQ(run("only"), "qonly");
    EXPECT_EQ(form.lines_sent.text(), "0");
    form.char_delay_box.click();
    EXPECT_EQ(run("a\n\nbc"), "qa\r\nbc\r\n");
    EXPECT_EQ(form.lines_sent.text(), "2");
}

TEST_F(FlashTest, DelaysAreReadAnewEachTime) {
    open_utility();
    form.line_delay_box.click();
    form.line_dly.set_text("5");
    const double start = desktop.seconds();
    in(6, [this] { form.line_dly.set_text("no number"); });
    flash(joined(image(100), "\r\n"));
    EXPECT_NEAR(desktop.seconds() - start, 0.25 + 10 + 100 * 84 / 1920.0, 1);
}

TEST_F(FlashTest, HaltEndsTheRunWithTheMessageOfAnErrorAndTheNextOneIsWhole) {
    open_utility();
    const auto lines = image(300);
    in(2, [this] { form.halt_button.press(); });
    desktop.expect_box(failed);
    flash(joined(lines, "\r\n"));
    EXPECT_THAT(desktop.boxes().back().details, StartsWith("Halted by the user. Line "));
    EXPECT_LT(std::stoi(form.lines_sent.text()), 60);
    expect_idle();
    flash(joined(lines, "\r\n"));
    desktop.run_for(0.3);
    EXPECT_EQ(line_, "q" + joined(lines, ""));
    EXPECT_FALSE(wired.controller.flash_monitor().running());
    expect_port_free_after_leaving();
}

class FlashErrorTest : public FlashTest {
protected:
    FlashErrorTest()
        : FlashTest([] {
              controller::FaultPlan plan;
              plan.flash_error_at_line = 40;
              return plan;
          }()) {}
};

TEST_F(FlashErrorTest, ErrorAtALineStopsTheRunBehindItAndIsForgottenByTheNext) {
    open_utility();
    const auto lines = image(300);
    desktop.expect_box(failed);
    flash(joined(lines, "\r\n"));
    const int stopped_at = std::stoi(form.lines_sent.text());
    EXPECT_GE(stopped_at, 40);
    EXPECT_LT(stopped_at, 48); // what waits in the port, and a tick of the reading
    expect_idle();
    desktop.run_for(0.5);
    EXPECT_EQ(line_, "q" + joined({lines.begin(), lines.begin() + stopped_at + 1}, "")) << "whole lines only";
    flash(joined(lines, "\r\n"));
    desktop.run_for(0.3);
    EXPECT_FALSE(wired.controller.flash_monitor().running());
    expect_port_free_after_leaving();
}

TEST_F(FlashTest, PulledCableEndsTheRunEvenWhenItIsBackAtOnce) {
    open_utility();
    const auto lines = image(300);
    enum class Ways { back, opened_again, between_characters };
    for (const Ways way : {Ways::back, Ways::opened_again, Ways::between_characters}) {
        form.char_delay_box.set_checked(way == Ways::between_characters);
        form.char_dly.set_text("0.5");
        const double start = desktop.seconds();
        in(2, [this, way] {
            desktop.line().unplug();
            desktop.line().plug_in();
            if (way == Ways::opened_again) { // as a write does it
                desktop.line().reopen_lost();
            }
        });
        desktop.expect_box(failed);
        flash(joined(lines, "\r\n"));
        EXPECT_THAT(desktop.boxes().back().details, StartsWith("The device of the serial port is gone."));
        EXPECT_LT(desktop.seconds() - start, 3) << "at once, not at the end of its line";
        EXPECT_LT(line_.size(), 5000U);
        EXPECT_FALSE(desktop.line().is_open());
        expect_idle();
    }
    form.char_delay_box.set_checked(false);
    flash(joined(lines, "\r\n"));
    desktop.run_for(0.3);
    EXPECT_EQ(line_, "q" + joined(lines, ""));
    expect_port_free_after_leaving();
}

TEST_F(FlashTest, StalledLineLosesNothingAndCanStillBeHalted) {
    open_utility();
    const auto lines = image(100);
    in(1, [this] { desktop.line().stall(); });
    in(5, [this] { form.halt_button.press(); });
    desktop.expect_box(failed);
    const double start = desktop.seconds();
    flash(joined(lines, "\r\n"));
    EXPECT_LT(desktop.seconds() - start, 6);
    expect_idle();
    desktop.line().go_on();
    in(1, [this] { desktop.line().stall(); });
    in(4, [this] { desktop.line().go_on(); });
    flash(joined(lines, "\r\n"));
    desktop.run_for(0.5);
    EXPECT_EQ(line_, "q" + joined(lines, ""));
}

TEST_F(FlashTest, OnlyABBehindTheQuestionAndInItsTimeCounts) {
    open_utility();
    wired.silence();
    const char* not_ready = "The controller doesnt appear to be ready to reflash, prepare it from the System Console "
                            "Tool menu.";
    const auto try_with = [&](std::string_view text, double after, bool ready) {
        desktop.expect_box(other_applications);
        say(text, after);
        ready ? desktop.choose_file("") : desktop.expect_box(not_ready);
        form.flash_button.press();
        desktop.run_for(1);
        expect_idle();
    };
    say("B");
    desktop.run_for(0.01); // in the port's buffer, not read yet
    try_with("", 0, false);
    try_with("xBx", 0.23, true);
    try_with("B", 0.4, false);
    desktop.run_for(0.37);
    try_with("B", 0.2495, true); // behind the last reading of the terminal
    EXPECT_TRUE(desktop.line().is_open()) << "kept after not ready";
    EXPECT_EQ(line_, "qqqq");
}

TEST_F(FlashTest, SecondPressOrLeavingInsideTheQuestionAsksNothingMore) {
    open_utility();
    desktop.expect_box(other_applications);
    in(0.1, [this] { form.flash_button.press(); });
    in(0.2, [this] { form.exit_flash.press(); });
    form.flash_button.press();
    EXPECT_EQ(line_, "q");
    EXPECT_THAT(desktop.file_dialogs(), testing::IsEmpty());
    EXPECT_FALSE(form.form.visible() || desktop.line().is_open());
}

TEST_F(FlashTest, ErrorFromBeforeTheRunIsForgotten) {
    open_utility();
    say("E");
    desktop.run_for(0.3);
    desktop.while_choosing = [this] {
        say("E");
        desktop.run_for(0.01);
    };
    flash(joined(image(3), "\n"));
    EXPECT_EQ(form.lines_sent.text(), "4");
}

TEST_F(FlashTest, CancelsUnusableFilesAndPortsSendNothingAndAreTold) {
    open_utility();
    desktop.answer_box(other_applications, Answer::cancel);
    form.flash_button.press();
    EXPECT_EQ(line_, "");
    EXPECT_EQ(desktop.boxes().back().preset, Answer::cancel);
    for (const char* name : {"", "*.S"}) {
        desktop.expect_box(other_applications);
        desktop.choose_file(name);
        form.flash_button.press();
    }
    desktop.write_file("empty.s", "");
    for (const auto& [name, reason] : {std::pair{"empty.s", "it is empty"}, std::pair{"none.s", "No such file"}}) {
        desktop.expect_box(other_applications);
        desktop.expect_box(reason);
        desktop.choose_file(desktop.path(name));
        form.flash_button.press();
    }
    EXPECT_EQ(line_, "qqqq");
    EXPECT_EQ(desktop.file_dialogs().back().filter, "Setup Files (*.s)|");
    EXPECT_EQ(desktop.file_dialogs().back().initial_name, "*.S");
    expect_idle();
    desktop.line().unplug();
    desktop.expect_box("The serial port COM3 could not be opened for flashing: there is no device");
    form.monitor_check_button.press();
    EXPECT_THAT(form.flash_port.text(), EndsWith("is not open."));
    desktop.line().plug_in();
    form.monitor_check_button.press();
    EXPECT_TRUE(desktop.line().is_open());
}

TEST_F(FlashTest, ClosingTheWindowDuringARunAsksFirst) {
    open_utility();
    in(1, [this] {
        desktop.answer_box("The controller is being flashed.", Answer::no);
        form.form.close_requested();
    });
    in(2, [this] {
        EXPECT_TRUE(form.form.visible());
        EXPECT_FALSE(form.exit_flash.enabled());
        desktop.answer_box("The controller is being flashed.", Answer::yes);
        form.form.close_requested();
    });
    desktop.expect_box(failed);
    flash(joined(image(300), "\r\n"));
    EXPECT_FALSE(form.form.visible());
    EXPECT_FALSE(desktop.line().is_open());
    EXPECT_TRUE(console.forms.frm_ecu.form.visible());
}

TEST(Terminal, WrapsBehindFortyCharactersThatCountAndBearsAnyByte) {
    Terminal terminal;
    const auto receive = [&terminal](std::string_view text) {
        for (const char c : text) {
            terminal.receive(static_cast<std::uint8_t>(c));
        }
    };
    receive(std::string(39, 'x') + "\r\nB");
    EXPECT_TRUE(terminal.monitor_ready);
    EXPECT_FALSE(terminal.flash_error);
    receive("Ey<z"); // the 40th ends the line in spite of the return before it
    EXPECT_TRUE(terminal.flash_error);
    EXPECT_EQ(terminal.text(), std::string(39, 'x') + "\nBEy\n<z");
    terminal.clear();
    receive(std::string_view("\0\xE9\x7F", 3));
    EXPECT_EQ(terminal.text(), "\u2400\u00E9\u2421");
}

} // namespace
} // namespace ecu::flash
