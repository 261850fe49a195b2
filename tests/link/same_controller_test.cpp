// Sequences that must stay with one controller, at the cable and through a server.
#include "link/same_controller.h"
#include "link_bench.h"

namespace ecu::test {
namespace {

// Over a port that is lost in the middle of it.
struct LostPortBench : CellBench {
    int serial = 5;
    int revision = 100;
    LostPortBench() {
        const auto cell = controller.responder;
        controller.responder = [this, cell](const Request& r) {
            const auto word = [&](int value) {
                return reply_frame({r[2], static_cast<std::uint8_t>(value), 0}, r[2] == 'R' ? 5 : 6);
            };
            return r[2] == 'R' ? word(revision) : r[2] == '-' ? word(serial) : cell(r);
        };
        const auto decoder = [this](const Reply& reply, int) {
            if (reply[2] == 'R') {
                state.identity.firmware = reply[3];
            } else if (reply[2] == '-') {
                state.identity.serial = reply[3];
            } else {
                seen[reply[3] + 256 * reply[4]] = reply[5];
            }
            state.reply_accepted = true;
        };
        comm.set_decoders({decoder, nullptr, nullptr});
    }
    void ask_who() {
        comm.poll({'R'}, 5);
        comm.poll({'-'}, 6);
    }
    void replug() {
        desktop.line().unplug();
        desktop.line().plug_in();
    }
};

TEST(SameController, AsksNothingWhileThePortStaysOpen) {
    LostPortBench bench;
    {
        SameController controller(bench.comm, bench.state);
        for (std::uint8_t cell = 0; cell < 5; ++cell) {
            EXPECT_EQ(controller.send({'e', cell, 1, 9}, 6), Outcome::accepted);
        }
        EXPECT_EQ(bench.controller.sent_codes(), "eeeee");
        EXPECT_FALSE(controller.lost());
    }
    bench.replug();
    EXPECT_EQ(bench.write(1, 9), Outcome::accepted) << "the sequence is over";
}

TEST(SameController, GoesOnWithTheSameOneAfterAskingWhoItIs) {
    LostPortBench bench;
    bench.ask_who();
    SameController controller(bench.comm, bench.state);
    controller.send({'e', 1, 1, 9}, 6);
    bench.replug();
    EXPECT_EQ(controller.send({'e', 2, 1, 9}, 6), Outcome::accepted);
    EXPECT_EQ(bench.controller.sent_codes(), "R-eR-e") << "no write before it is known who is there";
    bench.replug(); // once more
    EXPECT_EQ(controller.send({'e', 3, 1, 9}, 6), Outcome::accepted);
    EXPECT_EQ(bench.controller.sent_codes(), "R-eR-eR-e");
    EXPECT_EQ(bench.cells, (std::map<int, int>{{257, 9}, {258, 9}, {259, 9}}));
}

TEST(SameController, SendsNothingMoreToAnotherOneNorToOneThatCannotBeToldFromAnother) {
    for (const char* what : {"serial", "firmware", "silent", "never asked", "asked before the last plugging"}) {
        LostPortBench bench;
        const std::string kind = what;
        if (kind != "never asked") {
            bench.ask_who();
        }
        if (kind.starts_with("asked before")) {
            bench.replug();
            bench.write(0, 1);
        }
        {
            SameController controller(bench.comm, bench.state);
            controller.send({'e', 1, 1, 9}, 6);
            bench.serial += kind == "serial" ? 1 : 0;
            bench.revision += kind == "firmware" ? 1 : 0;
            if (kind == "silent") {
                bench.controller.silence();
                for (int question = 0; question < 3; ++question) {
                    bench.press_in_dialog(0);
                }
            }
            // In the middle of a message too: its next try must not reach the other one.
            bench.controller.drop_next_reply();
            bench.desktop.schedule(bench.desktop.now() + 50'000, [&] { bench.replug(); });
            EXPECT_EQ(controller.send({'e', 2, 1, 9}, 6), Outcome::not_sent) << kind;
            bench.controller.clear_sent();
            EXPECT_EQ(controller.send({'e', 3, 1, 9}, 6), Outcome::not_sent);
            EXPECT_EQ(bench.controller.sent_codes(), "") << kind;
            EXPECT_TRUE(controller.lost());
            EXPECT_THAT(controller.trouble(), testing::StartsWith("the port was lost, and "));
            EXPECT_FALSE(bench.state.reply_accepted);
        }
        bench.controller.speak();
        EXPECT_EQ(bench.write(4, 1), Outcome::accepted) << "the sequence is over";
    }
}

// The controller behind a server: of each try what the script says, else its answer.
struct FarControllerBench : LostPortBench {
    std::string codes;               // of the tries
    std::map<std::size_t, Bytes> at; // instead of the answer to try n; empty: silence

    FarControllerBench() {
        state.remote_server_ip = "10.0.0.7";
        socket.peer = [this](const Bytes& datagram) {
            Request request{};
            std::copy_n(datagram.begin() + 1, request.size(), request.begin());
            const auto instead = at.find(codes.size());
            codes += static_cast<char>(request[2]);
            if (instead != at.end()) {
                socket.arrive(instead->second);
            } else {
                socket.arrive(controller.responder(request));
            }
        };
    }
};

TEST(SameController, OfAClientIsAskedOnceBeforeAndAgainAfterEachTryWithoutAnAnswer) {
    const Bytes noresp{'N', 'O', 'R', 'E', 'S', 'P'};
    struct Case {
        std::map<std::size_t, Bytes> at;
        bool other;
        std::string codes;
        Outcome outcome;
    };
    for (const Case& c : {Case{{}, false, "R-eee", Outcome::accepted},
                          {{{0, {}}, {3, {2, 8, 1}}}, false, "RR-eeee", Outcome::accepted}, // damage is no doubt
                          {{{3, {}}}, false, "R-eeR-ee", Outcome::accepted},
                          {{{3, noresp}, {5, {}}}, false, "R-eeR--R-ee", Outcome::accepted},
                          {{{3, {}}}, true, "R-eeR-", Outcome::not_sent},
                          {{{3, noresp}}, true, "R-eeR-", Outcome::not_sent}}) {
        FarControllerBench bench;
        bench.at = c.at;
        SameController controller(bench.comm, bench.state);
        EXPECT_EQ(controller.send({'e', 1, 1, 9}, 6), Outcome::accepted) << c.codes;
        bench.serial += c.other ? 1 : 0;
        controller.send({'e', 2, 1, 9}, 6);
        EXPECT_EQ(controller.send({'e', 3, 1, 9}, 6), c.outcome) << c.codes;
        EXPECT_EQ(bench.codes, c.codes);
        EXPECT_EQ(controller.lost(), c.outcome != Outcome::accepted);
    }
}

TEST(SameController, OfAClientThatIsGoneIsNotAskedForTheMessageBesides) {
    FarControllerBench bench;
    for (std::size_t i = 0; i < 20; ++i) {
        bench.at[i] = {};
    }
    bench.press_in_dialog(0);
    SameController controller(bench.comm, bench.state);
    EXPECT_EQ(controller.send({'e', 1, 1, 9}, 6), Outcome::unanswered) << "one question to the tuner, not two";
    EXPECT_EQ(bench.codes, "RRRRRRRRRR");
    EXPECT_FALSE(controller.lost()) << "nothing was sent yet that could be torn";
}

} // namespace
} // namespace ecu::test
