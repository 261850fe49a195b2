// The simulated desktop carries every other test, so what it promises is held here: time, order, wire, faults.
#include "support/sim_desktop.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <numeric>

namespace ecu::test {
namespace {

struct SimTest : testing::Test {
    SimDesktop desktop;
    platform::Ports ports = desktop.ports();
};

TEST_F(SimTest, WaitEndsAtItsTimeAlsoAcrossMidnight) {
    desktop.set_time_of_day(86399);
    EXPECT_EQ(desktop.time_text(), "23:59:59");
    const float start = ports.now();
    ports.wait_seconds(2);
    EXPECT_NEAR(ports.now(), 1, 0.02);
    EXPECT_NEAR(ports.elapsed_since(start), 2, 0.02);
    EXPECT_EQ(desktop.time_text(), "00:00:01");
}

TEST_F(SimTest, TimerTicksInsideWaitsButNeverInsideItself) {
    int ticks = 0;
    int depth = 0;
    const auto slow = desktop.make_timer(50);
    slow->on_tick = [&] {
        EXPECT_EQ(++depth, 1);
        ++ticks;
        ports.wait_seconds(0.12F); // the ticks due meanwhile become one
        --depth;
    };
    int fast_ticks = 0;
    const auto fast = desktop.make_timer(10);
    fast->on_tick = [&] { ++fast_ticks; };
    desktop.run_for(1);
    EXPECT_EQ(fast_ticks, 0) << "not yet running";
    slow->set_running(true);
    fast->set_running(true);
    desktop.run_for(0.6);
    EXPECT_EQ(ticks, 5);
    EXPECT_NEAR(fast_ticks, 65, 6);
    slow->set_running(false);
    desktop.run_for(1);
    EXPECT_EQ(ticks, 5);
}

TEST_F(SimTest, ChangedIntervalRestartsThePeriod) {
    int ticks = 0;
    const auto timer = desktop.make_timer(1000);
    timer->on_tick = [&] { ++ticks; };
    timer->set_running(true);
    desktop.run_for(0.9);
    timer->set_interval_ms(500);
    desktop.run_for(0.4);
    EXPECT_EQ(ticks, 0);
    desktop.run_for(0.2);
    EXPECT_EQ(ticks, 1);
}

TEST_F(SimTest, LoopsWithoutEndAreStopped) {
    EXPECT_THROW(
        for (;;) { desktop.process_events(); }, std::runtime_error);
    desktop.set_time_limit(10);
    EXPECT_THROW(
        for (;;) { ports.wait_seconds(1); }, std::runtime_error);
    std::function<void()> again = [&] { desktop.post(again); };
    desktop.post(again);
    EXPECT_THROW(desktop.process_events(), std::runtime_error);
}

TEST_F(SimTest, PacedWireTakesTenBitsAByte) {
    const auto port = desktop.make_serial_port();
    ASSERT_EQ(port->open(1, 38400), "");
    ScriptedController controller(desktop, desktop.line());
    controller.reply_to('A', reply_frame({'A'}, 63));
    controller.set_reply_delay(0);
    desktop.line().pace(38400);
    port->write(request_frame({'A'}));
    EXPECT_EQ(port->output_pending(), 8U);
    EXPECT_TRUE(desktop.run_until([&] { return port->available() == 65; }));
    EXPECT_NEAR(desktop.seconds(), 73 * 10 / 38400.0, 0.0001);
    EXPECT_EQ(port->output_pending(), 0U);
}

TEST_F(SimTest, FramesMatchTheWorkedExample) {
    EXPECT_EQ(request_frame({'A'}), (Request{2, 8, 0x41, 0x30, 0x30, 0x30, 0xDB, 0}));
    EXPECT_EQ(reply_frame({'Q', 1}, 6), (Bytes{2, 8, 'Q', 1, 0, 0, 0x5C, 0}));
}

TEST_F(SimTest, EachFaultStrikesOneReply) {
    const auto port = desktop.make_serial_port();
    port->open(1, 38400);
    ScriptedController controller(desktop, desktop.line());
    controller.responder = [](const Request& request) { return reply_frame({request[2], 7}); };
    const auto exchange = [&](double seconds = 0.05) {
        port->write(request_frame({'Q', 1}));
        desktop.run_for(seconds);
        return port->read_all();
    };
    const Bytes good{2, 6, 'Q', 7, 0x60, 0};
    EXPECT_EQ(exchange(), good);
    controller.drop_next_reply();
    EXPECT_EQ(exchange(), Bytes{});
    controller.corrupt_checksum();
    EXPECT_EQ(exchange(), (Bytes{2, 6, 'Q', 7, 0x61, 0}));
    controller.cut_reply(2);
    EXPECT_EQ(exchange(), (Bytes{2, 6, 'Q', 7}));
    controller.surplus_bytes(1);
    EXPECT_EQ(exchange(), (Bytes{2, 6, 'Q', 7, 0x60, 0, 0}));
    controller.delay_next_reply(0.2);
    EXPECT_EQ(exchange(), Bytes{});
    EXPECT_EQ(exchange(0.3).size(), 12U) << "the late one and the next";
    controller.silence();
    EXPECT_EQ(exchange(), Bytes{});
    controller.speak();
    EXPECT_EQ(exchange(), good);
    EXPECT_EQ(controller.sent_codes(), "QQQQQQQQQ");
    EXPECT_EQ(controller.messages().front(), (Bytes{'Q', 1, '0', '0'}));
}

TEST_F(SimTest, ClosedPortLosesWhatComesAndFailingPortSaysWhy) {
    const auto port = desktop.make_serial_port();
    desktop.line().fail_open(3, "no such device");
    EXPECT_EQ(port->open(3, 38400), "no such device");
    ASSERT_EQ(port->open(4, 38400), "");
    desktop.line().receive(Bytes{1, 2, 3}, 0.1);
    port->close();
    port->open(4, 19200);
    desktop.run_for(1);
    EXPECT_EQ(port->available(), 0U);
    EXPECT_EQ(desktop.line().tried(), (std::vector<int>{3, 4, 4}));
}

TEST_F(SimTest, DatagramsKeepTheirBoundsOrReadAsOneStream) {
    const auto client = desktop.make_datagram_socket();
    const auto server = desktop.make_datagram_socket();
    ASSERT_EQ(client->bind(998), "");
    ASSERT_EQ(server->bind(999), "");
    EXPECT_NE(desktop.make_datagram_socket()->bind(999), "");
    client->set_remote("10.0.0.5", 999);
    desktop.network.lose_next_datagrams(1);
    for (const Bytes& datagram : {Bytes{9}, Bytes{1, 2}, Bytes{3, 4, 5}, Bytes{6}}) {
        client->send(datagram);
    }
    desktop.run_for(0.1);
    EXPECT_EQ(server->available(), 6U);
    EXPECT_EQ(server->read_datagram(), (Bytes{1, 2}));
    EXPECT_EQ(server->read(10), (Bytes{3, 4, 5, 6}));
    EXPECT_EQ(server->sender_address(), "127.0.0.1");
}

TEST_F(SimTest, DialogsAreAnsweredFromTheScript) {
    desktop.answer_box("sure", platform::Answer::yes, 2);
    desktop.choose_file("a.set");
    EXPECT_EQ(ports.dialogs.message_box({.text = "Are you sure?"}), platform::Answer::yes);
    EXPECT_EQ(desktop.seconds(), 2);
    EXPECT_EQ(ports.dialogs.open_file({"Load", "set", "", ""}), "a.set");
    EXPECT_EQ(desktop.box_texts(), std::vector<std::string>{"Are you sure?"});
}

TEST_F(SimTest, UnforeseenQuestionFailsTheTestAndGetsTheSafeAnswer) {
    auto answer = platform::Answer::yes;
    EXPECT_NONFATAL_FAILURE(
        answer = ports.dialogs.message_box({.text = "Erase?", .buttons = platform::Buttons::yes_no}), "Erase?");
    EXPECT_EQ(answer, platform::Answer::no);
    platform::Form form("frm_wait", "");
    form.set_host(&desktop);
    EXPECT_NONFATAL_FAILURE(form.show_modal(), "frm_wait");
    EXPECT_FALSE(form.visible());
}

TEST_F(SimTest, EndOfTheProgramStopsTheCode) {
    try {
        ports.program.end(3);
    } catch (const ProgramEnded& ended) {
        EXPECT_EQ(ended.status, 3);
    }
}

} // namespace
} // namespace ecu::test
