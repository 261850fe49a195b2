#include "remote_bench.h"

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Bytes ask_live = asking(65, {'A'});
const Bytes noresp = text_bytes("NORESP");

TEST(Server, ClosesThePortAndItsActivationOpensItAgain) {
    ServerBench bench;
    bench.state.link_title_suffix = " ->COM3";
    bench.desktop.line().receive(Bytes{1, 2});
    bench.server.start();
    EXPECT_FALSE(bench.main_form.visible());
    EXPECT_FALSE(bench.comm1->is_open());
    EXPECT_FALSE(bench.state.comm_ready);
    EXPECT_EQ(bench.state.link_title_suffix, "");
    EXPECT_EQ(bench.main_form.caption(), "ECU System Console");
    bench.desktop.run_for(0.01);
    EXPECT_EQ(bench.form.Client_IP.text(), "INACTIVE");
    EXPECT_TRUE(bench.comm1->is_open());
    EXPECT_EQ(bench.main_form.caption(), "ECU System Console ->COM3");
    EXPECT_EQ(bench.form.server_address.text(), "10.0.0.7");
    EXPECT_THAT(bench.form.server_warning.text(), HasSubstr("port 999"));
    EXPECT_EQ(bench.form.server_warning.fore_colour(), platform::light_red);
}

TEST(Server, AnswersTheGreetingAndPassesAFrameAndItsReply) {
    ServerBench bench;
    bench.start();
    bench.ask_from(bench.client, text_bytes("MARCO"));
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(text_bytes("POLO")));
    EXPECT_EQ(bench.form.Client_IP.text(), "127.0.0.1");
    EXPECT_EQ(bench.form.num_sock_bytes.text(), "5");
    bench.ask_from(bench.client, ask_live);
    EXPECT_THAT(bench.controller.sent(), IsEmpty()) << "never inside the delivery";
    bench.desktop.run_for(0.05);
    EXPECT_THAT(bench.controller.messages(), ElementsAre(Bytes{'A', '0', '0', '0'}));
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(live_reply()));
    EXPECT_EQ(bench.form.num_sock_bytes.text(), "14");
    EXPECT_EQ(bench.form.num_comm_bytes.text(), "65");
}

TEST(Server, TellsOfAReplyOfFewerThanThreeBytesAndPassesALongOneWhole) {
    Bytes longer = live_reply();
    longer.resize(80, 9);
    for (const auto& [reply, answer] :
         {std::pair(Bytes{}, noresp), {{1}, noresp}, {{1, 2}, noresp}, {longer, longer}}) {
        ServerBench bench;
        bench.start();
        bench.controller.reply_to('A', reply);
        bench.in(0.09, [&] {
            EXPECT_THAT(bench.answers_to(bench.client), IsEmpty()) << "the wait for exactly 65 bytes runs out";
        });
        bench.ask_from(bench.client, ask_live);
        bench.desktop.run_for(0.15);
        EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(answer)) << reply.size();
    }
}

TEST(Server, GivesAReplyThatIsExpectedTooShortItsFullTime) {
    ServerBench bench;
    bench.start();
    bench.ask_from(bench.client, asking(0, {'A'}));
    bench.ask_from(bench.client, asking(0, {'A'}));
    bench.in(0.09, [&] {
        EXPECT_EQ(bench.controller.count('A'), 1U) << "the next frame must not run into this one's reply";
    });
    bench.desktop.run_for(0.3);
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(live_reply(), live_reply()));
}

TEST(Server, IsSilentToAllThatIsNotAWholeFrame) {
    ServerBench bench;
    bench.start();
    Bytes long_one = ask_live, bad_sum = ask_live, bad_start = ask_live, bad_length = ask_live;
    long_one.push_back(0);
    ++bad_sum[7];
    bad_start[1] = 3;
    bad_length[2] = 9;
    const std::vector<Bytes> junk{{},
                                  {65},
                                  Bytes(ask_live.begin(), ask_live.end() - 1),
                                  long_one,
                                  bad_sum,
                                  bad_start,
                                  bad_length,
                                  text_bytes("MARCO "),
                                  text_bytes("marco"),
                                  text_bytes("POLO"),
                                  noresp,
                                  Bytes(60000, 65),
                                  live_reply()};
    for (const Bytes& datagram : junk) {
        bench.ask_from(bench.client, datagram);
    }
    bench.desktop.run_for(1.5);
    EXPECT_THAT(bench.controller.sent(), IsEmpty());
    EXPECT_THAT(bench.desktop.network().sent(), IsEmpty());
    EXPECT_EQ(bench.refused(Refusal::no_request), std::ssize(junk));
    EXPECT_EQ(bench.form.num_refused.text(), std::to_string(junk.size()));
    EXPECT_EQ(bench.form.refused[0].text(), std::to_string(junk.size()));
    EXPECT_EQ(bench.form.Client_IP.text(), "INACTIVE");
    bench.ask_from(bench.client, ask_live);
    bench.desktop.run_for(0.1);
    EXPECT_EQ(bench.answers_to(bench.client).size(), 1U) << "junk takes nobody's place";
}

TEST(Server, AMillionDatagramsOfJunkLeaveNothingBehind) {
    ServerBench bench;
    bench.start();
    bench.ask_from(bench.client, text_bytes("MARCO"));
    bench.answers_to(bench.client);
    Bytes bad_sum = ask_live;
    ++bad_sum[6];
    const std::array<std::pair<Peer, Bytes>, 5> junk{{{bench.client, bad_sum},
                                                      {bench.other, ask_live},
                                                      {{loopback, 999}, ask_live},
                                                      {bench.client, Bytes(3000, 2)},
                                                      {{bench.client.address, 5}, text_bytes("MARCO")}}};
    for (int i = 0; i < 1'000'000; ++i) {
        const auto& [from, bytes] = junk[static_cast<std::size_t>(i) % junk.size()];
        bench.ask_from(from, bytes);
    }
    EXPECT_EQ(bench.incomming_sock.datagrams(), 0U);
    bench.desktop.run_for(2);
    EXPECT_THAT(bench.controller.sent(), IsEmpty());
    EXPECT_THAT(bench.desktop.network().sent(), IsEmpty());
    EXPECT_EQ(bench.form.num_refused.text(), "1000000");
    bench.form.sock_byte_count = std::numeric_limits<std::int32_t>::max() - 3;
    bench.ask_from(bench.client, ask_live);
    bench.desktop.run_for(0.1);
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(live_reply()));
    EXPECT_EQ(bench.form.num_sock_bytes.text(), "2147483647") << "held, not wrapped";
}

TEST(Server, ServesTheFirstToAskUntilItHasBeenIdleForSixSeconds) {
    ServerBench bench;
    bench.start();
    bench.ask_from(bench.client, ask_live); // served by an earlier run of the server: it does not greet again
    bench.ask_from(bench.other, text_bytes("MARCO"));
    bench.ask_from({bench.client.address, 4000}, ask_live);
    bench.desktop.run_for(5.5);
    EXPECT_EQ(bench.form.Client_IP.text(), "127.0.0.1");
    bench.ask_from(bench.other, text_bytes("MARCO"));
    bench.ask_from(bench.client, text_bytes("junk")); // neither keeps the place
    EXPECT_THAT(bench.answers_to(bench.other), IsEmpty());
    EXPECT_EQ(bench.refused(Refusal::another_served), 3);
    bench.desktop.run_for(1);
    EXPECT_EQ(bench.form.Client_IP.text(), "INACTIVE");
    bench.ask_from(bench.other, text_bytes("MARCO"));
    EXPECT_EQ(bench.answers_to(bench.other).size(), 1U);
    EXPECT_EQ(bench.form.Client_IP.text(), "10.0.0.9");
    EXPECT_EQ(bench.controller.count('A'), 1U);
    bench.desktop.run_for(5.5);
    bench.ask_from(bench.other, ask_live); // keeps it
    bench.desktop.run_for(2);
    EXPECT_EQ(bench.form.Client_IP.text(), "10.0.0.9");
}

TEST(Server, WithAListServesEachOnItAndNobodyElse) {
    ServerBench bench;
    bench.desktop.environment["ECU_REMOTE_ALLOW"] = "10.0.0.9, 10.0.0.10";
    bench.start();
    EXPECT_EQ(bench.form.server_allowed.text(), "Only 10.0.0.9, 10.0.0.10");
    const Peer second{0x0A00000A, 5000};
    for (const Peer& peer : {bench.client, bench.other, second}) {
        bench.ask_from(peer, ask_live);
    }
    bench.desktop.run_for(0.3);
    EXPECT_EQ(bench.controller.count('A'), 2U);
    EXPECT_EQ(bench.refused(Refusal::not_allowed), 1);
    std::vector<Peer> answered;
    for (const auto& sent : bench.desktop.network().sent()) {
        answered.push_back(sent.to);
    }
    EXPECT_THAT(answered, ElementsAre(bench.other, second));
}

TEST(Server, KeepsSixteenWaitingAndWritesNoneThatIsOlderThanASecond) {
    ServerBench bench;
    bench.start();
    bench.controller.silence();
    for (int i = 0; i < 30; ++i) {
        bench.ask_from(bench.client, ask_live);
    }
    EXPECT_EQ(bench.refused(Refusal::too_many), 14);
    bench.desktop.run_for(5);
    EXPECT_EQ(bench.controller.count('A'), 10U) << "0.1 s each, none later than 1.0 s after it came";
    EXPECT_EQ(bench.refused(Refusal::too_late), 6);
    EXPECT_EQ(bench.answers_to(bench.client).size(), 10U) << "nobody waits for the others any more";
}

TEST(Server, WritesOneFrameAtATimeWhateverComesMeanwhile) {
    ServerBench bench;
    bench.start();
    bench.controller.set_reply_delay(0.03);
    bench.ask_from(bench.client, ask_live);
    bench.in(0.01, [&] {
        bench.ask_from(bench.client, ask_live);
        EXPECT_TRUE(bench.state.polling_paused) << "no tick's message into the middle";
    });
    bench.in(0.02, [&] { EXPECT_EQ(bench.controller.count('A'), 1U); });
    bench.desktop.run_for(0.2);
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(live_reply(), live_reply()));
    EXPECT_FALSE(bench.state.polling_paused);
}

TEST(Server, DropsALateReplyBeforeTheNextWrite) {
    ServerBench bench;
    bench.start();
    bench.controller.set_reply_delay(0.15);
    bench.ask_from(bench.client, ask_live);
    bench.desktop.run_for(0.3);
    bench.controller.set_reply_delay(0.002);
    bench.controller.reply_to('B', reply_frame({'B'}, 12));
    bench.answers_to(bench.client);
    bench.ask_from(bench.client, asking(14, {'B'}));
    bench.desktop.run_for(0.2);
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(reply_frame({'B'}, 12)));
}

TEST(Server, LeavesTheFirstFrameAfterANewOpeningOfThePortWithoutAnswer) {
    ServerBench bench;
    bench.desktop.environment["ECU_REMOTE_ALLOW"] = "127.0.0.1,10.0.0.9";
    bench.start();
    bench.ask_from(bench.client, text_bytes("MARCO"));
    const auto replug = [&] {
        bench.desktop.line().unplug();
        bench.desktop.line().plug_in();
    };
    for (int times = 0; times < 2; ++times) {
        replug();
        bench.answers_to(bench.client);
        bench.ask_from(bench.client, ask_live);
        bench.desktop.run_for(0.1);
        bench.ask_from(bench.client, ask_live);
        bench.ask_from(bench.other, ask_live); // one that has seen no other
        bench.desktop.run_for(0.2);
        EXPECT_EQ(bench.refused(Refusal::opened_anew), 1 + times) << "counted anew with each start";
        EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(live_reply()));
        bench.ask_from(bench.other, ask_live);
        bench.desktop.run_for(0.2);
        EXPECT_EQ(bench.answers_to(bench.other).size(), 1U);
        bench.form.form.unload(); // what is known outlasts a restart of the server
        bench.desktop.run_for(0.1);
        bench.server.start();
        bench.desktop.run_for(0.1);
    }
    bench.desktop.line().unplug();
    bench.ask_from(bench.client, ask_live);
    bench.desktop.run_for(0.2);
    EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(noresp)) << "gone, which is no other one yet";
}

TEST(Server, WaitsForTheConsolesOwnMessageButNotForTheAnswerToItsFailure) {
    ServerBench bench;
    bench.start();
    bench.controller.silence();
    bench.in(0.05, [&] { bench.ask_from(bench.client, ask_live); });
    bench.desktop.on_modal("frm_Dialog", [&](platform::Form&) {
        EXPECT_EQ(bench.controller.count('A'), 0U);
        bench.desktop.run_for(0.2); // what waited finds the line free
        bench.controller.speak();
        bench.ask_from(bench.client, ask_live);
        bench.desktop.run_for(0.1);
        EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(noresp, live_reply()));
        bench.dialog.dialog_button[0].press();
    });
    bench.comm.poll({'C'}, 21); // as the first tick does
    EXPECT_EQ(bench.controller.count('C'), 10U);
}

TEST(Server, PassesNothingOnAfterCancelAndAnswersNoOldFrameAfterANewStart) {
    ServerBench bench;
    bench.start();
    bench.controller.set_reply_delay(0.05);
    bench.ask_from(bench.client, ask_live);
    bench.ask_from(bench.client, ask_live);
    bench.in(0.01, [&] {
        bench.form.server_cancel.press();
        EXPECT_TRUE(bench.main_form.visible());
        EXPECT_FALSE(bench.desktop.network().bound(999));
        bench.server.start(); // while the first frame still waits for its reply
    });
    bench.desktop.run_for(0.5);
    EXPECT_EQ(bench.controller.count('A'), 1U);
    EXPECT_THAT(bench.desktop.network().sent(), IsEmpty());
    EXPECT_EQ(bench.form.num_sock_bytes.text(), "0");
    bench.form.form.close_requested();
    bench.ask_from(bench.client, ask_live);
    bench.desktop.run_for(8);
    EXPECT_EQ(bench.controller.count('A'), 1U);
    EXPECT_FALSE(bench.form.Timer1->running());
}

TEST(Server, WritesNothingWhereTheLinkWasGivenUp) {
    for (const bool demo : {true, false}) {
        ServerBench bench;
        bench.start();
        (demo ? bench.state.demo_mode : bench.state.comm_aborted) = true;
        bench.ask_from(bench.client, ask_live);
        bench.desktop.run_for(1.2);
        EXPECT_THAT(bench.controller.sent(), IsEmpty());
        EXPECT_THAT(bench.answers_to(bench.client), ElementsAre(noresp)) << "the server is there, the controller not";
        EXPECT_THAT(bench.form.server_serial.text(), HasSubstr("nothing is passed on"));
    }
}

TEST(Server, ARefusedPortOrAFaultySettingIsToldAndLeavesTheConsoleAsItIs) {
    struct Case {
        const char* variable;
        const char* value;
        platform::BindResult result;
        std::vector<const char*> told;
    };
    using platform::BindFault;
    const std::vector<Case> cases{
        {"",
         "",
         {BindFault::not_permitted, "permission denied"},
         {"999", "permission denied", "sudo setcap cap_net_bind_service=+ep /",
          "net.ipv4.ip_unprivileged_port_start=998", "ECU_REMOTE_PORTS"}},
        {"", "", {BindFault::in_use, "in use"}, {"999", "in use", "Another program"}},
        {"ECU_REMOTE_BIND", "192.0.2.1", {BindFault::no_such_address, "no such"}, {"ECU_REMOTE_BIND", "192.0.2.1"}},
        {"ECU_REMOTE_BIND", "::1", {}, {"ECU_REMOTE_BIND", "::1"}},
        {"ECU_REMOTE_PORTS", "998", {}, {"ECU_REMOTE_PORTS", "\"998\""}},
        {"ECU_REMOTE_PORTS", "5000,5000", {}, {"5000,5000", "different"}},
        {"ECU_REMOTE_PORTS", "0,999", {}, {"0,999"}},
        {"ECU_REMOTE_PORTS", "1,2,3", {}, {"1,2,3"}},
        {"ECU_REMOTE_PORTS", "998,70000", {}, {"998,70000"}},
        {"ECU_REMOTE_ALLOW", "10.0.0.300", {}, {"ECU_REMOTE_ALLOW", "10.0.0.300"}},
        {"ECU_REMOTE_ALLOW", "10.0.0.3,", {}, {"10.0.0.3,"}}};
    for (const Case& fault : cases) {
        ServerBench bench;
        bench.desktop.environment[fault.variable] = fault.value;
        if (fault.result.fault != BindFault::none) {
            bench.desktop.network().refuse(999, fault.result);
        }
        bench.desktop.expect_box(fault.told.front());
        bench.start();
        for (const char* part : fault.told) {
            EXPECT_THAT(bench.desktop.box_texts().back(), HasSubstr(part));
        }
        EXPECT_TRUE(bench.main_form.visible() && bench.comm1->is_open());
        EXPECT_FALSE(bench.form.form.visible() || bench.desktop.network().bound(999));
        if (fault.result.fault == BindFault::in_use) {
            bench.desktop.network().allow(999);
            bench.start();
            EXPECT_TRUE(bench.desktop.network().bound(999)) << "the next try finds it free";
        }
    }
}

TEST(Server, NeverAnswersAServerPortAlsoWherePortsAreNamed) {
    ServerBench bench;
    bench.desktop.environment["ECU_REMOTE_PORTS"] = "40998, 40999";
    bench.start();
    EXPECT_TRUE(bench.desktop.network().bound(40999));
    for (const Bytes& datagram : {text_bytes("MARCO"), ask_live}) {
        bench.desktop.network().arrive({loopback, 40999}, 40999, datagram);
    }
    bench.desktop.network().arrive({loopback, 999}, 40999, ask_live);
    bench.desktop.run_for(0.1);
    EXPECT_EQ(bench.desktop.network().sent().size(), 1U);
    EXPECT_EQ(bench.answers_to({loopback, 999}).size(), 1U);
    EXPECT_EQ(bench.refused(Refusal::server_port), 2);
    EXPECT_THAT(bench.form.server_warning.text(), HasSubstr("port 40999"));
}

TEST(Server, IsNotForDemoMode) {
    ServerBench bench;
    bench.state.demo_mode = true;
    bench.desktop.expect_box("This program is running in demo mode, so this feature cannot be executed.");
    bench.start();
    EXPECT_FALSE(bench.form.form.visible());
}

} // namespace
} // namespace ecu::test
