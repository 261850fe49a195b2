// The 29 tables of the controller's table memory, in the order of the setup file, and the block reads that bring
// several cells at once. Address ranges are disjoint; every cell is one unsigned byte.
#pragma once

#include "calibration/parameter_types.h"

namespace ecu::calibration {

namespace rows {

inline constexpr TableShape grid_9 = TableShape::grid_9;
inline constexpr TableShape grid_16 = TableShape::grid_16;
inline constexpr Conversion degrees = quarter_degrees_from_minus_16;
inline constexpr Conversion duty = times(100, 256);
inline constexpr Entry cell_byte = held(0, 255);
inline constexpr Conversion boost = by_kind(ConversionKind::boost);

constexpr Table nine(std::string_view key, int base, std::string_view control, Conversion shown,
                     std::string_view mask) {
    return {.key = key,
            .base = static_cast<std::uint16_t>(base),
            .form = "frm_2d",
            .control = control,
            .shown = shown,
            .mask = mask};
}
constexpr Table boost_map(std::string_view key, int base, std::string_view control) {
    return {.key = key,
            .base = static_cast<std::uint16_t>(base),
            .shape = grid_9,
            .form = "frm_sup",
            .control = control,
            .shown = boost,
            .mask = "##0.0"};
}
// The fourth output's cells are encoded by 255, its siblings' by 256.
constexpr Table output_map(std::string_view key, int base, std::string_view control, double entry_full_scale) {
    return {.key = key,
            .base = static_cast<std::uint16_t>(base),
            .shape = grid_9,
            .form = "frm_sup",
            .control = control,
            .shown = duty,
            .mask = "##0.0",
            .entry_scale = times(100, entry_full_scale),
            .file_masks = true};
}

} // namespace rows

// clang-format off
inline constexpr std::array<Table, 29> tables{{
    {.key = "MAPM", .base = 0x0100, .shape = rows::grid_16, .form = "frm_3d", .control = "inj_map",
     .shown = over(128), .mask = "#.000",
     .entry = refused({.below = 0,
                       .below_text = "A MAP Gain cell has been found that is negative, it will not be updated",
                       .from = 256,
                       .from_text = "A MAP Gain cell has been found that is too high, it will not be updated"})},
    {.key = "IGN3", .base = 0x0600, .shape = rows::grid_16, .form = "frm_3d", .control = "ign_map",
     .shown = rows::degrees, .mask = "#0.00"},
    {.key = "TPFM", .base = 0x0700, .shape = rows::grid_16, .form = "frm_3d", .control = "TPS_map",
     .shown = over(128), .mask = "#.000"},
    {.key = "TPFP", .base = 0x0800, .shape = rows::grid_16, .form = "frm_3d", .control = "TPS_mix",
     .shown = times(100, 64), .mask = "##0.0", .entry = held(0, 64)},
    {.key = "EGOL", .base = 0x0000, .shape = rows::grid_9, .form = "frm_2d", .control = "lambda_sp_table",
     .shown = by_kind(ConversionKind::lambda, 128), .mask = "0.000"}, // above 1.0 "#0.00"
    rows::nine("CLTM", 0x0070, "clt_map", over(64), "##.#00"),
    rows::nine("MATM", 0x0080, "mat_data", over(64), "##.#00"),
    rows::nine("AUXM", 0x0090, "Pressure_Gain", over(64), "##.#00"),
    rows::nine("IGNM", 0x0200, "ign_map", rows::degrees, "#0.000"),
    rows::nine("IGNR", 0x0210, "ign_rpm", rows::degrees, "#0.000"),
    rows::nine("IGNT", 0x0240, "ign_mat", rows::degrees, "#0.000"),
    rows::nine("BARG", 0x0220, "baro_gain", over(128), "##.#00"),
    rows::nine("IDLE", 0x0230, "idle_rpm_map", times(8), "###0"),
    {.key = "DWEL", .base = 0x0480, .form = "frm_2d", .control = "dwell_map", .shown = over(64), .mask = "##.#00",
     .entry = held(0, 160), .file_masks = true}, // no multiplier above 2.5
    rows::nine("BARI", 0x04A0, "ign_bar", rows::degrees, "#0.000"),
    rows::nine("IGNC", 0x04B0, "ign_clt", rows::degrees, "#0.000"),
    rows::nine("IGNA", 0x04C0, "ign_aux", rows::degrees, "#0.000"),
    rows::nine("ACCC", 0x04D0, "accel_map", over(64), "##.#00"),
    rows::nine("BATD", 0x0570, "dwell_vbat", over(64), "##.#00"),
    {.key = "CLTF",
     .screen = {.tab = Tab::sensors, .group = "Temperature Sensors", .label = "Coolant", .unit = "deg C",
                .about = "Temperature at which the coolant sensor has this resistance."},
     .base = 0x05C0, .form = "frm_tool", .control = "CLT_CAL_MAP", .shown = from(64, times(1)),
     .mask = "###0"},
    {.key = "MATF",
     .screen = {.tab = Tab::sensors, .group = "Temperature Sensors", .label = "Air", .unit = "deg C",
                .about = "Temperature at which the air sensor has this resistance."},
     .base = 0x05D0, .form = "frm_tool", .control = "MAT_CAL_MAP", .shown = from(64, times(1)),
     .mask = "###0"},
    rows::output_map("GPO1", 0x0290, "GPO_tbl_0", 256),
    rows::output_map("GPO2", 0x0300, "GPO_tbl_1", 256),
    rows::output_map("GPO3", 0x0360, "GPO_tbl_2", 256),
    rows::output_map("GPO4", 0x0400, "GPO_tbl_3", 255),
    rows::boost_map("BMP0", 0x0500, "boost_gpo_0"),
    rows::boost_map("BMP1", 0x0960, "boost_gpo_1"),
    rows::boost_map("BMP2", 0x0A00, "boost_gpo_2"),
    rows::boost_map("BMP3", 0x0A60, "boost_gpo_3"),
}};
// clang-format on

inline constexpr std::size_t first_table_after_injectors = 21; // a file has INJK, INJO, INJL, INJM before it
inline constexpr int table_memory_end = 0x0A60 + 81;           // one past the last table's last cell

// A read of consecutive cells: command, address low, high, 0. The reply has the address at 3, cells from 5.
struct BlockRead {
    std::uint8_t command;
    std::uint8_t cells;
    constexpr std::uint8_t reply() const { return static_cast<std::uint8_t>(cells + 5); }
};
inline constexpr BlockRead read_27{'k', 27};
inline constexpr BlockRead read_32{'l', 32};
inline constexpr BlockRead read_16{'q', 16};
inline constexpr BlockRead read_9{'r', 9};
inline constexpr std::array block_reads{read_27, read_32, read_16, read_9};
// One cell: command, address low, high, then 0 or the value. The reply has the address at 3, the value at 5.
inline constexpr std::uint8_t read_cell = 'E';
inline constexpr std::uint8_t write_cell = 'e';
inline constexpr std::uint8_t cell_reply = 6;

} // namespace ecu::calibration
