// What the parameter and table replies do beyond the common way: the oddities, the side effects, what has no effect.
#include "messages/parameter_forms.h"

#include <gmock/gmock.h>

namespace ecu::test {
namespace {

using calibration::parameter;
using calibration::table;

class ParameterReplies : public testing::Test, protected ParameterBench {};

TEST_F(ParameterReplies, PressureIsShownByTheSensorOfItsOwnBlock) {
    EXPECT_TRUE(receive({'C', 0, 0, 0, 0, 0, 0, 0xFF, 0x03, 0, 0, 0, 0, 0, 0x40, 0x1F, 0, 36, 0x40 | 2}));
    EXPECT_EQ(tool.box("MIN_PRES").text(), "630.0");
    EXPECT_EQ(scales.map_span, 551);
    EXPECT_EQ(scales.map_base, 79);
    EXPECT_EQ(scales.full_scale_rpm, 8000);
    EXPECT_TRUE(receive({130, 0x83}));
    EXPECT_EQ(scales.map_span, 394);
    EXPECT_TRUE(tool.map_type[3].checked());
    EXPECT_FALSE(tool.special_cfg[0].checked());
    EXPECT_TRUE(tool.special_cfg[1].checked());
}

TEST_F(ParameterReplies, FuelTrimsAndTimingOffsetConfirmBothForms) {
    for (platform::TextBox* box : {&mapping.ecu_pgm[0], &dashboard.ecu_pgm[0], &mapping.ecu_pgm[1],
                                   &dashboard.ecu_pgm[1], &tool.box("BASE_DEG"), &dashboard.base_offset_deg}) {
        box->set_back_colour(platform::pending);
    }
    receive({'m', 0xE7, 0x18});
    EXPECT_EQ(mapping.ecu_pgm[0].text(), "10.200");
    EXPECT_EQ(dashboard.ecu_pgm[0].text(), "10.200");
    EXPECT_FALSE(dashboard.ecu_pgm[0].is_pending());
    EXPECT_TRUE(dashboard.ecu_pgm[1].is_pending()) << "only what the reply names";
    receive({164, 255});
    EXPECT_EQ(tool.box("BASE_DEG").text(), "47.75");
    EXPECT_FALSE(dashboard.base_offset_deg.is_pending());
}

TEST_F(ParameterReplies, SomeRepliesShowWhatNoCommonScaleDoes) {
    const platform::TextBox& base = tool.box("TPS_BASE");
    const platform::TextBox& full = tool.box("TPS_FS");
    const platform::TextBox& relay = outputs.cool_rly_temp[1];
    const std::vector<std::tuple<Bytes, const platform::Control*, std::string>> cases{
        {{'W', 200}, &tool.box("TMP_THRS"), "-14"}, // crooked
        {{'W', 121}, &tool.box("TMP_THRS"), "120"},
        {{'W', 127}, &tool.box("TMP_THRS"), "120"},
        {{'W', 255}, &tool.box("TMP_THRS"), "0"},
        {{213, 128}, &base, "128.0"}, // the throttle's replies differ
        {{215, 128}, &base, "50.2"},
        {{214, 200}, &full, "78.4"},
        {{216, 200}, &full, "200.0"},
        {{212, 128, 201}, &base, "50.2"},
        {{173, 1, 200}, &relay, "-56"}, // signed in the echo alone
        {{172, 0, 200, 0, 0}, &relay, "200"},
        {{'R', 0xD8, 0x27}, &all.frm_about.FW_Rev, "V1.02.00"},
        {{'R', 7, 0}, &all.frm_about.FW_Rev, "V0.00.07"},
        {{'-', 0x34, 0x12, 3}, &all.frm_about.serial_num, "201268"}}; // 3 * 65536 + 4660
    for (const auto& [reply, control, shown] : cases) {
        EXPECT_TRUE(receive(reply));
        EXPECT_EQ(control->text(), shown) << testing::PrintToString(reply);
    }
    EXPECT_EQ(image.raw(parameter("TMP_THRS")), 255);
    EXPECT_EQ(image.raw(parameter("TPS_FS")), 201);
}

TEST_F(ParameterReplies, AnIndexThatTheVectorHasNotIsTakenWithoutEffect) {
    for (const Bytes& echo : {Bytes{128, 16, 255}, Bytes{166, 200, 255}, Bytes{156, 16, 4, 0}, Bytes{173, 4, 9},
                              Bytes{205, 8, 1, 0}, Bytes{224, 255, 2}}) {
        EXPECT_TRUE(receive(echo));
    }
    for (const calibration::Parameter& row : calibration::vectors) {
        for (int i = 0; i < row.count; ++i) {
            EXPECT_EQ(image.raw(row, i), 0) << row.key;
        }
    }
    EXPECT_FALSE(scales.boost_as_pwm);
}

TEST_F(ParameterReplies, ASwitchSetByAReplyIsNotLeftMarked) {
    tool.EGO_type[1].clicked = [&] { tool.EGO_type[0].set_fore_colour(platform::pending); };
    tool.inj_ph[3][6].clicked = [&] { tool.inj_ph[3][0].set_tag("X"); };
    outputs.gpo_mode[2][9].clicked = [&] { outputs.gpo_mode[2][0].set_fore_colour(platform::pending); };
    tool.box("EGO_WBL0").set_enabled(false);
    receive({209, 1});
    receive({128, 3, 0x40});
    receive({171, 2, 128 + 9});
    EXPECT_EQ(tool.EGO_type[0].fore_colour(), platform::black);
    EXPECT_TRUE(tool.box("EGO_WBL0").enabled());
    EXPECT_EQ(tool.inj_ph[3][0].tag(), "");
    EXPECT_TRUE(tool.inj_ph[3][6].checked());
    EXPECT_EQ(outputs.gpo_mode[2][0].fore_colour(), platform::black);
    EXPECT_TRUE(outputs.dont_interpolate[2].checked());
    receive({209, 2});
    EXPECT_FALSE(tool.box("EGO_WBL1").enabled());
}

TEST_F(ParameterReplies, AnInputCodeOfNoOptionChoosesNothing) {
    receive({245, 0xFF, 0x0F});
    receive({246, 0b00'101'101, 0b0000'1010}); // codes 5, 5, 0, 5
    EXPECT_TRUE(tool.aux_in_used_as[1].checked());
    EXPECT_TRUE(tool.map_sel_used_as[0].checked());
    EXPECT_TRUE(tool.trig_b_used_as[1].checked());
    EXPECT_TRUE(tool.idx_used_as[0].checked());
    EXPECT_EQ(image.raw(parameter("INPT_CGF")), 0b1010'00'101'101);
}

TEST_F(ParameterReplies, LambdaCellsFollowTheUnitAndBoostCellsTheFirstFlag) {
    receive({'e', 40, 0, 128});
    EXPECT_EQ(corrections.lambda_sp_table.cell_text(5, 5), "1.000");
    receive({'e', 40, 0, 0});
    EXPECT_EQ(corrections.lambda_sp_table.cell_text(5, 5), "0.000");
    scales.lambda_scale = 14.7F;
    receive({'e', 40, 0, 128});
    EXPECT_EQ(corrections.lambda_sp_table.cell_text(5, 5), "14.70");
    EXPECT_EQ(calibration::raw_from_entry(table("EGOL"), "14.7", scales).raw, 128);

    receive({224, 0, 2});
    receive({'E', 0x60, 0x0A, 64});
    EXPECT_EQ(outputs.boost_gpo[3].cell_text(9, 1), "25.0");
    EXPECT_EQ(calibration::raw_from_entry(table("BMP3"), "25", scales).raw, 64);
    receive({224, 1, 0});
    receive({'E', 0x60, 0x0A, 255});
    EXPECT_EQ(outputs.boost_gpo[3].cell_text(9, 1), "99.6") << "the first channel's flag speaks for all";
    receive({224, 0, 0});
    receive({'E', 0x60, 0x0A, 255});
    EXPECT_EQ(outputs.boost_gpo[3].cell_text(9, 1), "125.0");
}

TEST_F(ParameterReplies, BlocksFillAColumnUpwardsAndRepaintTheGridOnce) {
    forms.set_host(&desktop);
    Bytes block{'l', 0x10, 0x06};
    for (int i = 0; i < 32; ++i) {
        block.push_back(static_cast<std::uint8_t>(64 + i));
    }
    mapping.ign_map.cell_changed = [&](int row, int column) {
        mapping.ign_map.set_cell_back(row, column, platform::pending);
    };
    desktop.clear_changes();
    EXPECT_TRUE(receive(block));
    EXPECT_EQ(mapping.ign_map.cell_text(16, 2), "0.00");
    EXPECT_EQ(mapping.ign_map.cell_text(1, 2), "3.75");
    EXPECT_EQ(mapping.ign_map.cell_text(16, 3), "4.00");
    EXPECT_EQ(mapping.ign_map.cell_back(1, 3), platform::bright_white);
    EXPECT_EQ(desktop.changes("frm_3d", "ign_map"), 1);
    EXPECT_TRUE(receive({'r', 0x30, 0x02, 1, 2, 3, 4, 5, 6, 7, 8, 100}));
    EXPECT_EQ(corrections.idle_rpm_map[8].text(), "800");
    EXPECT_EQ(image.cell(0x0238), 100);
}

TEST_F(ParameterReplies, CellsOutsideAllTablesAreIgnored) {
    // Sixteen cells from the end of the coolant's table up into nothing, and addresses beyond the memory of the image.
    EXPECT_TRUE(receive({'q', 0x78, 0x00, 64, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
    EXPECT_EQ(corrections.clt_map[8].text(), "1.000");
    EXPECT_EQ(image.cell(0x79), 0);
    EXPECT_TRUE(receive({'E', 0xFF, 0xFF, 7}));
    EXPECT_TRUE(receive({'e', 0xB1, 0x0A, 7}));
}

TEST_F(ParameterReplies, IncompatibleRevisionsAreReportedEachTime) {
    const std::string both = "The ECU reports that there is an incompatibility with some internal features.  ";
    const std::string old_console = both + "This program is older than what is required for your ECU.";
    const std::string old_controller = both + "Your ECU is not up to date with features supported with this program.";
    desktop.expect_box(old_console);
    desktop.expect_box(old_controller);
    EXPECT_TRUE(receive({180, 0x23, 0x4E})); // 20003
    EXPECT_TRUE(receive({180, 0x24, 0x4E}));
    EXPECT_TRUE(receive({180, 0x22, 0x4E}));
    EXPECT_EQ(desktop.box_texts(), (std::vector<std::string>{old_console, old_controller}));
}

TEST_F(ParameterReplies, RestartIsReportedAndUnlocksTheFlashUtility) {
    all.frm_ecu.menu_tool_flash_utility.set_enabled(false);
    desktop.expect_box("The controller has been succesfully reset.");
    EXPECT_TRUE(receive({174, 0}));
    EXPECT_TRUE(receive({174, 165}));
    EXPECT_FALSE(all.frm_ecu.menu_tool_flash_utility.enabled());
    desktop.expect_box("The controller is now ready to re-flash.");
    EXPECT_TRUE(receive({174, 90}));
    EXPECT_TRUE(all.frm_ecu.menu_tool_flash_utility.enabled());
    EXPECT_EQ(desktop.boxes().size(), 2U);
    EXPECT_EQ(state.last_reply_time, ports.now());
}

TEST_F(ParameterReplies, WheelBlocksAreHighByteFirstAndStayInTheirArray) {
    Bytes block{248, 7};
    for (int i = 0; i < 15; ++i) {
        block.insert(block.end(), {0x01, static_cast<std::uint8_t>(i)});
    }
    EXPECT_TRUE(receive(block));
    EXPECT_EQ(decoders.wheel_samples().periods[105], 256);
    EXPECT_EQ(decoders.wheel_samples().periods[119], 270);
    block[1] = 8;
    EXPECT_TRUE(receive(block));
    EXPECT_EQ(decoders.wheel_samples().periods[120], 0);
}

TEST_F(ParameterReplies, BareAcknowledgementsAreTakenByTheirSizeOnly) {
    for (const Bytes& reply :
         {Bytes{'D'}, Bytes{'d'}, Bytes{'+', 1}, Bytes{'F', 1, 2, 3, 4}, Bytes{'X', 1, 2, 3}, Bytes{1, 1, 0},
          Bytes{2, 1, 0}, Bytes{3, 1, 0, 0}, Bytes{4, 1}, Bytes{169, 1}, Bytes{247, 1}}) {
        EXPECT_TRUE(receive(reply)) << int{reply[0]};
        EXPECT_FALSE(receive(reply, -1)) << int{reply[0]};
    }
    EXPECT_FALSE(receive({200, 1, 2}));
    EXPECT_FALSE(receive({'~' - 1, 0})) << "125 is a word";
    EXPECT_FALSE(receive({'A', 0}));
}

} // namespace
} // namespace ecu::test
