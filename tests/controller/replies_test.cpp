#include "console_end.h"

#include <algorithm>
#include <numeric>

namespace ecu::controller {
namespace {

using testing::IsEmpty;

TEST(Replies, FramesAreThoseWorkedOutByHand) {
    Settings settings;
    settings.firmware.serial_number = 0x030201;
    ConsoleEnd console(settings);
    EXPECT_EQ(console.send({'R'}), (Bytes{2, 7, 'R', 0xD8, 0x27, 0x5A, 0x01}));
    EXPECT_EQ(console.send({'-'}), (Bytes{2, 8, '-', 1, 2, 3, 0x3D, 0}));
    EXPECT_EQ(console.send({179}), (Bytes{2, 7, 179, 0x88, 0x3F, 0x83, 0x01}));
    EXPECT_EQ(console.send({180}), (Bytes{2, 7, 180, 0x23, 0x4E, 0x2E, 0x01}));
    EXPECT_EQ(console.send({174, 165, 0, 0}), (Bytes{2, 6, 174, 165, 0x5B, 0x01}));
    EXPECT_EQ(console.send({208}), (Bytes{2, 8, 208, 2, 87, 174, 0xE1, 0x01}));
}

TEST(Replies, WritesAreStoredAndEchoed) {
    ConsoleEnd console;
    EXPECT_EQ(console.send({'g', 44, 1, 0}), (Bytes{2, 7, 'g', 44, 1, 0x9D, 0}));
    EXPECT_EQ(word_at(console.send({'C'}), 12), 300U);
    EXPECT_EQ(console.send({'<', 50, 0, 0}), (Bytes{2, 6, '<', 50, 118, 0}));
    EXPECT_EQ(console.send({'%'}).at(3), 50);
    EXPECT_EQ(console.send({205, 7, 0xFE, 0xFF}), (Bytes{2, 8, 205, 7, 0xFE, 0xFF, 0xDB, 0x02}));
    EXPECT_EQ(word_at(console.send({202}), 3 + 2 * 7), 0xFFFEU);
    EXPECT_EQ(console.send({173, 2, 200, 0}), (Bytes{2, 7, 173, 2, 200, 0x80, 0x01}));
    EXPECT_EQ(console.send({172, 0, 0, 0}).at(5), 200);
    EXPECT_EQ(console.send({52, 0x34, 0x12, 0}).size(), 7U);
    EXPECT_EQ(word_at(console.send({48}), 7), 0x1234U);
}

TEST(Replies, AnElementBeyondItsVectorIsEchoedAndStoredNowhere) {
    ConsoleEnd console;
    const ControllerMemory before = console.controller.memory();
    EXPECT_EQ(console.send({128, 16, 255, 0}), (Bytes{2, 7, 128, 16, 255, 0x98, 0x01}));
    EXPECT_EQ(console.send({226, 200, 1, 1}).size(), 8U);
    EXPECT_EQ(console.controller.memory(), before);
}

TEST(Replies, TableMemoryIsReadByCellAndByBlock) {
    ConsoleEnd console;
    EXPECT_EQ(console.send({'e', 7, 1, 12}), (Bytes{2, 8, 'e', 7, 1, 12, 0x83, 0}));
    EXPECT_EQ(console.send({'E', 7, 1, 0}).at(5), 12);
    for (const auto& [command, cells] : {std::pair{'k', 27}, {'l', 32}, {'q', 16}, {'r', 9}}) {
        const Bytes block = console.send({static_cast<std::uint8_t>(command), 0, 1, 0});
        EXPECT_EQ(block.size(), static_cast<std::size_t>(cells) + 7);
        EXPECT_EQ(word_at(block, 3), 0x100U);
        EXPECT_EQ(block.at(5 + 7), 12);
    }
    EXPECT_EQ(console.send({'e', 0xFF, 0xFF, 9}).at(5), 9);
    EXPECT_EQ(console.send({'k', 0xFF, 0xFF, 0}).at(5), 9); // and around to address 0
}

TEST(Replies, EveryCommandHasTheLengthThatTheConsoleWaitsFor) {
    ConsoleEnd console;
    const std::vector<std::pair<int, std::size_t>> payloads{
        {'A', 63}, {129, 30}, {207, 37}, {178, 18}, {152, 9},  {'B', 12}, {'C', 21}, {'D', 3}, {'d', 3},  {'X', 6},
        {'F', 7},  {'+', 4},  {1, 5},    {2, 5},    {3, 6},    {4, 4},    {169, 4},  {215, 4}, {216, 4},  {247, 4},
        {248, 34}, {127, 19}, {155, 35}, {170, 7},  {225, 11}, {34, 35},  {35, 6},   {38, 11}, {39, 5},   {28, 19},
        {29, 6},   {12, 19},  {13, 6},   {201, 19}, {217, 43}, {218, 6},  {224, 5},  {212, 5}, {213, 4},  {50, 5},
        {51, 4},   {125, 5},  {126, 4},  {130, 4},  {131, 4},  {' ', 5},  {'|', 4},  {'Z', 5}, {248, 34}, {53, 4}};
    for (const auto& [command, payload] : payloads) {
        EXPECT_EQ(console.send({static_cast<std::uint8_t>(command), 0, 0, 0}).size(), payload + 2) << command;
    }
    for (const int unknown : {0, 5, 89, 200, 255}) {
        EXPECT_THAT(console.send({static_cast<std::uint8_t>(unknown)}), IsEmpty()) << unknown;
    }
}

TEST(Replies, TheThrottleIsMeasuredWhereItStands) {
    ConsoleEnd console(driving(Driving::idle));
    const std::uint8_t closed = console.send({215, 0, 0, 0}).at(3);
    EXPECT_NEAR(closed, 31, 1);
    EXPECT_EQ(console.send({212}).at(3), closed);
}

TEST(Replies, DriverTestsFireTheChannelsOfTheMask) {
    ConsoleEnd console;
    EXPECT_EQ(console.send({1, 0x05, 0, 0}), (Bytes{2, 7, 1, 5, 0, 15, 0}));
    console.send({2, 0x80, 0, 0});
    EXPECT_EQ(console.controller.firmware().fired_injectors(), 0x05);
    EXPECT_EQ(console.controller.firmware().fired_coils(), 0x80);
}

TEST(Replies, ACaptureShowsTheMissingToothHighByteFirst) {
    ConsoleEnd console(driving(Driving::idle));
    EXPECT_EQ(console.send({248, 0}).at(4), 0); // nothing captured yet
    console.send({247});
    std::vector<double> periods;
    for (std::uint8_t block = 0; block < 8; ++block) {
        const Bytes reply = console.send({248, block});
        EXPECT_EQ(reply.at(3), block);
        for (std::size_t i = 4; i < 34; i += 2) {
            periods.push_back(256.0 * reply[i] + reply[i + 1]);
        }
    }
    ASSERT_EQ(periods.size(), 120U);
    const double mean = std::accumulate(periods.begin(), periods.end(), 0.0) / 120;
    EXPECT_EQ(std::ranges::count_if(periods, [&](double period) { return period > 1.5 * mean; }), 3);
    EXPECT_EQ(std::ranges::count_if(periods, [&](double period) { return period < 0.5 * mean; }), 0);
    const unsigned rpm = word_at(console.send({'A'}), 30);
    EXPECT_NEAR(mean * 1.6e-6 * 35, 60.0 / rpm, 4.0 / rpm);
}

TEST(Replies, TheDynoRunsFromTriggerToEndAndCountsMilliseconds) {
    ConsoleEnd console(driving(Driving::pull));
    EXPECT_EQ(console.send({3, 0, 0xC4, 0x09}), (Bytes{2, 8, 3, 0, 0xC4, 0x09, 0xDA, 0}));
    console.send({3, 1, 0x70, 0x17}); // 6000
    console.send({4, 1, 0, 0});
    EXPECT_EQ(console.send({'A'}).at(47), 1);
    unsigned first_rpm = 0, last_rpm = 0, last_samples = 0;
    for (int poll = 0; poll < 600; ++poll) {
        console.now -= 0.9; // every tenth of a second
        const Bytes live = console.send({'A'});
        if (live.at(47) == 2) {
            const unsigned samples = word_at(live, 48);
            EXPECT_GE(samples, last_samples);
            last_samples = samples;
            last_rpm = word_at(live, 30);
            first_rpm = first_rpm == 0 ? last_rpm : first_rpm;
        } else if (live.at(47) == 3) {
            break;
        }
    }
    EXPECT_NEAR(first_rpm, 2500, 60);
    EXPECT_NEAR(last_rpm, 6000, 80);
    EXPECT_NEAR(last_samples, 5500, 2000);
    console.send({4, 0, 0, 0});
    EXPECT_EQ(console.send({'A'}).at(47), 0);
}

TEST(Replies, ARestartClearsCountersAndLatches) {
    ConsoleEnd console;
    console.now = 300;
    console.send({169, 165, 0, 0});
    console.now += 1;
    EXPECT_EQ(word_at(console.send({'A'}), 23), 0U); // timing held
    EXPECT_GE(word_at(console.send({129}), 10), 300U);
    console.send({174, 165, 0, 0});
    EXPECT_LE(word_at(console.send({129}), 10), 2U);
    EXPECT_NE(word_at(console.send({'A'}), 23), 0U);
}

} // namespace
} // namespace ecu::controller
