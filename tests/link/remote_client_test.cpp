#include "remote_bench.h"

namespace ecu::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;

TEST(Client, GreetsTheServerAndTakesItsPlaceInTheTitle) {
    ClientBench bench;
    bench.state.identity = {.firmware = 100, .serial = 5}; // of this machine's own controller
    bench.desktop.expect_box("Succesful connection to remote IP address 127.0.0.1");
    bench.enter({" 127", "0", "000", "1"});
    bench.client.start();
    EXPECT_THAT(bench.asked, ElementsAre(text_bytes("MARCO")));
    EXPECT_EQ(bench.main_form.caption(), "127.0.0.1 -> ECU System Console");
    EXPECT_EQ(bench.state.link_title_suffix, "127.0.0.1 -> ");
    EXPECT_FALSE(bench.start_server.enabled() || bench.start_client.enabled());
    EXPECT_TRUE(bench.halt_client.enabled());
    EXPECT_FALSE(bench.comm1->is_open() || bench.state.comm_ready);
    EXPECT_FALSE(bench.state.identity.firmware || bench.state.identity.serial);
    EXPECT_TRUE(bench.desktop.network().bound(998));
    bench.selection.open_comm_link();
    EXPECT_TRUE(bench.state.comm_ready);
    EXPECT_FALSE(bench.comm1->is_open()) << "a client needs no serial port";
    bench.client.halt();
    EXPECT_FALSE(bench.state.comm_ready);
    EXPECT_EQ(bench.main_form.caption(), "ECU System Console");
    EXPECT_EQ(bench.state.link_title_suffix + bench.state.remote_server_ip, "");
    EXPECT_TRUE(bench.start_server.enabled() && bench.start_client.enabled());
    EXPECT_FALSE(bench.halt_client.enabled());
    bench.selection.open_comm_link();
    EXPECT_TRUE(bench.comm1->is_open()) << "the next view has the serial port again";
}

TEST(Client, GivesUpWithoutAnAnswerAndUndoesAll) {
    struct Case {
        std::array<const char*, 4> fields;
        std::string address;
        std::vector<Bytes> answers;
        double seconds;
    };
    for (const Case& silent : {Case{{"127", "0", "0", "1"}, "127.0.0.1", {}, 5},
                               {{"127", "0", "0", "1"}, "127.0.0.1", {text_bytes("POLO!"), text_bytes("PO")}, 5},
                               {{"300", "0", "0", "1"}, "300.0.0.1", {text_bytes("POLO")}, 0},
                               {{"256", "x", "", "1"}, "256.0.0.1", {text_bytes("POLO")}, 0},
                               {{"127", "0", "0", "2"}, "127.0.0.2", {text_bytes("POLO")}, 5}}) {
        ClientBench bench;
        bench.answers = silent.answers;
        bench.state.link_title_suffix = " ->COM3";
        bench.enter(silent.fields);
        bench.desktop.expect_box("Unable to connect to remote IP address " + silent.address);
        const double start = bench.desktop.seconds();
        bench.client.start();
        EXPECT_THAT(bench.desktop.seconds() - start, AllOf(Ge(silent.seconds), Le(silent.seconds + 0.1)));
        EXPECT_EQ(bench.main_form.caption(), "ECU System Console");
        EXPECT_EQ(bench.state.remote_server_ip + bench.state.link_title_suffix, "");
        EXPECT_TRUE(bench.start_server.enabled() && bench.start_client.enabled() && !bench.halt_client.enabled());
        EXPECT_FALSE(bench.state.remote_connecting);
    }
}

TEST(Client, ARefusedPortIsTold) {
    ClientBench bench;
    bench.desktop.network().refuse(998, {platform::BindFault::not_permitted, "permission denied"});
    bench.enter({"127", "0", "0", "1"});
    bench.desktop.expect_box("998");
    bench.client.start();
    EXPECT_THAT(bench.desktop.box_texts().back(), AllOf(HasSubstr("permission denied"), HasSubstr("sudo setcap")));
    EXPECT_TRUE(bench.start_client.enabled());
    bench.desktop.environment["ECU_REMOTE_PORTS"] = "40998,999";
    bench.connect();
    EXPECT_EQ(bench.state.remote_server_ip, "127.0.0.1");
}

TEST(Client, CancelOrClosingTheQuestionChangesNothing) {
    for (const bool close : {false, true}) {
        ClientBench bench;
        bench.desktop.on_modal("frm_remote_ip", [&](platform::Form& form) {
            close ? form.close_requested() : bench.form.remote_ip_cancel.press();
        });
        bench.client.start();
        EXPECT_TRUE(bench.comm1->is_open() && bench.state.comm_ready);
        EXPECT_TRUE(bench.start_client.enabled());
        EXPECT_THAT(bench.desktop.network().sent(), IsEmpty());
        EXPECT_FALSE(bench.state.remote_connecting);
    }
}

TEST(Client, HaltedWhileItWaitsItSaysNothingMore) {
    ClientBench bench;
    bench.answers.clear();
    bench.enter({"127", "0", "0", "1"});
    bench.desktop.schedule(bench.desktop.now() + 1'000'000, [&] {
        bench.selection.open_comm_link();
        EXPECT_FALSE(bench.state.comm_ready) << "nothing may be sent before the greeting is answered";
        bench.client.halt();
    });
    bench.client.start();
    EXPECT_THAT(bench.desktop.seconds(), Le(1.1));
    EXPECT_THAT(bench.desktop.boxes(), IsEmpty());
    EXPECT_TRUE(bench.start_client.enabled());
    EXPECT_EQ(bench.state.remote_server_ip, "");
}

TEST(Client, TakesAReplyOfItsServerAloneAndForgetsWhatCameBefore) {
    ClientBench bench;
    bench.connect();
    bench.selection.open_comm_link();
    SimNetwork& network = bench.desktop.network();
    for (int i = 0; i < 1000; ++i) {
        network.arrive({loopback, 999}, 998, Bytes(65, 1)); // while no message is under way
    }
    EXPECT_EQ(bench.outgoing_sock.datagrams(), 0U);
    bench.answers = {live_reply()};
    bench.desktop.schedule(bench.desktop.now() + 100, [&] {
        for (int i = 0; i < 1000; ++i) {
            network.arrive({loopback, 1000}, 998, live_reply());
        }
    });
    const double start = bench.desktop.seconds();
    EXPECT_EQ(bench.far_comm.send_ecu_message({'A'}, 63), Outcome::accepted);
    EXPECT_LT(bench.desktop.seconds() - start, 0.01);
    EXPECT_THAT(bench.asked, ElementsAre(asking(65, {'A'})));
    EXPECT_THAT(bench.controller.sent(), IsEmpty());
}

TEST(Client, HaltEndsTheMessageUnderWayWithoutAQuestion) {
    ClientBench bench;
    bench.connect();
    bench.selection.open_comm_link();
    bench.answers.clear();
    bench.desktop.schedule(bench.desktop.now() + 1'500'000, [&] { bench.client.halt(); });
    EXPECT_EQ(bench.far_comm.send_ecu_message({'A'}, 63), Outcome::unanswered);
    EXPECT_EQ(bench.asked.size(), 2U);
    EXPECT_THAT(bench.controller.sent(), IsEmpty()) << "a message for the far controller is not for this one";
}

TEST(AddressEntry, APointMovesOnAndWrapsAndEnterInTheLastBoxIsDone) {
    FrmRemoteIp form;
    SimDesktop desktop;
    form.form.set_host(&desktop);
    for (auto& box : form.client_ip_address) {
        EXPECT_EQ(box.text(), "1");
    }
    for (std::size_t box = 0; box < 4; ++box) {
        platform::KeyPress point{.code = platform::key::period};
        form.client_ip_address[box].key_down(point);
        const std::size_t next = box == 3 ? 0 : box + 1;
        EXPECT_EQ(point.code, 0);
        EXPECT_EQ(form.client_ip_address[next].text(), "");
        EXPECT_EQ(desktop.changes("frm_remote_ip", "client_ip_address(" + std::to_string(next) + ")",
                                  platform::Property::focus),
                  1);
        form.client_ip_address[next].set_text("7");
    }
    int done = 0;
    form.remote_ip_done.clicked = [&] { ++done; };
    for (std::size_t box = 0; box < 4; ++box) {
        platform::KeyPress enter{.code = platform::key::enter};
        form.client_ip_address[box].key_down(enter);
        EXPECT_EQ(done, box == 3 ? 1 : 0);
    }
    EXPECT_EQ(form.address(), "7.7.7.7");
    form.client_ip_address[1].set_text(" 12 abc");
    form.client_ip_address[2].set_text("none");
    EXPECT_EQ(form.address(), "7.12.0.7");
}

} // namespace
} // namespace ecu::test
