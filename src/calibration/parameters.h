// THE table: every scalar, vector and table that the controller keeps and the console can read and change, one row
// each. Decoders, configuration page, map editors, setup file, transfer and virtual controller all walk these rows;
// nothing about an item is told anywhere else. Lookups by key, command and address, the order lists, and the checks.
#pragma once

#include "calibration/scalars.h"
#include "calibration/tables.h"
#include "calibration/vectors.h"

#include <algorithm>
#include <span>

namespace ecu::calibration {

// Scalars first, map_change_time behind them, then the vectors. References to rows are to these.
inline constexpr std::array<Parameter, 96> parameters = [] {
    std::array<Parameter, 96> all;
    std::copy(rows::vectors.begin(), rows::vectors.end(),
              std::copy(rows::scalars.begin(), rows::scalars.end(), all.begin()));
    return all;
}();
inline constexpr std::span<const Parameter> scalars{parameters.data(), rows::scalars.size()};
inline constexpr std::span<const Parameter> vectors{parameters.data() + rows::scalars.size(), rows::vectors.size()};

// -- Lookups. Null when there is none.

constexpr const Parameter* find_parameter(std::string_view key) {
    const auto* row =
        std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& p) { return p.key == key; });
    return row == parameters.end() ? nullptr : row;
}
constexpr const Parameter* written_by(std::uint8_t command) {
    const auto* row = std::find_if(parameters.begin(), parameters.end(),
                                   [&](const Parameter& p) { return p.write.command == command; });
    return row == parameters.end() ? nullptr : row;
}
// The first of the rows that the command reads; rows of one read are not all neighbours.
constexpr const Parameter* first_read_by(std::uint8_t command) {
    const auto* row = std::find_if(parameters.begin(), parameters.end(),
                                   [&](const Parameter& p) { return p.read.command == command; });
    return row == parameters.end() ? nullptr : row;
}
constexpr const Table* find_table(std::string_view key) {
    const auto* row = std::find_if(tables.begin(), tables.end(), [&](const Table& t) { return t.key == key; });
    return row == tables.end() ? nullptr : row;
}
constexpr const Table* table_at(int address) {
    const auto* row = std::find_if(tables.begin(), tables.end(), [&](const Table& t) { return t.holds(address); });
    return row == tables.end() ? nullptr : row;
}

constexpr std::size_t index_of(const Parameter& row) { return static_cast<std::size_t>(&row - parameters.data()); }
constexpr std::size_t index_of(const Table& row) { return static_cast<std::size_t>(&row - tables.data()); }

// Rows by key, checked when compiled.
consteval const Parameter& parameter(std::string_view key) {
    const Parameter* row = find_parameter(key);
    return row != nullptr ? *row : throw "no parameter of this key";
}
consteval const Table& table(std::string_view key) {
    const Table* row = find_table(key);
    return row != nullptr ? *row : throw "no table of this key";
}

// Elements of all parameters before this one, so that element i of a row has a place of its own in a flat array.
constexpr std::size_t first_element(const Parameter& row) {
    std::size_t first = 0;
    for (const Parameter* before = parameters.data(); before != &row; ++before) {
        first += before->count;
    }
    return first;
}
inline constexpr std::size_t element_count = first_element(parameters.back()) + parameters.back().count;

// -- Requests

// A request without a value. `zeros`: its arguments are bytes of 0, else the ASCII fill.
struct ReadRequest {
    std::uint8_t command = 0;
    std::uint8_t reply = 0; // payload count
    bool zeros = false;
};
constexpr ReadRequest read_request(const Parameter& row) { return {row.read.command, row.read.reply, row.read.zeros}; }
consteval ReadRequest read_request(int command) {
    const Parameter* row = first_read_by(static_cast<std::uint8_t>(command));
    return row != nullptr ? read_request(*row) : throw "no parameter is read by this command";
}
template <typename... Commands> consteval auto read_requests(Commands... commands) {
    return std::array{read_request(commands)...};
}

// -- Order lists

// The reads of a download before its first line is written; 127 goes out twice.
inline constexpr std::array download_batch = read_requests(
    'C', 'B', '@', '!', '%', '^', 'Z', 'S', 'T', 'U', 'V', 'W', 127, 132, 134, 136, 138, 140, 142, 144, 148, 155, 165,
    127, 157, 159, 161, 163, 167, 170, 172, 176, 183, 208, 212, 225, 217, 227, 229, 231, 34, 38, 30, 233, 235, 24, 26,
    237, 239, 241, 243, 28, 10, 6, 8, 14, 16, 22, 18, 20, 249, 253, 251, 245, 46, 40, 48);

// The reads of the configuration page, in two parts: CLTF and MATF, each one read of nine cells, go out between them.
// C comes first, so that the pressure spans stand before a pressure is shown.
inline constexpr std::array page_reads_before_tables =
    read_requests('C', 'B', 167, 161, 183, 233, 235, 24, 26, 237, 239, 28, 241, 243, '@', 40, 163, 148, 157, 229, 231,
                  201, 202, 12, 203, 155, 159, 165, 127, 176, 'U', 'V', 'W', 'S', 'T', 132, 134, 136, 138, 140, 142,
                  144, 46, 10, 6, 8, '!', '%', '^', 227, 208, 14, 16, 22, 18, 20, 212);
inline constexpr std::array<const Table*, 2> page_read_tables{&table("CLTF"), &table("MATF")};
inline constexpr std::array page_reads_after_tables = read_requests(48, 249, 253, 251, 245, 53, 30, 34, 38);

// The configuration page's Update walks these rows, every element of a vector from index 0 up.
struct PageItem {
    const Parameter* parameter = nullptr;
    const Table* table = nullptr;
};
consteval PageItem page_item(std::string_view key) {
    const PageItem item{find_parameter(key), find_table(key)};
    return item.parameter != nullptr || item.table != nullptr ? item : throw "no row of this key";
}
template <typename... Keys> consteval auto page_items(Keys... keys) { return std::array{page_item(keys)...}; }
inline constexpr std::array page_update_order = page_items(
    "ACC_SEN", "ACC_RATE", "ACC_MINP", "ACC_MAXP", "EGO_CUT", "EGO_RATE", "EGO_GAIN", "EGO_SECS", "EGO_A_LO",
    "EGO_A_HI", "RLI_SFT1", "RLI_SFT2", "RLI_HRD1", "RLI_HRD2", "STUT", "RLF_HRD1", "RLF_HRD2", "F_CUT_T1", "F_CUT_T2",
    "MAP_TYPE", "MIN_PRES", "HOT_P_PW", "CLD_P_PW", "HOT_#P", "CLD_#P", "TMP_THRS", "OPTIONS", "FS_RPM", "TRGS_REV",
    "INJP", "IGNP", "BAT_COMP", "IAC_CLOS", "IAC_OPEN", "IAC_TPSE", "IAC_TPSC", "IAC_MAXR", "IAC_ERRR", "IAC_DEAD",
    "IGN_TDWL", "TDC_TETH", "TDC_TRIM", "BASE_DEG", "IGN_MDEG", "PH_USED", "PHBT", "TACH_PH", "LIM_DEG", "TPS_BASE",
    "TPS_FS", "EGO_FLGS", "EGO_WBL0", "EGO_WBL1", "TPS_EGO", "INJK", "INJO", "INJL", "INJM", "TPS_ENR", "MAX_MAP",
    "INPT_CGF", "FSHF_DEG", "FSHF_RTM", "FSHF_CTM", "IDL_MAXR", "IDL_MAXA", "IDL_BY_I", "CRK_RPMH", "CRK_DEGN",
    "CRK_ETMR", "CRK_TDEG", "CRK_PEGN", "WRPM_SCL", "RPSL", "RPSH", "GGPO", "RPM_ACCL", "IDL_DRPM", "CLTF", "MATF",
    "MAP_OFST", "MAP_SCLR", "BAR_OFST", "BAR_SCLR", "map_change_time");

// The lines of a setup file behind its three headers: scalars, vectors, tables, with the injectors' vectors among the
// tables. Exactly one of the two is set.
using FileItem = PageItem;
inline constexpr std::array<FileItem, 124> file_order = [] {
    std::array<FileItem, 124> order{};
    std::size_t n = 0;
    const auto add_parameters = [&](bool injectors) {
        for (const Parameter& row : parameters) {
            if (row.file != FileForm::none && (row.file == FileForm::element) == injectors) {
                order.at(n++).parameter = &row;
            }
        }
    };
    add_parameters(false);
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (i == first_table_after_injectors) {
            add_parameters(true);
        }
        order.at(n++).table = &tables[i];
    }
    return order;
}();

// -- Codes of the switches

// What the low two bits of MAP_TYPE select: the pressure sensor's span and offset, kPa.
struct PressureSensor {
    std::string_view caption;
    float span;
    float base;
};
inline constexpr std::array<PressureSensor, 4> pressure_sensors{
    {{"1.0 Bar MAP", 115, 10}, {"2.5 Bar MAP", 255, 10}, {"7.0 Bar Ga MAP", 551, 79}, {"4.0 Bar MAP", 394, 10}}};
inline constexpr int special_cfg_first_bit = 6; // of MAP_TYPE

// The codes of EGO_FLGS.
inline constexpr std::array<std::string_view, 3> oxygen_sensors{"Narrowband (0-1v)", "Wideband (0-1v)", "CAN Wideband"};
inline constexpr int oxygen_sensor_with_voltages = 1; // the one whose two lambda values can be set

// The four 3-bit fields of INPT_CGF, lowest first, each shown by an option array of frm_tool. An option's code is not
// its index in the array.
struct InputField {
    std::string_view control;
    std::string_view title;
    std::uint8_t options;
    std::array<std::uint8_t, 5> codes;
    std::array<std::string_view, 5> captions;
};
inline constexpr std::array<InputField, 4> input_fields{
    {{"aux_in_used_as", "AUX Input", 2, {0, 7}, {"Normal Use", "Rev Limit Control"}},
     {"map_sel_used_as",
      "MAP Select Input",
      4,
      {7, 0, 1, 2},
      {"Map Selector", "Rev Limit Control", "Flatshift Trigger", "Gear 0/1 Select"}},
     {"trig_b_used_as",
      "Trigger B Input",
      5,
      {7, 0, 1, 2, 3},
      {"Unused", "Rev Limit Control", "Flatshift Trigger", "Speed HALL Input", "Gear 0/1 Select"}},
     {"idx_used_as", "IDX/CAM Input", 3, {7, 0, 1}, {"CAM HALL Input", "Unused", "Speed HALL Input"}}}};
inline constexpr int input_field_bits = 3;

inline constexpr int boost_invert_bit = 1;       // of BOFG
inline constexpr int boost_as_pwm_bit = 2;       // of BOFG
inline constexpr int dont_interpolate_bit = 128; // of GPOS
inline constexpr int output_mode_mask = 15;      // of GPOS

// -- Checks

namespace checks {

consteval bool rows_are_sound() {
    for (const Parameter& row : parameters) {
        if (find_parameter(row.key) != &row || find_table(row.key) != nullptr) {
            return false; // two rows of one key
        }
        if (written_by(row.write.command) != &row || first_read_by(row.write.command) != nullptr) {
            return false; // a write shares its code
        }
        if (row.read.command == 0 || row.write.command == 0 || row.offset_of(row.count) > row.read.reply ||
            row.read.offset < 3) {
            return false; // a field outside its reply
        }
        const ReadRequest first = read_request(*first_read_by(row.read.command));
        if (first.reply != row.read.reply || first.zeros != row.read.zeros) {
            return false; // two sizes of one read
        }
        const bool element = row.write.form == WriteForm::element_byte || row.write.form == WriteForm::element_word;
        const bool wide = row.write.form == WriteForm::word || row.write.form == WriteForm::element_word;
        if (element != row.is_vector() || wide != (bytes_of(row.read.width) == 2) ||
            row.write.reply != 3 + (element ? 1 : 0) + (wide ? 2 : 1)) {
            return false; // a write that doesn't fit the value
        }
        for (const Parameter& other : parameters) {
            if (&other != &row && other.read.command == row.read.command &&
                row.read.offset < other.offset_of(other.count) && other.read.offset < row.offset_of(row.count)) {
                return false; // fields of one reply overlap
            }
        }
    }
    for (const Table& row : tables) {
        if (find_table(row.key) != &row || table_at(row.base) != &row || table_at(row.base + row.cells() - 1) != &row) {
            return false; // a key or address twice
        }
        for (const Table& other : tables) {
            if (&other != &row && other.base < row.base + row.cells() && row.base < other.base + other.cells()) {
                return false;
            }
        }
    }
    return true;
}
consteval int count_lines(bool vector_elements, bool table_cells) {
    int lines = 0;
    for (const FileItem& item : file_order) {
        if (item.table != nullptr) {
            lines += table_cells ? item.table->cells() : 0;
        } else if (item.parameter->is_vector()) {
            lines += vector_elements ? item.parameter->count : 0;
        } else {
            lines += vector_elements && table_cells ? 1 : 0;
        }
    }
    return lines;
}

static_assert(rows_are_sound());
static_assert(rows::scalars.size() == 74 + 1 && rows::vectors.size() == 21 && tables.size() == 29);
static_assert(count_lines(true, false) == 120 + 32 && count_lines(false, true) == 1897);
static_assert(3 + count_lines(true, true) == 2126);
static_assert(download_batch.size() == 67);
static_assert(table("BMP3").base + table("BMP3").cells() == table_memory_end);

} // namespace checks

} // namespace ecu::calibration
