// Bytes on the line: what is found among noise, when bytes arrive, and what goes wrong with them.
#include "console_end.h"

namespace ecu::controller {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

const Bytes good{2, 8, 'R', 48, 48, 48, 0xEC, 0};

TEST(Line, ARequestIsFoundBehindNoiseAndBehindABrokenOne) {
    ConsoleEnd console;
    EXPECT_THAT(console.send_raw({2, 8, 'R', 48, 48, 48, 0xED, 0}), IsEmpty()); // bad checksum
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
    EXPECT_THAT(console.send_raw({2, 8, 2, 8, 'R'}), IsEmpty()); // cut short
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
    Bytes noisy{0xFF, 0, 2, 2, 8, 8};
    noisy.insert(noisy.end(), good.begin(), good.end());
    noisy.insert(noisy.end(), good.begin(), good.end());
    EXPECT_THAT(console.send_raw(noisy), SizeIs(14));
}

TEST(Line, AMillionRandomBytesLeaveItAnswering) {
    ConsoleEnd console;
    Noise noise(7);
    Bytes random(1000000);
    std::ranges::generate(random, [&] { return static_cast<std::uint8_t>(noise.bits()); });
    console.send_raw(random);
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
}

TEST(Line, PacedBytesTakeTenBitsEachBothWays) {
    Settings settings;
    settings.pace_baud = 38400;
    VirtualController controller(settings);
    const link::Request request = link::build_request(Bytes{'A'});
    controller.receive(request, 5);
    const double byte = 10 / 38400.0;
    EXPECT_NEAR(controller.next_output().value(), 5 + (8 + 14) * byte, 1e-9);
    const double last = 5 + (8 + 65) * byte;
    EXPECT_THAT(controller.take_output(last - 1e-6), SizeIs(56));
    EXPECT_THAT(controller.take_output(last + 1e-6), SizeIs(9));
    EXPECT_FALSE(controller.next_output());
    // Two requests at once queue up on the wire and lose no time between them.
    controller.receive(request, 6);
    controller.receive(request, 6);
    EXPECT_THAT(controller.take_output(6 + (8 + 2 * 65) * byte - 1e-6), SizeIs(65 + 56));
    EXPECT_THAT(controller.take_output(6 + (8 + 2 * 65) * byte + 1e-6), SizeIs(9));
}

TEST(Line, EachFaultDoesWhatItsNameSays) {
    ConsoleEnd console;
    const Bytes whole = console.send_raw(good);
    Faults& faults = console.controller.faults();
    faults.strike_next(Fault::lost);
    EXPECT_THAT(console.send_raw(good), IsEmpty());
    faults.strike_next(Fault::cut);
    EXPECT_LT(console.send_raw(good).size(), whole.size());
    faults.strike_next(Fault::corrupted);
    const Bytes corrupted = console.send_raw(good);
    EXPECT_THAT(corrupted, SizeIs(whole.size()));
    EXPECT_NE(corrupted, whole);
    faults.strike_next(Fault::surplus);
    EXPECT_GT(console.send_raw(good).size(), whole.size());
    faults.strike_next(Fault::late);
    console.controller.receive(good, console.now);
    EXPECT_THAT(console.controller.take_output(console.now + 0.14), IsEmpty());
    EXPECT_EQ(console.controller.take_output(console.now + 0.16), whole);
    EXPECT_EQ(console.send_raw(good), whole);
    faults.set_silent(true);
    EXPECT_THAT(console.send_raw(good), IsEmpty());
}

TEST(Line, FaultRatesAreKeptAndRepeatWithTheSeed) {
    Settings settings;
    settings.faults[Fault::lost] = 0.2;
    settings.faults[Fault::corrupted] = 0.1;
    const auto run = [](const Settings& with) {
        ConsoleEnd console(with);
        std::vector<Bytes> replies;
        for (int i = 0; i < 1000; ++i) {
            replies.push_back(console.send_raw(good));
        }
        return replies;
    };
    const std::vector<Bytes> first = run(settings);
    EXPECT_EQ(first, run(settings));
    EXPECT_NEAR(static_cast<double>(std::ranges::count(first, Bytes{})), 200, 40);
    settings.firmware.seed = 2;
    EXPECT_NE(first, run(settings));
}

TEST(Line, ThePlugIsPulledByTheRequestBehindTheLastReply) {
    Settings settings;
    settings.faults.unplug_after = 2;
    ConsoleEnd console(settings);
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
    EXPECT_FALSE(console.controller.unplugged());
    EXPECT_THAT(console.send_raw(good), IsEmpty());
    EXPECT_TRUE(console.controller.unplugged());
    console.controller.faults().plug_in();
    EXPECT_THAT(console.send_raw(good), SizeIs(7));
}

class FlashLine : public testing::Test {
protected:
    FlashLine() {
        EXPECT_THAT(console.send({174, 90, 0, 0}), SizeIs(6));
        EXPECT_THAT(console.send({'A'}), IsEmpty()); // the firmware has stopped
    }
    std::string say(std::string_view text) {
        const Bytes said = console.send_raw(Bytes(text.begin(), text.end()));
        return {said.begin(), said.end()};
    }
    ConsoleEnd console;
};

TEST_F(FlashLine, RecordsRunTogetherAndTheLastOneStartsTheFirmware) {
    const std::string banner = say("q");
    EXPECT_NE(banner.find('B'), std::string::npos);
    EXPECT_EQ(banner.find('E'), std::string::npos);
    const std::string said = say("S00600004844521BS1130000285F245F2212226A000424290008237C2AS9030000FC");
    EXPECT_EQ(said.find('E'), std::string::npos);
    EXPECT_EQ(console.controller.flash_monitor().records(), 3U);
    EXPECT_EQ(console.controller.flash_monitor().data_bytes(), 16U);
    EXPECT_THAT(console.send({'A'}), SizeIs(65));
}

TEST_F(FlashLine, ABadRecordIsAnsweredWithAnErrorAndKeepsTheMonitor) {
    EXPECT_EQ(say("S00600004844521C"), "E");     // checksum
    EXPECT_EQ(say("S006000048\r\n"), "E");       // shorter than its count
    EXPECT_EQ(say("S0xx"), "E");                 // no count
    EXPECT_EQ(say("S00600004844521B\r\n"), "."); // and the next one is found
    EXPECT_EQ(say("S9030000FC").find('E'), std::string::npos);
    EXPECT_THAT(console.send({'A'}), IsEmpty());
}

TEST(Line, CapturesOfTheWheelShowWhatIsWrongWithIt) {
    const auto captured = [](WheelFault fault) {
        WheelCapture wheel;
        Noise noise(1);
        wheel.capture(3000, noise, fault);
        std::array<int, WheelCapture::periods> periods{};
        for (std::size_t i = 0; i < periods.size(); ++i) {
            periods[i] = wheel.period(i);
        }
        return periods;
    };
    const auto long_ones = [](const auto& periods) {
        return std::ranges::count_if(periods, [](int period) { return period > 520; }); // 347 is a tooth at 3000 rpm
    };
    EXPECT_EQ(long_ones(captured(WheelFault::none)), 3);
    EXPECT_GE(long_ones(captured(WheelFault::missing_tooth)), 6);
    EXPECT_LT(std::ranges::min(captured(WheelFault::noise)), 320);
    EXPECT_EQ(std::ranges::max(captured(WheelFault::dead)), 0);
}

TEST(Line, FlashMonitorRefusesTheLineThatItIsToldToOnceAndHearsAQuestionInABrokenRecord) {
    FlashMonitor monitor;
    monitor.fail_at_line(2);
    monitor.start();
    const auto said_to = [&monitor](std::string_view text) {
        std::string said;
        for (const char c : text) {
            said += monitor.receive(static_cast<std::uint8_t>(c));
        }
        return said;
    };
    const std::string header = "S00B000056312E30332E30304E"; // V1.03.00
    const std::string end = "S804000000FB";
    EXPECT_EQ(said_to(header + header), ".E");
    EXPECT_EQ(said_to(end), "\r\nnot usable, flash again\r\n");
    EXPECT_EQ(said_to("S00Bq"), "\r\nBoot monitor 1.0\r\n");
    EXPECT_EQ(said_to(header + header + end), "..\r\ndone, starting\r\n");
    EXPECT_EQ(monitor.revision(), 10300);
    EXPECT_EQ(monitor.received(), header + header + end);
}

} // namespace
} // namespace ecu::controller
