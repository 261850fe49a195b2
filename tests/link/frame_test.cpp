#include "link_bench.h"

#include <numeric>
#include <random>

namespace ecu::test {
namespace {

Reply held(const Bytes& received) {
    Reply reply{};
    std::copy_n(received.begin(), std::min(received.size(), reply.size()), reply.begin());
    return reply;
}
FrameFault fault_of(const Bytes& received) { return check_reply(held(received), received.size()).fault; }

TEST(Frame, RequestIsFilledWithAsciiZerosAndCutBehindTheFourthByte) {
    EXPECT_EQ(build_request(Bytes{'A'}), (link::Request{0x02, 0x08, 0x41, 0x30, 0x30, 0x30, 0xDB, 0x00}));
    EXPECT_EQ(build_request(Bytes{'f', 0}), (link::Request{2, 8, 0x66, 0, 0x30, 0x30, 0xD0, 0}));
    EXPECT_EQ(build_request(Bytes{0x66, 1, 2, 3, 4, 5}), (link::Request{2, 8, 0x66, 1, 2, 3, 0x76, 0}));
    EXPECT_EQ(build_request(Bytes(4, 255)), (link::Request{2, 8, 255, 255, 255, 255, 0x06, 0x04}));
}

TEST(Frame, ControllerSideSeesEveryFaultOfARequest) {
    EXPECT_EQ(check_request(Bytes{2, 8, 0x41, 0x30, 0x30, 0x30, 0xDB, 0}), FrameFault::none);
    EXPECT_EQ(check_request(Bytes{3, 8, 0x41, 0x30, 0x30, 0x30, 0xDC, 0}), FrameFault::start);
    EXPECT_EQ(check_request(Bytes{2, 9, 0x41, 0x30, 0x30, 0x30, 0xDC, 0}), FrameFault::length);
    EXPECT_EQ(check_request(Bytes{2, 8, 0x41, 0x30, 0x30, 0x31, 0xDB, 0}), FrameFault::checksum);
    EXPECT_EQ(build_reply('A', Bytes(60, 17)), live_reply());
}

TEST(Frame, OnlyTheRestartReplyMayDisagreeWithItsLength) {
    EXPECT_EQ(check_reply(held({2, 6, 174, 165, 0x5B, 1, 9, 9, 9}), 9).payload_count, 4);
    EXPECT_EQ(fault_of({2, 6, 175, 165, 0x5C, 1, 9, 9, 9}), FrameFault::length);
    EXPECT_EQ(fault_of({2, 200, 174, 165}), FrameFault::length) << "its checksum would stand outside what is held";
    EXPECT_EQ(fault_of({2, 2, 174, 0, 0, 0}), FrameFault::too_short);
    EXPECT_EQ(fault_of({9, 6, 66, 1, 82, 0}), FrameFault::none) << "the start byte is not tested";
    EXPECT_EQ(fault_of(Bytes(150, 150)), FrameFault::length);
}

// One changed byte moves the sum by less than 256 or leaves it beside another checksum, so none can pass.
TEST(Frame, NoSingleChangedByteOfALiveReplyPasses) {
    for (std::size_t place = 0; place < 65; ++place) {
        for (int change = 1; change < 256; ++change) {
            Bytes mutated = live_reply();
            mutated[place] = static_cast<std::uint8_t>(mutated[place] ^ change);
            ASSERT_NE(fault_of(mutated), FrameFault::none) << place << " changed by " << change;
        }
    }
}

// Half of the noise is of few values and headed like a reply, so that chance makes some sound frames.
TEST(Frame, AMillionBytesOfNoiseOfferTheDecodersSoundFramesOnly) {
    LinkBench bench;
    std::mt19937 random(7);
    Bytes noise;
    std::size_t total = 0;
    int offered = 0;
    bench.controller.responder = [&](const Request&) {
        const bool headed = random() % 2 == 0;
        noise.resize(random() % 130);
        std::ranges::generate(noise, [&] { return static_cast<std::uint8_t>(random() % (headed ? 4 : 256)); });
        if (headed && noise.size() > 2) {
            noise[1] = static_cast<std::uint8_t>(random() % 4 == 0 ? random() : noise.size());
            noise[2] = random() % 4 == 0 ? 174 : 'A';
        }
        total += noise.size();
        return noise;
    };
    const auto check = [&](const Reply& reply, int payload_count) {
        const auto end = static_cast<std::size_t>(payload_count);
        EXPECT_EQ(reply[end] + 256 * reply[end + 1], std::accumulate(noise.begin(), noise.begin() + payload_count, 0));
        EXPECT_TRUE(noise[1] == noise.size() || noise[2] == 174);
        EXPECT_EQ(noise[1], payload_count + 2);
        ++offered;
    };
    bench.comm.set_decoders({check, nullptr, nullptr});
    while (total < 1'000'000) {
        bench.press_in_dialog(0);
        bench.ask();
    }
    EXPECT_GT(offered, 5);
}

} // namespace
} // namespace ecu::test
