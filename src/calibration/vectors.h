// The 21 vectors of the calibration, in the order of the setup file. A whole vector is read in one message; an
// element is written alone, its index in front, and the reply echoes index and value. Reach the rows through
// `parameters` in parameters.h: a row is known by its place there.
#pragma once

#include "calibration/parameter_types.h"

namespace ecu::calibration {

namespace rows {

constexpr ControlRef tool_boxes(std::string_view name) { return {ControlKind::text_box, "frm_tool", name}; }
constexpr ControlRef output_boxes(std::string_view name) { return {ControlKind::text_box, "frm_sup", name}; }

inline constexpr std::string_view phase_base_refusal =
    "An illegal value for a phase base degree angle has been supplied, and will NOT be accepted";

// clang-format off
inline constexpr std::array<Parameter, 21> vectors{{
    // Bit b of element n: driver b + 1 fires in engine phase n + 1. A file sends the high byte along.
    {.key = "INJP", .count = 16, .read = block_read(127, 19, 3, Width::byte),
     .write = in_file(element_byte_write(128), WriteForm::element_word, 5),
     .control = {ControlKind::phase_boxes, "frm_tool", "inj_ph_"}, .file = FileForm::vector},
    {.key = "IGNP", .count = 16, .read = block_read(165, 19, 3, Width::byte),
     .write = in_file(element_byte_write(166), WriteForm::element_word, 5),
     .control = {ControlKind::phase_boxes, "frm_tool", "ign_ph_"}, .file = FileForm::vector},
    {.key = "PHBT", .count = 16, .read = block_read(155, 35, 3, Width::word), .write = element_word_write(156),
     .control = tool_boxes("ph_base_deg"), // degrees after number 1 top dead centre
     .shown = over(4), .mask = "##0.00",
     .entry = refused({.below = 0, .below_text = phase_base_refusal,
                       .from = 720, .from_text = phase_base_refusal, .of_entry = true}),
     .file = FileForm::vector},
    {.key = "GPOS", .count = 4, .read = zeros_read(170, 7, 3, Width::byte), .write = element_byte_write(171),
     .control = {ControlKind::output_mode, "frm_sup", "gpo_"}, .file = FileForm::vector},
    {.key = "GPOV", .count = 4, .read = zeros_read(172, 7, 3, Width::byte), .write = element_byte_write(173),
     .control = output_boxes("cool_rly_temp"),
     .shown = by_kind(ConversionKind::relay), .echo = by_kind(ConversionKind::signed_byte),
     .file = FileForm::vector},
    {.key = "RPMS", .count = 4, .read = zeros_read(225, 11, 3, Width::word), .write = element_word_write(226),
     .control = output_boxes("rpm_switch"), .mask = "####0", .entry = held(0, 32767),
     .file = FileForm::vector},
    {.key = "RPSL", .count = 8, .read = block_read(34, 35, 3, Width::word), .write = element_word_write(35),
     .control = tool_boxes("low_rps_ratio"), .shown = over(16), .mask = "###0.00", .entry = held(0, 65534),
     .file = FileForm::vector},
    {.key = "RPSH", .count = 8, .read = block_read(34, 35, 19, Width::word), .write = element_word_write(36),
     .control = tool_boxes("high_rps_ratio"), .shown = over(16), .mask = "###0.00", .entry = held(0, 65534),
     .file = FileForm::vector},
    {.key = "GGPO", .count = 8, .read = block_read(38, 11, 3, Width::byte), .write = element_byte_write(39),
     .control = tool_boxes("gear_gpo_num"), .mask = "0", .entry = held(0, 3), .file = FileForm::vector},
    {.key = "STUT", .count = 8, .read = block_read(28, 19, 3, Width::word), .write = element_word_write(29),
     .control = tool_boxes("stutter_table"), .mask = "####0", .file = FileForm::vector},
    {.key = "BO_P", .count = 4, .read = zeros_read(217, 43, 3, Width::word), .write = element_word_write(218),
     .control = output_boxes("boost_p"), .shown = over(4096), .mask = "#0.000",
     .file = FileForm::vector_doubled},
    {.key = "BO_I", .count = 4, .read = zeros_read(217, 43, 11, Width::word), .write = element_word_write(219),
     .control = output_boxes("boost_i"), .shown = over(4096), .mask = "#0.000", .file = FileForm::vector},
    {.key = "BO_D", .count = 4, .read = zeros_read(217, 43, 19, Width::word), .write = element_word_write(220),
     .control = output_boxes("boost_d"), .shown = over(4096), .mask = "#0.000", .file = FileForm::vector},
    {.key = "BOEN", .count = 4, .read = zeros_read(217, 43, 27, Width::byte), .write = element_byte_write(221),
     .control = output_boxes("boost_enable_press"), .shown = pressure_over(255), .mask = "##0.0",
     .file = FileForm::vector},
    {.key = "BOIS", .count = 4, .read = zeros_read(217, 43, 31, Width::byte), .write = element_byte_write(222),
     .control = output_boxes("boost_integ_preset"), .shown = times(100, 255), .mask = "##0",
     .file = FileForm::vector},
    {.key = "BORT", .count = 4, .read = zeros_read(217, 43, 35, Width::byte), .write = element_byte_write(223),
     .control = output_boxes("boost_loop_rate"), .mask = "##0", .file = FileForm::vector},
    {.key = "BOFG", .count = 4, .read = zeros_read(217, 43, 39, Width::byte), .write = element_byte_write(224),
     .control = {ControlKind::output_flags, "frm_sup", "boost_ctrl_invert"}, .file = FileForm::vector},

    // One value a channel of the injectors; a file prints them among the tables, in the tables' form.
    {.key = "INJK", .count = 8, .read = block_read(201, 19, 3, Width::word), .write = element_word_write(204),
     .control = tool_boxes("inj_gain"), .shown = over(4096), .mask = "#0.000",
     .entry = limited({0, "0"}, {4, "4"}), .file = FileForm::element},
    {.key = "INJO", .count = 8, .read = block_read(202, 19, 3, Width::signed_word), .write = element_word_write(205),
     .control = tool_boxes("inj_offset"), .shown = ticks_as_ms, .mask = "##0.000",
     .entry = {.lowest = {-40, "-40"}, .highest = {40, "40"}, .raw_low = -32768, .raw_high = 32767},
     .file = FileForm::element},
    {.key = "INJL", .count = 8, .read = block_read(12, 19, 3, Width::word), .write = element_word_write(13),
     .control = tool_boxes("inj_min"), .shown = ticks_as_ms, .mask = "##0.000",
     .entry = {.highest = {50, "50"}}, .file = FileForm::element},
    {.key = "INJM", .count = 8, .read = block_read(203, 19, 3, Width::word), .write = element_word_write(206),
     .control = tool_boxes("inj_max"), .shown = ticks_as_ms, .mask = "##0.000",
     .entry = {.highest = {50, "50"}}, .file = FileForm::element},
}};
// clang-format on

} // namespace rows

} // namespace ecu::calibration
