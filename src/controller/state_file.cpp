#include "controller/state_file.h"

#include "platform/safe_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace ecu::controller {

namespace {

constexpr std::string_view first_line = "ECU-CONTROLLER STATE 1\n";
constexpr std::size_t largest_file = 1U << 20U; // four times what all of memory takes
constexpr std::size_t cells_per_line = 16;

std::uint32_t fletcher32(std::string_view text) {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    for (const char character : text) {
        low = (low + static_cast<std::uint8_t>(character)) % 65535;
        high = (high + low) % 65535;
    }
    return high << 16U | low;
}

std::string hex(unsigned value, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, value);
    return text.data();
}

std::optional<unsigned> number(std::string_view text, int base, unsigned highest) {
    unsigned value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base);
    return result.ec == std::errc() && result.ptr == end && value <= highest ? std::optional(value) : std::nullopt;
}

std::string text_of(const ControllerMemory& memory) {
    std::string text(first_line);
    for (const calibration::Parameter& row : calibration::parameters) {
        text += row.key;
        for (std::size_t i = 0; i < row.count; ++i) {
            text += ' ' + std::to_string(memory.value(calibration::first_element(row) + i));
        }
        text += '\n';
    }
    const std::span<const std::uint8_t> cells = memory.cells();
    for (std::size_t at = 0; at < cells.size(); at += cells_per_line) {
        const auto line = cells.subspan(at, cells_per_line);
        if (std::ranges::all_of(line, [](std::uint8_t cell) { return cell == 0; })) {
            continue;
        }
        text += '@' + hex(static_cast<unsigned>(at), 4);
        for (const std::uint8_t cell : line) {
            text += ' ' + hex(cell, 2);
        }
        text += '\n';
    }
    return text + "END " + hex(fletcher32(text), 8) + '\n';
}

// Every parameter must be there; a line that is not understood fails the whole file.
bool read_line(const std::string& line, ControllerMemory& memory, std::size_t& parameters_seen) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word.starts_with('@')) {
        const std::optional<unsigned> at = number(std::string_view(word).substr(1), 16, 0xFFF0);
        std::size_t cell = 0;
        while (at && words >> word) {
            const std::optional<unsigned> value = number(word, 16, 255);
            if (!value || cell == cells_per_line) {
                return false;
            }
            memory.store_cell(*at + cell++, static_cast<std::uint8_t>(*value));
        }
        return cell == cells_per_line;
    }
    const calibration::Parameter* row = calibration::find_parameter(word);
    if (row == nullptr) {
        return false;
    }
    std::size_t element = 0;
    while (words >> word) {
        const std::optional<unsigned> value = number(word, 10, 65535);
        if (!value || element == row->count) {
            return false;
        }
        memory.store(calibration::first_element(*row) + element++, static_cast<std::uint16_t>(*value));
    }
    ++parameters_seen;
    return element == row->count;
}

bool parse(const std::string& text, ControllerMemory& memory) {
    const std::size_t end = text.rfind("END ");
    if (!text.starts_with(first_line) || end == std::string::npos ||
        text.substr(end) != "END " + hex(fletcher32(std::string_view(text).substr(0, end)), 8) + '\n') {
        return false;
    }
    memory.clear_cells();
    std::istringstream lines(text.substr(first_line.size(), end - first_line.size()));
    std::string line;
    std::size_t parameters_seen = 0;
    while (std::getline(lines, line)) {
        if (!read_line(line, memory, parameters_seen)) {
            return false;
        }
    }
    return parameters_seen == calibration::parameters.size();
}

} // namespace

std::string load_state(const std::string& path, ControllerMemory& memory) {
    std::error_code failure;
    if (!std::filesystem::exists(path, failure) && !failure) {
        return {};
    }
    std::ifstream file(path, std::ios::binary);
    if (!std::filesystem::is_regular_file(path, failure) || !file) {
        return "The state file " + path + " cannot be read. Make it a readable file, or name another one.";
    }
    std::string text(largest_file, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    ControllerMemory loaded;
    if (!parse(text, loaded)) {
        return "The state file " + path + " is damaged or is not a state file of this program; it was left as it is. " +
               "Move it away to start from the default calibration, or name another one.";
    }
    memory = loaded;
    return {};
}

std::string save_state(const std::string& path, const ControllerMemory& memory) {
    const std::string reason = platform::replace_file(path, text_of(memory));
    return reason.empty() ? ""
                          : "The state file " + path + " cannot be written (" + reason +
                                "). Make its folder writable, " + "or name another one.";
}

} // namespace ecu::controller
