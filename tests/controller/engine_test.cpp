// What the live replies tell must fit together as on an engine, over minutes of it.
#include "console_end.h"
#include "controller/engine_calibration.h"

#include <cmath>
#include <utility>

namespace ecu::controller {
namespace {

double position(const Bytes& live, std::size_t cell) { return (live.at(cell) + live.at(cell + 1) / 128.0) / 16; }

// Sensor of 255 kPa from 10 and 10000 rpm, as the controller comes.
void expect_cells_follow(const Bytes& live) {
    EXPECT_LE(live.at(41) | live.at(43) | live.at(45), 15);
    EXPECT_LE(live.at(42) | live.at(44) | live.at(46), 127);
    EXPECT_NEAR(position(live, 41), (word_at(live, 26) / 4.0 - 10) / 255, 0.002);
    EXPECT_NEAR(position(live, 43), word_at(live, 30) / 10000.0, 0.001);
    const double throttle = static_cast<std::int16_t>(word_at(live, 39)) / 1023.0;
    EXPECT_NEAR(position(live, 45), std::clamp(throttle, 0.0, 1.0), 0.002);
}

TEST(Engine, LiveRepliesStayCoherentThroughTheWholeCycle) {
    ConsoleEnd console(driving(Driving::cycle));
    unsigned lowest = 65535, highest = 0, enriched = 0;
    bool cut = false;
    for (int second = 0; second < 120; ++second) {
        const Bytes live = console.send({'A'});
        console.now -= 1;
        const Bytes second_block = console.send({129});
        console.now -= 1;
        const Bytes channels = console.send({207});
        ASSERT_EQ(live.size(), 65U);
        expect_cells_follow(live);
        const unsigned rpm = word_at(live, 30);
        lowest = std::min(lowest, rpm);
        highest = std::max(highest, rpm);
        enriched += word_at(live, 18) > 0 ? 1 : 0;
        EXPECT_EQ(word_at(channels, 3), word_at(live, 11)); // the first channel's pulse
        const double injector_ms = word_at(live, 11) * 1.6e-3;
        EXPECT_NEAR(channels.at(19), injector_ms * rpm / 120000 * 255, 1);
        EXPECT_EQ(channels.at(23), 0); // four cylinders
        EXPECT_NEAR(channels.at(27), word_at(channels, 5) * 0.01 * rpm / 120000 * 255, 1);
        if (second_block.at(17) > 0) {
            EXPECT_NEAR(word_at(second_block, 13) * (word_at(second_block, 15) / 16.0) / 16, rpm, rpm * 0.02 + 20);
        }
        const bool just_cut = std::exchange(cut, injector_ms == 0);
        if (injector_ms > 0 && !just_cut && word_at(live, 18) == 0 && second > 3) {
            EXPECT_NEAR(live.at(9), live.at(8), 14) << "lambda far from its set point at " << second;
        }
    }
    EXPECT_NEAR(lowest, 950, 150);
    EXPECT_GT(highest, 7000U);
    EXPECT_GT(enriched, 5U);
}

TEST(Engine, ItWarmsUpAndIdlesSlowerWhenWarm) {
    ConsoleEnd console(driving(Driving::idle));
    const Bytes cold = console.send({'A'});
    const Bytes cold_idle = console.send({129});
    console.now = 400;
    const Bytes warm = console.send({'A'});
    const Bytes warm_idle = console.send({129});
    EXPECT_LT(cold.at(13), 30);
    EXPECT_NEAR(warm.at(13), 87, 4);
    EXPECT_GT(cold.at(20), warm.at(20)); // enrichment by coolant
    EXPECT_LT(word_at(warm_idle, 28), word_at(cold_idle, 28));
    EXPECT_NEAR(word_at(warm, 30), word_at(warm_idle, 28), 60);
}

TEST(Engine, MoreFuelMakesItRichUntilTheFeedbackHasWorkedItOff) {
    ConsoleEnd console(driving(Driving::idle));
    console.now = 300;
    console.send({'D'}); // no feedback
    for (int address = 0x100; address < 0x200; ++address) {
        const auto low = static_cast<std::uint8_t>(address & 0xFF);
        const double richer = console.controller.memory().cell(static_cast<std::size_t>(address)) * 1.12;
        console.send({'e', low, 1, static_cast<std::uint8_t>(std::min(richer, 255.0))});
    }
    EXPECT_LT(console.send({'A'}).at(9), 122);
    console.send({'d'});
    console.now += 30;
    const Bytes live = console.send({'A'});
    EXPECT_NEAR(live.at(9), live.at(8), 8);
    EXPECT_NEAR(live.at(16), 64 / 1.11, 3); // the correction carries it now
}

TEST(Engine, TheSeedAloneDecidesAndPollingDoesNotDisturb) {
    Settings settings = driving(Driving::cruise);
    ConsoleEnd often(settings);
    ConsoleEnd once(settings);
    settings.firmware.seed = 2;
    ConsoleEnd other(settings);
    for (int i = 0; i < 50; ++i) {
        often.send({'A'});
    }
    once.now = other.now = often.now;
    const Bytes live = often.send({'A'});
    EXPECT_EQ(live, once.send({'A'}));
    EXPECT_NE(live, other.send({'A'}));
}

TEST(Engine, ANarrowBandSensorTellsOxygenAndSendsNoFrames) {
    ConsoleEnd console(driving(Driving::idle));
    EXPECT_EQ(word_at(console.send({'A'}), 6), 1U);
    console.send({209, 0, 0, 0});
    const Bytes before = console.send({'A'});
    const Bytes after = console.send({'A'});
    EXPECT_EQ(word_at(after, 6), 0U);
    EXPECT_EQ(word_at(before, 4), word_at(after, 4));
}

TEST(Engine, OutputsFollowTheirModes) {
    ConsoleEnd console(driving(Driving::idle));
    console.send({171, 0, 9, 0}); // above an rpm
    console.send({226, 0, 100, 0});
    console.send({171, 1, 3, 0}); // throttle map
    console.send({'e', 0x00, 0x03, 128});
    console.send({'e', 0x09, 0x03, 128});
    const Bytes block = console.send({129});
    EXPECT_EQ(block.at(18), 255);
    EXPECT_NEAR(block.at(19), 127, 2);
    console.send({226, 0, 0, 100});
    EXPECT_EQ(console.send({129}).at(18), 0);
}

// A tuner sees the effect of each correction curve; the rest of the engine is as it was.
TEST(Engine, EveryCorrectionCurveAndTheTargetsActWhereTheEngineRuns) {
    const OperatingPoint at{.rpm = 900, .manifold_kpa = 40, .coolant = 24, .battery = 13.9, .aux_volts = 1.2};
    const auto works = [&at](std::size_t changed) {
        ControllerMemory memory;
        for (std::size_t k = 0; k < 81 && (changed == 0 || k < 9); ++k) {
            memory.store_cell(changed + k, static_cast<std::uint8_t>(memory.cell(changed + k) + 8));
        }
        const EngineCalibration engine(memory);
        return std::vector<double>{engine.fuelling(at).pulse_ms, engine.timing(at),   engine.dwell_ms(at),
                                   engine.lambda_setpoint(at),   engine.idle_rpm(at), engine.accel_gain(at)};
    };
    const std::vector<double> before = works(table_base("CLTF")); // of no curve
    const auto expect_effect = [&](std::initializer_list<std::size_t> tables, std::size_t what) {
        for (const std::size_t base : tables) {
            const std::vector<double> after = works(base);
            for (std::size_t k = 0; k < before.size(); ++k) {
                EXPECT_EQ(after[k] != before[k], k == what) << base << ' ' << k;
            }
        }
    };
    expect_effect({table_base("CLTM"), table_base("MATM"), table_base("BARG"), table_base("AUXM")}, 0);
    expect_effect({table_base("IGNM"), table_base("IGNR"), table_base("IGNT"), table_base("IGNC"), table_base("BARI"),
                   table_base("IGNA")},
                  1);
    expect_effect({table_base("DWEL"), table_base("BATD")}, 2);
    expect_effect({table_base("EGOL")}, 3);
    expect_effect({table_base("IDLE")}, 4);
    expect_effect({table_base("ACCC")}, 5);
}

// The mean pressure at the upper end of the pulls through the revs, in kPa.
double boosted_pressure(const std::function<void(ControllerMemory&)>& change) {
    ConsoleEnd console(driving(Driving::pull));
    change(console.controller.memory());
    double sum = 0;
    int count = 0;
    for (int i = 0; i < 300; ++i) {
        const Bytes live = console.send({'A'});
        if (word_at(live, 30) > 6500 && static_cast<std::int16_t>(word_at(live, 39)) > 900) {
            sum += word_at(live, 26) / 4.0;
            ++count;
        }
    }
    return count > 0 ? sum / count : 0;
}
void fill_boost(ControllerMemory& memory, std::uint8_t raw) {
    for (std::size_t k = 0; k < 81; ++k) {
        memory.store_cell(table_base("BMP0") + k, raw);
    }
}

TEST(Engine, BoostFollowsTheMapOfTheFirstChannelAsTargetOrAsDuty) {
    const double low = boosted_pressure([](ControllerMemory& memory) { fill_boost(memory, 140); });
    const double high = boosted_pressure([](ControllerMemory& memory) { fill_boost(memory, 190); });
    EXPECT_NEAR(low, 150, 5);
    EXPECT_NEAR(high, 200, 5);
    const auto open_loop = [](std::uint8_t raw, std::uint16_t flags) {
        return [=](ControllerMemory& memory) {
            memory.store(slot("BOFG"), flags);
            fill_boost(memory, raw);
        };
    };
    const double off = boosted_pressure(open_loop(0, 2));
    EXPECT_GT(boosted_pressure(open_loop(255, 2)), off + 80);
    EXPECT_NEAR(boosted_pressure(open_loop(255, 3)), off, 5); // inverted
    const auto servo_off = [](ControllerMemory& memory) {
        fill_boost(memory, 190);
        memory.store(slot("BOEN"), 255); // never reached
    };
    EXPECT_NEAR(boosted_pressure(servo_off), off, 5);
}

} // namespace
} // namespace ecu::controller
