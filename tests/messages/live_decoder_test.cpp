#include "console/forms.h"
#include "messages/live_decoder.h"
#include "support/fixture.h"
#include "support/sim_desktop.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace ecu::messages {
namespace {

using link::View;

std::vector<std::uint8_t> block_of(const std::string& name) {
    std::vector<std::uint8_t> block;
    for (const auto& row : test::fixture("live_blocks.csv")) {
        if (row[0] == name) {
            std::ranges::copy(test::bytes_of(row[1]), std::back_inserter(block));
        }
    }
    return block;
}

class LiveDecoderTest : public testing::Test {
protected:
    bool decode(const std::vector<std::uint8_t>& code_and_data, int payload_count = 0) {
        link::Reply reply{2, static_cast<std::uint8_t>(code_and_data.size() + 4)};
        std::ranges::copy(code_and_data, reply.begin() + 2);
        state.reply_accepted = false;
        const int size = static_cast<int>(code_and_data.size()) + 2;
        return decoder.decode(reply, payload_count == 0 ? size : payload_count) && state.reply_accepted;
    }
    // The live block with the bytes from `offset` on replaced.
    bool decode_live(std::size_t offset, std::vector<std::uint8_t> bytes) {
        std::vector<std::uint8_t> block = live_block;
        std::ranges::copy(bytes, block.begin() + static_cast<std::ptrdiff_t>(offset) - 2);
        return decode(block);
    }
    std::string mon(std::string_view name, int index = -1) { return forms.frm_mon.form.at(name, index).text(); }

    const std::vector<std::uint8_t> live_block = block_of("live");
    const std::vector<std::uint8_t> second_block = block_of("second");
    const std::vector<std::uint8_t> channel_block = block_of("channels");
    test::SimDesktop desktop;
    console::Forms forms{desktop};
    link::SharedState state;
    EcuLiveData data;
    LiveDecoder decoder{state, data, forms.registry};
};

TEST_F(LiveDecoderTest, EveryFieldOfTheLiveBlock) {
    state.current_view = View::monitor;
    data.rpm_filter_gain = 1;
    ASSERT_TRUE(decode(live_block));
    // clang-format off
    const std::vector<std::pair<float, double>> values{
        {data.ego_lambda_setpoint, 0.859375}, {data.lambda, 1.0546875}, {data.oxygen_percent, 0}, {data.tps_pcnt, 50},
        {data.injector_pw, 0.00808}, {data.coolant_temp, 90}, {data.air_temp, -10}, {data.battery_volts, 14.117647},
        {data.ego_correction, 0.984375}, {data.map_enrichment, 1.125}, {data.accel_enrichment, 52.4288},
        {data.clt_enrichment, 1.125}, {data.baro_kpa, 101.730205}, {data.ignition_timing, -5},
        {data.manifold_kpa, 100.5}, {data.engine_rpm, 3200}, {data.throttle_raw_percent, 14.95601},
        {data.throttle_percent, 14.95601}, {data.map_position, 0.34375}, {data.rpm_position, 0.5},
        {data.tps_position, 0.234375}, {data.egt, 750.25}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_FLOAT_EQ(values[i].first, static_cast<float>(values[i].second)) << "value " << i;
    }
    EXPECT_THAT((std::array<int, 19>{
        data.can_rx_frames, data.status_flags, data.ego_correction_raw, data.map_enrichment_raw, data.engine_rpm_raw,
        data.input_flags, data.map_cell, data.map_rem, data.rpm_cell, data.rpm_rem, data.tps_cell, data.tps_rem,
        data.dyno_state, data.dyno_samples, data.wb_feedback, data.wb_pump_current, data.wb_pump_dac,
        data.wb_heater_pw, data.wb_heater_temp}),
        testing::ElementsAre(4660, 1, 63, 144, 3200, 0x27, 5, 64, 8, 0, 3, 96, 2, 3000, 257, 514, 771, 1028, 1285));
    // clang-format on
    EXPECT_EQ(mon("can_rx_frames"), "4660");
    EXPECT_EQ(mon("EGT"), "750.3");
    EXPECT_EQ(mon("aux_stat") + mon("map_sel_stat") + mon("trig_b_stat"), "HIGHHIGHHIGH");
    EXPECT_EQ(mon("rev_limit_stat") + mon("flat_shift_stat"), "RPM1flat-");
    ASSERT_TRUE(decode_live(25, {0x58}));
    EXPECT_EQ(mon("aux_stat") + mon("map_sel_stat") + mon("trig_b_stat"), "LOWLOWLOW");
    EXPECT_EQ(mon("rev_limit_stat") + mon("flat_shift_stat"), "RPM2FLAT+");
    EXPECT_EQ(forms.frm_diagnostics.dyno_stat.text(), "") << "only the diagnostics view follows the dyno";
}

TEST_F(LiveDecoderTest, SignsLimitsAndAnOxygenSensor) {
    ASSERT_TRUE(decode_live(6, {0x00, 0x01}));
    EXPECT_FLOAT_EQ(data.oxygen_percent, 13.5F);
    EXPECT_EQ(data.lambda, 2.0F);
    EXPECT_TRUE(data.sensor_fault());
    ASSERT_TRUE(decode_live(10, {65}));
    EXPECT_EQ(data.tps_pcnt, 100.0F);
    ASSERT_TRUE(decode_live(13, {0x80, 0x7F}));
    EXPECT_EQ(data.coolant_temp, -128);
    EXPECT_EQ(data.air_temp, 127);
    ASSERT_TRUE(decode_live(23, {0xFF, 0x7F}));
    EXPECT_FLOAT_EQ(data.ignition_timing, 8191.75F);
    ASSERT_TRUE(decode_live(39, {0xF6, 0xFF}));
    EXPECT_NEAR(data.throttle_raw_percent, -0.97752, 1e-5);
    EXPECT_EQ(data.throttle_percent, 0);
    ASSERT_TRUE(decode_live(39, {0x00, 0x04}));
    EXPECT_GT(data.throttle_raw_percent, 100);
    EXPECT_EQ(data.throttle_percent, 100);
}

TEST_F(LiveDecoderTest, RpmApproachesTheRawFigureByTheFilterGain) {
    data.rpm_filter_gain = 0.8F;
    ASSERT_TRUE(decode(live_block));
    EXPECT_FLOAT_EQ(data.engine_rpm, 2560);
    ASSERT_TRUE(decode(live_block));
    EXPECT_FLOAT_EQ(data.engine_rpm, 3072);
    EXPECT_EQ(data.engine_rpm_raw, 3200);
}

TEST_F(LiveDecoderTest, EveryFieldOfTheSecondBlockAndItsRelatives) {
    ASSERT_TRUE(decode(second_block));
    using testing::FloatEq;
    EXPECT_THAT(data.gpo_duty, testing::ElementsAre(0, FloatEq(20), FloatEq(50.196078F), FloatEq(100)));
    EXPECT_FLOAT_EQ(data.aux_volts, 1.65F);
    EXPECT_FLOAT_EQ(data.aux_egt, 200);
    const auto idle = [this] {
        return std::vector{data.iac_state, data.iac_error, data.iac_position, data.iac_rpm_setpoint};
    };
    EXPECT_THAT(idle(), testing::ElementsAre(4, 3, 300, 850));
    EXPECT_FLOAT_EQ(data.speed_MPH, 56.5F);
    EXPECT_FLOAT_EQ(data.rpm_mph_ratio, 100.0625F);
    const std::vector<std::pair<const char*, const char*>> texts{
        {"map_num", "2"},       {"num_trigs", "12345"},     {"num_cams", "7"}, {"wheel_idx_num", "1"},
        {"cam_idx_num", "4"},   {"cpu_secs", "10000"},      {"err_flgs", "9"}, {"gear_number", "5"},
        {"speed_MPH", "56.50"}, {"rpm_mph_ratio", "100.06"}};
    for (const auto& [label, text] : texts) {
        EXPECT_EQ(mon(label), text) << label;
    }
    std::vector<std::uint8_t> relative(second_block.begin(), second_block.begin() + 16);
    relative[0] = 178;
    relative[1] = 3;
    ASSERT_TRUE(decode(relative));
    EXPECT_EQ(mon("map_num"), "3");
    ASSERT_TRUE(decode({152, 6, 0, 0x01, 0x02, 0x20, 0x03}));
    EXPECT_THAT(idle(), testing::ElementsAre(6, 0, 513, 800));
}

TEST_F(LiveDecoderTest, ChannelsWithDutiesReadFromTheBytesOfTheLastFourWordsToo) {
    ASSERT_TRUE(decode(channel_block));
    EXPECT_EQ(mon("inj_pw", 0), "1.600");
    EXPECT_EQ(mon("ign_dwell", 0), "1.000");
    EXPECT_EQ(mon("inj_pw", 1) + " " + mon("ign_dwell", 1), "3.200 2.000");
    EXPECT_EQ(mon("ign_dwell", 2), "655.350");
    EXPECT_EQ(mon("inj_pw", 4), "78.949") << "191 + 256 * 192";
    EXPECT_EQ(mon("ign_dwell", 7), "12.800") << "256 * 5";
    EXPECT_EQ(data.inj_duty, (std::array<std::int16_t, 16>{75, 75, 85, 85, 100, 0, 0, 5}));
    EXPECT_EQ(data.ign_duty, (std::array<std::int16_t, 16>{40, 40, 50, 51, 0, 0, 0, 2}));
    EXPECT_EQ(mon("inj_duty", 4) + mon("ign_duty", 3), "10051");
    const auto colours = [](const auto& labels) {
        return std::vector{labels[1].fore_colour(), labels[2].fore_colour(), labels[3].fore_colour(),
                           labels[4].fore_colour()};
    };
    const platform::Colour blue{0, 0, 255};
    const platform::Colour orange{255, 128, 0};
    EXPECT_THAT(colours(forms.frm_mon.inj_duty), testing::ElementsAre(blue, orange, orange, platform::light_red));
    EXPECT_THAT(colours(forms.frm_mon.ign_duty), testing::ElementsAre(blue, orange, platform::light_red, blue));
}

TEST_F(LiveDecoderTest, InThePlotterTheRecordMovesAndTheLabelsStand) {
    state.current_view = View::plotter;
    ASSERT_TRUE(decode(live_block));
    ASSERT_TRUE(decode(second_block));
    ASSERT_TRUE(decode(channel_block));
    for (const platform::Control* control : forms.frm_mon.form.controls()) {
        const bool is_reading = control->kind() == platform::Kind::label && control->name() != "Label1" &&
                                control->name() != "show_demo_mode";
        EXPECT_TRUE(!is_reading || control->text().empty()) << control->full_name();
    }
    EXPECT_EQ(data.engine_rpm_raw, 3200);
    EXPECT_EQ(data.gear_number, 5);
    EXPECT_EQ(data.inj_duty[4], 100);
    state.current_view = View::dashboard;
    ASSERT_TRUE(decode(live_block));
    EXPECT_EQ(mon("EGT"), "750.3");
    EXPECT_EQ(mon("can_rx_frames"), "") << "of the monitor alone";
}

TEST_F(LiveDecoderTest, TheDiagnosticsViewFollowsTheDynoState) {
    std::string calls;
    decoder.on_dyno_row = [&] { calls += "row "; };
    decoder.on_dyno_finish = [&] { calls += "finish "; };
    state.current_view = View::diagnostics;
    std::string shown;
    for (const std::uint8_t dyno_state : std::vector<std::uint8_t>{0, 1, 2, 3, 200}) {
        ASSERT_TRUE(decode_live(47, {dyno_state}));
        shown += forms.frm_diagnostics.dyno_stat.text() + " " + forms.frm_diagnostics.dyno_samples.text() + " ";
    }
    EXPECT_EQ(shown, "Disarmed --- Armed --- Running 3000 Finished --- Finished --- ");
    EXPECT_EQ(calls, "row finish finish ");
}

TEST_F(LiveDecoderTest, TheCapabilityWordIsKeptAndWrongSizesTouchNothing) {
    EXPECT_FALSE(decode({179, 0x34, 0x12}, 6));
    EXPECT_FALSE(state.capabilities_loaded);
    EXPECT_FALSE(decode(live_block, 62));
    EXPECT_FALSE(decode({'B', 0, 0}));
    EXPECT_EQ(data.can_rx_frames, 0);
    ASSERT_TRUE(decode({179, 0x34, 0x12}));
    EXPECT_TRUE(state.capabilities_loaded);
    EXPECT_EQ(decoder.capabilities().word(), 0x1234);
}

} // namespace
} // namespace ecu::messages
