#include "link/link_check.h"
#include "link_bench.h"

#include <chrono>
#include <fstream>

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(LinkDoctor, CountsEveryKindOfEndAndWhatAMessageTakesBeyondItsBytes) {
    LinkBench bench;
    bench.desktop.line().pace(38400);
    bench.controller.set_reply_delay(0.016);
    LinkDoctor doctor(bench.comm);
    Bytes corrupt = live_reply(), cut = live_reply();
    corrupt[9] ^= 1;
    cut.pop_back();
    const std::vector<Bytes> replies{live_reply(),           {},          corrupt, cut, reply_frame({'A'}, 62),
                                     reply_frame({'B'}, 63), live_reply()};
    std::size_t next = 0;
    bench.controller.responder = [&](const Request&) { return next < replies.size() ? replies[next++] : Bytes{}; };
    bench.ask();
    EXPECT_EQ(doctor.figures().answered, 0U) << "off until it is asked";
    doctor.look_on();
    doctor.look_on(); // counts nothing twice
    bench.ask();
    const LinkFigures& seen = doctor.figures();
    EXPECT_THAT(seen.retries, ElementsAre(1, 1, 1, 1, 1));
    EXPECT_EQ(seen.answered, 1U);
    EXPECT_NEAR(seen.mean_ms(), 16 + 73 * 10 / 38.4, 0.2);
    EXPECT_NEAR(seen.mean_delay_ms(), 16, 0.2);
    EXPECT_EQ(seen.round_trips[6], 1U) << "30 to 40 ms";
    EXPECT_THAT(doctor.trace(), IsEmpty()) << "frames are kept on request alone";
    bench.press_in_dialog(0);
    bench.ask();
    EXPECT_EQ(seen.given_up, 1U);
    EXPECT_EQ(seen.all_retries(), 15U);
    doctor.look_away();
    bench.press_in_dialog(0);
    bench.ask();
    EXPECT_EQ(seen.given_up, 1U);
}

TEST(LinkDoctor, KeepsTheLatestFramesAsLines) {
    LinkBench bench;
    bench.desktop.set_time_of_day(45005.25);
    LinkDoctor doctor(bench.comm);
    doctor.look_on();
    doctor.set_tracing(true);
    bench.controller.reply_to('A', reply_frame({'A'}, 63));
    for (std::size_t i = 0; i < LinkDoctor::frames_kept + 5; ++i) {
        bench.ask();
    }
    EXPECT_EQ(doctor.trace().size(), LinkDoctor::frames_kept);
    EXPECT_EQ(doctor.frames_traced(), LinkDoctor::frames_kept + 5);
    EXPECT_EQ(as_text(doctor.trace().front()).substr(0, 57),
              "12:30:05.26  #1  02 08 41 30 30 30 DB 00 > 02 41 41 00 00");
    EXPECT_THAT(as_text(doctor.trace().front()), HasSubstr("  answered  2.0 ms"));
}

TEST(LinkDoctor, CostsATransactionNextToNothing) {
    LinkBench bench;
    LinkDoctor doctor(bench.comm);
    bench.controller.reply_to('A', live_reply());
    const auto seconds_of = [&](int messages) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < messages; ++i) {
            bench.ask();
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    seconds_of(200);
    const double without = seconds_of(2000);
    doctor.look_on();
    doctor.set_tracing(true);
    const double cost = (seconds_of(2000) - without) / 2000;
    RecordProperty("cost_us", std::to_string(1e6 * cost));
    EXPECT_LT(cost, 100e-6) << "20 us are the budget; a busy machine gets some room";
}

TEST(PortFacts, TellWhatStandsInTheWay) {
    SimDesktop desktop; // for its folder
    const std::filesystem::path root = desktop.folder();
    desktop.write_file("ttyUSB7", "");
    const std::string device = desktop.path("ttyUSB7");
    std::filesystem::create_symlink(device, root / "ecu");
    std::filesystem::create_directories(root / "sys/bus/usb-serial/devices/ttyUSB7");
    desktop.write_file("sys/bus/usb-serial/devices/ttyUSB7/latency_timer", "16\n");
    for (const char* process : {"812", "813", "self"}) {
        std::filesystem::create_directories(root / "proc" / process / "fd");
        desktop.write_file("proc/" + std::string(process) + "/comm", "brltty\n");
    }
    std::filesystem::create_symlink("/dev/null", root / "proc/812/fd/0");
    std::filesystem::create_symlink(device, root / "proc/812/fd/3");
    std::filesystem::create_symlink(device, root / "proc/self/fd/3");
    LinkState link;
    link.port = read_port_facts(desktop.path("ecu"), root);
    EXPECT_TRUE(link.port.present && link.port.permitted);
    EXPECT_EQ(link.port.latency_ms, 16);
    EXPECT_THAT(link.port.holders, ElementsAre("brltty (process 812)"));
    const std::vector<std::string> said = advice(link);
    ASSERT_EQ(said.size(), 2U);
    EXPECT_THAT(said[0], HasSubstr("End them"));
    EXPECT_THAT(said[1], HasSubstr("echo 1 | sudo tee " + (root / "sys/bus/usb-serial/devices/ttyUSB7").string()));
    link.port = read_port_facts("/dev/none", root);
    EXPECT_THAT(report(link), HasSubstr("- /dev/none is not there."));
    link.port = {.device = "/dev/ttyUSB0",
                 .real_path = {},
                 .present = true,
                 .permitted = false,
                 .group = "uucp",
                 .latency_ms = {},
                 .latency_file = {},
                 .holders = {}};
    EXPECT_THAT(advice(link), ElementsAre(HasSubstr("sudo adduser $USER uucp")));
}

TEST(Advice, FollowsTheShareOfRetriesAndIsSilentOnAGoodLink) {
    LinkState link;
    link.server = "10.0.0.7";
    link.figures.answered = 1000;
    EXPECT_THAT(report(link), HasSubstr("all is well"));
    const std::array<const char*, retry_kinds> words{"Datagrams go missing", "damaged", "damaged", "firmware", "late"};
    for (std::size_t kind = 0; kind < retry_kinds; ++kind) {
        link.figures.retries = {};
        link.figures.retries[kind] = 20;
        EXPECT_THAT(advice(link), ElementsAre(HasSubstr(words[kind])));
    }
}

struct LinkWindowBench : LinkBench {
    FrmLink form{desktop};
    LinkCheck check{{ports, state, comm, selection, *comm1, form}};
    LinkWindowBench() {
        form.form.set_host(&desktop);
        controller.reply_to('A', live_reply());
    }
};

TEST(LinkWindow, SendsOnlyWhenAskedAndNotIntoASequenceOfOthers) {
    LinkWindowBench bench;
    bench.check.open();
    bench.desktop.run_for(5);
    EXPECT_THAT(bench.controller.sent(), IsEmpty());
    bench.ask();
    bench.desktop.run_for(0.6);
    EXPECT_EQ(bench.form.link_answered.text(), "1") << "it sees what others do";
    bench.state.polling_paused = true;
    bench.form.link_ask.press();
    bench.desktop.run_for(1);
    EXPECT_EQ(bench.controller.count('A'), 1U);
    EXPECT_THAT(bench.form.link_note.text(), HasSubstr("busy"));
    bench.state.polling_paused = false;
    bench.controller.drop_next_reply();
    bench.desktop.schedule(bench.desktop.now() + 10'000, [&] { bench.form.link_ask.press(); }); // inside a message
    bench.ask();
    EXPECT_EQ(bench.controller.count('A'), 3U);
    bench.desktop.run_for(2);
    EXPECT_EQ(bench.controller.count('A'), 103U);
    EXPECT_FALSE(bench.state.polling_paused);
    EXPECT_EQ(bench.form.link_answered.text(), "102");
    EXPECT_EQ(bench.form.link_retries[0].text(), "1");
    EXPECT_EQ(bench.form.trip_bar[0].width(), bench.form.trip_track[0].width());
    bench.form.link_close.press();
    bench.ask();
    EXPECT_EQ(bench.check.doctor().figures().answered, 102U) << "closed, it looks away";
}

TEST(LinkWindow, StopsAskingWhenNothingAnswersOrItIsClosed) {
    LinkWindowBench bench;
    bench.check.open();
    bench.controller.silence();
    bench.press_in_dialog(0);
    bench.form.link_ask.press();
    EXPECT_EQ(bench.controller.count('A'), 10U);
    EXPECT_THAT(bench.form.link_note.text(), HasSubstr("Stopped after 0"));
    EXPECT_TRUE(bench.form.link_ask.enabled());
    bench.controller.speak();
    bench.desktop.schedule(bench.desktop.now() + 10'000, [&] { bench.form.form.close_requested(); });
    bench.form.link_ask.press();
    EXPECT_LT(bench.controller.count('A'), 30U);
    bench.state.demo_mode = true;
    bench.form.link_ask.press();
    EXPECT_THAT(bench.form.link_note.text(), HasSubstr("Demo mode"));
}

TEST(LinkWindow, FiltersAndSavesTheFrames) {
    LinkWindowBench bench;
    bench.check.open();
    bench.form.trace_on.click();
    bench.controller.drop_next_reply();
    bench.ask();
    bench.ask();
    bench.desktop.run_for(0.6);
    EXPECT_EQ(std::ranges::count(bench.form.trace_text.text(), '\n'), 3);
    bench.form.trace_filter.set_text("no 41 ANSWER");
    EXPECT_EQ(std::ranges::count(bench.form.trace_text.text(), '\n'), 1);
    bench.desktop.choose_file(bench.desktop.path("frames.txt"));
    bench.form.trace_save.press();
    EXPECT_EQ(bench.desktop.read_file("frames.txt"), bench.form.trace_text.text());
    std::string copied;
    bench.form.to_clipboard = [&](const std::string& text) { copied = text; };
    bench.form.link_copy.press();
    EXPECT_THAT(copied, HasSubstr("Messages: 2 answered"));
    bench.form.link_clear.press();
    EXPECT_EQ(bench.form.link_answered.text() + bench.form.trace_text.text(), "0");
}

} // namespace
} // namespace ecu::test
