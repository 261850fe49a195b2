#include "link/answers.h"
#include "link/pause.h"
#include "link_bench.h"

namespace ecu::test {
namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;

TEST(Transaction, EndsWithTheLastByteAndOffersTheFrameToAllThreeDecoders) {
    LinkBench bench;
    bench.desktop.line().pace(38400);
    bench.controller.reply_to('A', live_reply());
    const double start = bench.desktop.seconds();
    EXPECT_EQ(bench.comm.send_ecu_message({'A'}, 63), Outcome::accepted);
    EXPECT_NEAR(bench.desktop.seconds() - start, 0.002 + 73 * 10 / 38400.0, 0.0005);
    EXPECT_TRUE(bench.state.reply_accepted);
    EXPECT_EQ(bench.offered, "1A63 2A63 3A63 ");
    EXPECT_EQ(bench.state.tx_byte_count, (std::array{8, 8}));
    EXPECT_EQ(bench.state.rx_byte_count, (std::array{65, 65}));
    EXPECT_FALSE(bench.comm.busy());
}

TEST(Transaction, IsRepeatedForEveryKindOfBadReplyAtOnceOnlyWhereTheCountWasRightAndTheCodeItsOwn) {
    Bytes cut = live_reply();
    cut.pop_back();
    Bytes surplus = live_reply();
    surplus.push_back(0);
    Bytes corrupt = live_reply();
    corrupt[9] ^= 1;
    const std::vector<Bytes> bad{{2}, cut, surplus, corrupt, reply_frame({'A'}, 62), reply_frame({'B'}, 63)};
    for (const Bytes& reply : bad) {
        LinkBench bench;
        bench.controller.responder = [&](const Request&) {
            return bench.controller.sent().size() == 1 ? reply : live_reply();
        };
        const double waited = reply.size() == 65 && reply[2] == 'A' ? 0.0 : 0.1;
        EXPECT_NEAR(bench.ask(), waited, 0.01) << reply.size();
        EXPECT_TRUE(bench.state.reply_accepted);
        EXPECT_EQ(bench.controller.sent(), (std::vector<Request>(2, {2, 8, 0x41, 0x30, 0x30, 0x30, 0xDB, 0})));
        EXPECT_EQ(bench.state.rx_byte_count[0], static_cast<int>(reply.size()) + 65);
    }
}

TEST(Transaction, TakesALateReplyInTheNextTryAndDrainsAStaleOne) {
    LinkBench bench;
    bench.controller.reply_to('A', live_reply());
    bench.controller.set_reply_delay(0.15);
    EXPECT_NEAR(bench.ask(), 0.15, 0.01);
    EXPECT_EQ(bench.controller.sent().size(), 2U);
    bench.desktop.run_for(0.2); // the second try's reply comes in unasked
    bench.controller.set_reply_delay(0.002);
    EXPECT_LT(bench.ask(), 0.01);
    EXPECT_EQ(bench.controller.sent().size(), 3U);
}

// Every way in which a frame of another message can come in the place of the answer, and what is lost by it: nothing.
TEST(ForeignFrame, OfAnotherCodeOrAddressIsDecodedButAnswersNothing) {
    const std::vector<Bytes> frames{reply_frame({'e', 9, 1, 77}), reply_frame({'e', 7, 2, 77}),
                                    reply_frame({'E', 7, 1, 77}), reply_frame({'S', 7, 1, 77})};
    for (const Bytes& frame : frames) {
        for (const std::optional<double> behind : {std::optional<double>{}, std::optional<double>{0.03}}) {
            CellBench bench;
            bench.controller.answer_with(frame, behind);
            const double start = bench.desktop.seconds();
            EXPECT_EQ(bench.write(7, 5), Outcome::accepted);
            EXPECT_EQ(bench.controller.sent().size(), behind ? 1U : 2U);
            EXPECT_NEAR(bench.desktop.seconds() - start, behind ? 0.032 : 0.104, 0.005);
            EXPECT_EQ(bench.seen[7 + 256], 5);
            if (frame[2] != 'S' && frame[3] + 256 * frame[4] != 7 + 256) {
                EXPECT_EQ(bench.seen[frame[3] + 256 * frame[4]], 77) << "decoders see every good frame";
            }
        }
    }
}

TEST(ForeignFrame, OfACodeThatNothingAsksForAnswersAsEver) {
    CellBench bench;
    bench.controller.answer_with(reply_frame({'F', 0, 0, 0, 0}, 7));
    EXPECT_EQ(bench.comm.send_ecu_message({'e', 7, 1, 5}, 7), Outcome::accepted);
    EXPECT_EQ(bench.controller.sent().size(), 1U);
}

TEST(ForeignFrame, OneReplyPastTheTimeOutShiftsNothing) {
    for (const double late : {0.099, 0.101, 0.105, 0.15, 0.199, 0.25}) {
        for (const int lost : {0, 1, 2}) {
            CellBench bench;
            bench.controller.answer_late(late);
            for (int cell = 0; cell < 12; ++cell) {
                if (cell == 2) {
                    bench.controller.drop_next_reply(lost);
                }
                ASSERT_EQ(bench.write(cell, 100 + cell), Outcome::accepted) << late;
                EXPECT_EQ(bench.seen[cell + 256], 100 + cell) << late << ", cell " << cell;
            }
            const std::size_t before = bench.controller.sent().size();
            const double start = bench.desktop.seconds();
            bench.write(12, 112);
            EXPECT_EQ(bench.controller.sent().size(), before + 1) << "the line is clean again";
            EXPECT_LT(bench.desktop.seconds() - start, 0.003);
        }
    }
}

TEST(ForeignFrame, AFloodOfThemHoldsATryForNoLongerThanTwoTimeOuts) {
    CellBench bench;
    bench.press_in_dialog(0);
    bench.controller.silence();
    std::function<void()> flood = [&] {
        bench.desktop.line().receive(reply_frame({'e', 9, 9, 9}));
        bench.desktop.schedule(bench.desktop.now() + 10'000, flood);
    };
    flood();
    const double start = bench.desktop.seconds();
    EXPECT_EQ(bench.write(7, 5), Outcome::unanswered);
    EXPECT_THAT(bench.desktop.seconds() - start, AllOf(Ge(1.0), Le(2.1)));
    EXPECT_EQ(bench.controller.sent().size(), 10U);
    EXPECT_THAT(bench.dialog.dialog_details.text(), testing::HasSubstr("the reply of another message"));
}

TEST(Answers, NeedTheRequestsOwnCodeAndWhatTheReplyRepeats) {
    const auto answer = [](const Bytes& asked, const Bytes& got) {
        const Bytes frame = reply_frame(got);
        Reply reply{};
        std::ranges::copy(frame, reply.begin());
        return answers(build_request(asked), reply);
    };
    EXPECT_TRUE(answer({'r', 1, 2, 3}, {'r', 1, 2, 9}));
    EXPECT_FALSE(answer({'r', 1, 2, 3}, {'r', 0, 2, 3}) || answer({'r', 1, 2, 3}, {'r', 1, 0, 3}));
    EXPECT_TRUE(answer({224, 1, 2, 3}, {224, 1, 9, 9}));
    EXPECT_FALSE(answer({224, 1, 2, 3}, {224, 0, 2, 3}));
    EXPECT_TRUE(answer({'g', 1, 2, 0}, {'g', 9, 9})) << "a value that the controller clamped";
    EXPECT_FALSE(answer({'g', 1, 2, 0}, {'f', 1, 2}));
    EXPECT_TRUE(answer({174, 165, 0, 0}, {174, 165}));
    for (const int code : {'F', '+', 'X', 'x'}) {
        EXPECT_TRUE(answer({'g', 1, 2, 0}, {static_cast<std::uint8_t>(code), 0, 0}));
    }
}

TEST(Observation, TellsEveryFrameAndEveryEndAndNothingOnceLetGo) {
    LinkBench bench;
    std::string seen;
    std::vector<float> seconds;
    Observation watch = bench.comm.observe([&](const Observed& o) {
        const std::array<std::string, 6> names{"accepted", "silent", "damaged", "untaken", "foreign", "given up"};
        seen += std::to_string(o.tries) + " " + names[static_cast<std::size_t>(o.verdict)] + " " +
                std::to_string(o.reply.size()) + (o.depth > 1 ? " inside" : "") + ", ";
        seconds.push_back(o.seconds);
        EXPECT_EQ(o.request[2], 'A');
    });
    Bytes corrupt = live_reply();
    corrupt[9] ^= 1;
    const std::vector<Bytes> replies{{}, corrupt, reply_frame({'A'}, 62), reply_frame({'B'}, 63), live_reply()};
    std::size_t next = 0;
    bench.controller.responder = [&](const Request&) { return next < replies.size() ? replies[next++] : Bytes{}; };
    bench.ask();
    EXPECT_EQ(seen, "1 silent 0, 2 damaged 65, 3 untaken 64, 4 foreign 65, 5 accepted 65, ");
    EXPECT_NEAR(seconds.at(0), 0.1F, 0.01F);
    EXPECT_NEAR(seconds.at(4), 0.002F, 0.005F);
    seen.clear();
    bench.controller.silence();
    bench.press_in_dialog(0);
    bench.ask();
    EXPECT_TRUE(seen.ends_with("9 silent 0, 10 silent 0, 10 given up 0, ")) << seen;
    seen.clear();
    watch.reset();
    bench.press_in_dialog(0);
    bench.ask();
    EXPECT_EQ(seen, "");
}

TEST(Transaction, DropsWhatStoodOnTheLineBeforeItsRequest) {
    LinkBench bench;
    std::vector<int> offered;
    bench.comm.set_decoders({[&](const Reply& reply, int) {
                                 offered.push_back(reply[3]);
                                 bench.state.reply_accepted = true;
                             },
                             nullptr, nullptr});
    bench.controller.reply_to('A', reply_frame({'A', 2}, 63));
    bench.desktop.line().receive(reply_frame({'A', 1}, 63)); // of its own code and size, only older
    bench.desktop.run_for(0.01);
    bench.ask();
    EXPECT_EQ(offered, std::vector{2});
    bench.state.remote_server_ip = "10.0.0.7";
    bench.socket.peer = [&](const Bytes&) { bench.socket.arrive(reply_frame({'A', 4}, 63)); };
    bench.socket.arrive(reply_frame({'A', 3}, 63));
    bench.ask();
    EXPECT_EQ(offered, (std::vector{2, 4}));
}

TEST(Pause, OfASequenceInsideAnothersLeavesTheOuterOnes) {
    SharedState state;
    {
        const Pause outer(state);
        { const Pause inner(state); }
        EXPECT_TRUE(state.polling_paused);
    }
    EXPECT_FALSE(state.polling_paused);
}

TEST(FailureDialog, TellsTheTunerWhatToLookFor) {
    LinkBench bench;
    Bytes corrupt = live_reply();
    corrupt[9] ^= 1;
    for (const auto& [reply, said] :
         std::vector<std::pair<Bytes, std::string>>{{{}, "COM3 (/dev/sim3), 38400 baud: 10 tries, nothing arrived.\n"},
                                                    {corrupt, "65 bytes that are no whole reply"},
                                                    {reply_frame({'A'}, 62), "a reply of another size"}}) {
        bench.controller.reply_to('A', reply);
        bench.press_in_dialog(0);
        bench.ask();
        EXPECT_THAT(bench.dialog.dialog_details.text(), testing::HasSubstr(said));
        EXPECT_THAT(bench.dialog.dialog_details.text(), testing::HasSubstr("until the program is started anew"));
    }
}

TEST(Transaction, KeepsItsTimeOutAndItsIntervalAcrossMidnight) {
    LinkBench bench;
    bench.state.current_view = View::monitor;
    bench.controller.reply_to('A', live_reply());
    bench.desktop.set_time_of_day(86399.0);
    bench.ask();
    EXPECT_EQ(bench.group_delay.text(), "9999.9") << "the first interval runs from midnight";
    bench.desktop.set_time_of_day(86399.95);
    bench.controller.drop_next_reply();
    EXPECT_THAT(bench.ask(), AllOf(Ge(0.09), Le(0.13)));
    EXPECT_LT(bench.state.last_reply_time, 1.0F);
    EXPECT_NEAR(bench.state.reply_intervals[15], 1.05F, 0.05F);
}

TEST(Transaction, ShowsTheMeanOfSixteenIntervalsOnTheMonitorOnly) {
    LinkBench bench;
    bench.desktop.set_time_of_day(100);
    bench.controller.reply_to('A', live_reply());
    for (int i = 0; i < 17; ++i) {
        bench.ask();
        bench.desktop.run_for(0.0505);
    }
    EXPECT_EQ(bench.group_delay.text(), "");
    bench.state.current_view = View::monitor;
    bench.ask();
    EXPECT_EQ(bench.group_delay.text(), "52.5");
}

TEST(Transaction, IsRefusedBeforeTheLinkIsOpenInDemoModeAndAfterAbort) {
    for (bool SharedState::*flag : {&SharedState::comm_ready, &SharedState::demo_mode, &SharedState::comm_aborted}) {
        LinkBench bench;
        bench.state.*flag = !(bench.state.*flag);
        bench.state.reply_accepted = true; // of an earlier message
        EXPECT_EQ(bench.comm.send_ecu_message({'A'}, 63), Outcome::not_sent);
        EXPECT_FALSE(bench.state.reply_accepted);
        EXPECT_TRUE(bench.controller.sent().empty());
    }
}

TEST(Transaction, CountsRetriesFromTheThirdTryInANoticeOfTwoSeconds) {
    LinkBench bench;
    bench.controller.reply_to('A', live_reply());
    bench.controller.drop_next_reply(2);
    bench.ask();
    EXPECT_FALSE(bench.retries.form.loaded());
    bench.controller.drop_next_reply(4);
    bench.ask();
    EXPECT_EQ(bench.retries.retries.text(), "4");
    bench.desktop.run_for(1.8); // the first write was 0.1 s before the second
    EXPECT_TRUE(bench.retries.form.visible());
    bench.desktop.run_for(0.2);
    EXPECT_FALSE(bench.retries.form.loaded());
    bench.retries.write_retries("3");
    EXPECT_TRUE(bench.retries.form.visible()) << "loaded anew";
}

TEST(FailureDialog, FollowsTenTriesAndDoesWhatItsButtonsSay) {
    for (std::size_t button = 0; button < 4; ++button) {
        LinkBench bench;
        bench.desktop.on_modal("frm_Dialog", [&](platform::Form&) {
            EXPECT_EQ(bench.dialog.dialog_caption.text(), "Communications has failed, Run Demo mode?");
            const std::array<std::string, 4> captions{"Try Again", "Demo", "Abort", "Terminate"};
            EXPECT_EQ(bench.dialog.dialog_button[button].text(), captions[button]);
            EXPECT_TRUE(bench.dialog.dialog_button[button].visible());
            EXPECT_TRUE(bench.comm.busy());
            bench.comm.poll({'A'}, 63); // a timer behind the dialog: fails too, asks no second time
            bench.dialog.dialog_button[button].press();
        });
        if (button == 3) {
            EXPECT_THROW(bench.ask(), ProgramEnded);
        } else {
            EXPECT_THAT(bench.ask(), AllOf(Ge(2.0), Le(2.2)));
        }
        EXPECT_FALSE(bench.comm.busy());
        EXPECT_EQ(bench.state.demo_mode, button == 1);
        EXPECT_EQ(bench.state.comm_aborted, button == 2);
        EXPECT_EQ(bench.state.tx_byte_count[0], 160);
        EXPECT_EQ(bench.retries.retries.text(), "10");
        EXPECT_EQ(bench.state.failed_frame_text, "Buffer = 02 08 41 30 30 30 DB 00    Cnt = 0");
    }
}

TEST(FailureDialog, ComesWhenThePortIsUnpluggedAndItsClosingIsTryAgain) {
    LinkBench bench;
    bench.desktop.schedule(bench.desktop.now() + 50'000, [&] { bench.comm1->close(); });
    bench.desktop.on_modal("frm_Dialog", [](platform::Form& form) { form.close_requested(); });
    EXPECT_THAT(bench.ask(), AllOf(Ge(1.0), Le(1.1)));
    EXPECT_EQ(bench.controller.sent().size(), 1U);
    EXPECT_FALSE(bench.state.demo_mode || bench.state.comm_aborted);
}

TEST(Nesting, AnInnerTransactionDoesNotVouchForTheOuter) {
    LinkBench bench;
    bench.controller.reply_to('A', live_reply());
    bench.controller.reply_to(174, reply_frame({174, 165}));
    bench.controller.drop_next_reply();
    bench.desktop.schedule(bench.desktop.now() + 10'000, [&] {
        bench.comm.poll({174, 165, 0, 0}, 4);
        EXPECT_TRUE(bench.state.reply_accepted);
    });
    bench.ask();
    EXPECT_TRUE(bench.state.reply_accepted);
    EXPECT_EQ(bench.controller.count('A'), 2U) << "the lost reply was asked for again";
}

TEST(Nesting, AKeyHeldDownOnADeadLinkDoesNotFillTheStack) {
    LinkBench bench;
    bench.press_in_dialog(1);
    int presses = 0;
    std::function<void()> key = [&] {
        if (++presses < 100) {
            bench.desktop.post(key);
        }
        bench.ask();
    };
    key();
    EXPECT_EQ(bench.controller.sent().size(), 16U * 10U);
}

// A server at the far end that answers every request with these datagrams.
struct RemoteBench : LinkBench {
    std::vector<Bytes> requests;
    std::vector<Bytes> answers;

    RemoteBench() {
        state.remote_server_ip = "10.0.0.7";
        socket.peer = [this](const Bytes& request) {
            requests.push_back(request);
            for (const Bytes& answer : answers) {
                socket.arrive(answer);
            }
        };
    }
};

TEST(RemoteTransport, SendsTheReplyLengthBeforeTheFrameAndReadsAcrossDatagrams) {
    RemoteBench bench;
    bench.socket.arrive({1, 2, 3}); // stale
    const Bytes reply = live_reply();
    bench.answers = {Bytes(reply.begin(), reply.begin() + 20), Bytes(reply.begin() + 20, reply.end())};
    EXPECT_LT(bench.ask(), 0.01);
    EXPECT_TRUE(bench.state.reply_accepted);
    EXPECT_TRUE(bench.state.remote_answering);
    EXPECT_EQ(bench.requests, (std::vector<Bytes>{{65, 2, 8, 0x41, 0x30, 0x30, 0x30, 0xDB, 0}}));
    EXPECT_EQ(bench.state.tx_byte_count[0], 8) << "the length byte is not the controller's";
    EXPECT_TRUE(bench.controller.sent().empty());
}

TEST(RemoteTransport, FailureTellsWhetherTheServerAnswered) {
    for (const Bytes& sign : {Bytes{}, Bytes{'P'}, Bytes{'N', 'O', 'R', 'E', 'S', 'P'}}) {
        RemoteBench bench;
        bench.answers = {sign};
        bench.press_in_dialog(0);
        EXPECT_THAT(bench.ask(), AllOf(Ge(10.0), Le(10.2)));
        EXPECT_EQ(bench.dialog.dialog_caption.text(),
                  sign.size() > 1 ? "Communications has failed, Remote server IS responding, ECU hardware is NOT."
                                  : "Communications has failed, Remote server IS NOT responding");
    }
}

} // namespace
} // namespace ecu::test
