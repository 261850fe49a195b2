// The data files of tests/fixtures: one case a line, its fields between semicolons, lines of "#" are comments.
#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace ecu::test {

inline std::vector<std::vector<std::string>> fixture(const std::string& name) {
    std::ifstream in(ECU_FIXTURES "/" + name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with('#')) {
            std::istringstream fields(line + ";");
            rows.emplace_back();
            for (std::string field; std::getline(fields, field, ';');) {
                rows.back().push_back(field);
            }
        }
    }
    if (rows.empty()) {
        throw std::runtime_error("nothing in the fixture " + name);
    }
    return rows;
}

// The bytes of "41 0A FF".
inline std::vector<std::uint8_t> bytes_of(const std::string& hexadecimal) {
    std::istringstream in(hexadecimal);
    in >> std::hex;
    std::vector<std::uint8_t> bytes;
    for (unsigned byte = 0; in >> byte;) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    return bytes;
}

} // namespace ecu::test
