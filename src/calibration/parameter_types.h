// What a row of the parameter table is made of: how a value is read and written, which control shows it, how a raw
// wire number becomes an engineering value and back, and what an entry must keep to. Data only; the functions that
// act on it stand in encoding.h. Raw numbers are integers, shown values are double.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace ecu::calibration {

enum class Width : std::uint8_t { byte, word, signed_word };

constexpr int bytes_of(Width width) { return width == Width::byte ? 1 : 2; }

// The message that brings the value. `reply` is the payload count, the reply's length without its checksum; `offset`
// is where the value, or a vector's first element, stands in it. With `zeros` the arguments are bytes of 0, else
// the ASCII fill.
struct Read {
    std::uint8_t command = 0; // 0: the value can't be read
    std::uint8_t reply = 0;
    std::uint8_t offset = 3;
    Width width = Width::byte;
    bool zeros = false;
};

constexpr Read byte_read(int command) { return {static_cast<std::uint8_t>(command), 4, 3, Width::byte}; }
constexpr Read word_read(int command) { return {static_cast<std::uint8_t>(command), 5, 3, Width::word}; }
// A value or vector in a reply of its own size.
constexpr Read block_read(int command, int reply, int offset, Width width) {
    return {static_cast<std::uint8_t>(command), static_cast<std::uint8_t>(reply), static_cast<std::uint8_t>(offset),
            width};
}
constexpr Read zeros_read(int command, int reply, int offset, Width width) {
    Read read = block_read(command, reply, offset, width);
    read.zeros = true;
    return read;
}

// The layout of a write message behind its command byte.
enum class WriteForm : std::uint8_t {
    byte,         // value, 0, 0
    word,         // low, high, 0
    element_byte, // index, value, 0
    element_word, // index, low, high
};

// How a value is written. The reply echoes it: at offset 3, or behind the index at offset 3. The setup file's reader
// sends some items in another form and awaits another length than the screens do.
struct Write {
    std::uint8_t command = 0;
    WriteForm form = WriteForm::byte;
    std::uint8_t reply = 4;
    WriteForm file_form = WriteForm::byte;
    std::uint8_t file_reply = 4;
};

constexpr Write write_as(int command, WriteForm form, int reply) {
    return {static_cast<std::uint8_t>(command), form, static_cast<std::uint8_t>(reply), form,
            static_cast<std::uint8_t>(reply)};
}
constexpr Write byte_write(int command) { return write_as(command, WriteForm::byte, 4); }
constexpr Write word_write(int command) { return write_as(command, WriteForm::word, 5); }
constexpr Write element_byte_write(int command) { return write_as(command, WriteForm::element_byte, 5); }
constexpr Write element_word_write(int command) { return write_as(command, WriteForm::element_word, 6); }
// The same, but a setup file sends it as `form` and awaits `reply`.
constexpr Write in_file(Write write, WriteForm form, int reply) {
    write.file_form = form;
    write.file_reply = static_cast<std::uint8_t>(reply);
    return write;
}

// What shows a value, and how its bits fall on it.
enum class ControlKind : std::uint8_t {
    text_box,        // `name`, or element n of the array `name` for element n of a vector
    check_box,       // ticked unless 0
    bit_boxes,       // bit n ticks box n of the array
    phase_boxes,     // element n of the vector stands in the array `name` n, bit b ticks its box b
    map_flags,       // bit 0 TPS_mapped, bit 1 MAP_accel
    pressure_sensor, // low two bits choose map_type, bits 6 and 7 tick special_cfg
    oxygen_sensor,   // chooses EGO_type, which enables the two voltage boxes
    input_uses,      // four 3-bit fields choose the uses of the inputs
    output_mode,     // low four bits choose in gpo_n_mode, bit 7 ticks dont_interpolate(n)
    output_flags,    // bit 0 boost_ctrl_invert(n), bit 1 use_as_pwm(n)
};

struct ControlRef {
    ControlKind kind = ControlKind::text_box;
    std::string_view form = {};
    std::string_view name = {};
    int index = -1;                    // of a single value that shows in an array
    std::string_view second_form = {}; // another form with a control of the same name and index
};

// Shown value from raw: (raw - zero) * multiply / divide, unless the kind tells otherwise.
enum class ConversionKind : std::uint8_t {
    linear,
    pressure,        // raw / divide * map_span + map_base, kPa
    engine_speed,    // raw / divide * full_scale_rpm
    lambda,          // raw / divide in the chosen unit
    boost,           // duty or pressure, by the first channel's flag; see encoding.h
    signed_byte,     // above 127 less 256
    relay,           // as it stands; an entry below 0 has 127 added
    prime_threshold, // above 127 less 255, then -14 to 120
};

struct Conversion {
    ConversionKind kind = ConversionKind::linear;
    double multiply = 1;
    double divide = 1;
    std::int32_t zero = 0;
};

constexpr Conversion as_it_stands() { return {}; }
constexpr Conversion times(double multiply, double divide = 1) { return {.multiply = multiply, .divide = divide}; }
constexpr Conversion over(double divide) { return {.divide = divide}; }
// The same scale, with another raw number standing for 0.
constexpr Conversion from(std::int32_t zero, Conversion scale) {
    scale.zero = zero;
    return scale;
}
constexpr Conversion pressure_over(double divide) { return {.kind = ConversionKind::pressure, .divide = divide}; }
constexpr Conversion by_kind(ConversionKind kind, double divide = 1) { return {.kind = kind, .divide = divide}; }

// 1.6 microsecond ticks as milliseconds.
inline constexpr Conversion ticks_as_ms = over(625);
// Quarter degrees from -16.
inline constexpr Conversion quarter_degrees_from_minus_16 = from(64, over(4));

// A limit of the typed number: beyond it `text` takes the entry's place.
struct TextLimit {
    double value = 0;
    std::string_view text = {}; // empty: no limit
};

// A range outside which nothing is sent, and what is said then. Tested on the raw number or on the typed one.
struct Refusal {
    double below = -std::numeric_limits<double>::infinity(); // refused below this
    std::string_view below_text = {};
    double from = std::numeric_limits<double>::infinity(); // refused from here up
    std::string_view from_text = {};
    bool of_entry = false;
};

// What becomes of an entry, in this order: the question, the text limits, the refusal, the low byte or the hold.
// The width of the value holds the raw number besides.
struct Entry {
    double ask_above = std::numeric_limits<double>::infinity();
    std::string_view question = {};
    TextLimit lowest = {};
    TextLimit highest = {};
    std::string_view replaced_notice = {}; // said after a limit's text took the entry's place
    Refusal refusal = {};
    std::int32_t raw_low = 0;
    std::int32_t raw_high = 65535;
    bool low_byte = false; // only the low byte goes out
};

constexpr Entry held(std::int32_t low, std::int32_t high) { return {.raw_low = low, .raw_high = high}; }
constexpr Entry limited(TextLimit lowest, TextLimit highest) { return {.lowest = lowest, .highest = highest}; }
constexpr Entry refused(Refusal refusal) { return {.refusal = refusal}; }
constexpr Entry low_byte_only() {
    return {.raw_low = std::numeric_limits<std::int32_t>::min(),
            .raw_high = std::numeric_limits<std::int32_t>::max(),
            .low_byte = true};
}

// The form of an item's lines in a setup file.
enum class FileForm : std::uint8_t {
    none,           // not part of a file
    scalar,         // "ACC_RATE= 12"
    vector,         // "INJP[000]= 12"
    vector_doubled, // "BO_P[000]= = 12"
    element,        // "MAPM[000]=12"
};

// The tabs of the configuration page, in their order.
enum class Tab : std::uint8_t {
    none, // on another form
    engine_setup,
    acceleration,
    ignition,
    injection,
    phases,
    powerup,
    idle,
    closed_loop,
    startup,
    sensors,
    flat_shift,
    inputs,
    speed,
};
inline constexpr std::array<std::string_view, 13> tab_captions{
    "Engine Setup",    "Acceleration Enrichments", "Ignition Parameters", "Injection Parameters",
    "Phase Setup",     "Powerup/Options",          "Idle Control",        "Closed Loop Setup",
    "Engine Startup",  "Sensor Calibration",       "Flat Shift",          "Inputs Config",
    "Speed/Gear Setup"};
constexpr int page_of(Tab tab) { return static_cast<int>(tab) - 1; }

// What people read of an item: where it stands, its label and unit, and what it is. The tool tip is `about` with the
// range of an entry behind it (description.h), or `tip` as it stands.
struct Screen {
    Tab tab = Tab::none;
    std::string_view group = {}; // title of the panel it stands in
    std::string_view label = {};
    std::string_view unit = {};
    std::string_view about = {};
    std::string_view tip = {};
};

// One scalar or vector of the calibration.
struct Parameter {
    std::string_view key = {}; // its name everywhere, also in the setup file
    Screen screen = {};
    std::uint8_t count = 1; // elements; 1 for a scalar
    Read read = {};
    Write write = {};
    ControlRef control = {};
    Conversion shown = {};
    std::string_view mask = {}; // empty: a plain integer, or no text at all
    Entry entry = {};
    std::optional<Conversion> echo = {}; // where the write's reply is shown in another way than the read's
    FileForm file = FileForm::scalar;
    std::string_view file_mask = "####0";

    constexpr bool is_vector() const { return count > 1; }
    constexpr bool shows_text() const { return control.kind == ControlKind::text_box; }
    // Where element `i` stands in the reply to the read.
    constexpr int offset_of(int i) const { return read.offset + i * bytes_of(read.width); }
};

// How a table's cells stand in its editor. A grid's column is one run of consecutive bytes, bottom to top.
enum class TableShape : std::uint8_t { nine_boxes, grid_9, grid_16 };

// One table of the controller's table memory, one unsigned byte a cell.
struct Table {
    std::string_view key = {};
    Screen screen = {};
    std::uint16_t base = 0; // address of cell 0
    TableShape shape = TableShape::nine_boxes;
    std::string_view form = {};
    std::string_view control = {}; // the array of nine boxes, or the grid
    Conversion shown = {};
    std::string_view mask = {};
    Entry entry{.raw_high = 255};
    std::optional<Conversion> entry_scale = {}; // where an entry is encoded by another scale than the cell is shown by
    bool file_masks = false;                    // a setup file's value above a byte sends its low byte

    constexpr int cells() const { return shape == TableShape::nine_boxes ? 9 : shape == TableShape::grid_9 ? 81 : 256; }
    constexpr bool holds(int address) const { return address >= base && address < base + cells(); }
};

// Table index to grid cell, rows and columns counted from 1.
constexpr int map_row_16(int i) { return 16 - i % 16; }
constexpr int map_col_16(int i) { return i / 16 + 1; }
constexpr int map_row_9(int i) { return 9 - i % 9; }
constexpr int map_col_9(int i) { return i / 9 + 1; }
constexpr int map_row(const Table& table, int i) {
    return table.shape == TableShape::grid_16 ? map_row_16(i) : map_row_9(i);
}
constexpr int map_col(const Table& table, int i) {
    return table.shape == TableShape::grid_16 ? map_col_16(i) : map_col_9(i);
}

} // namespace ecu::calibration
