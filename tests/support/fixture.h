// The data files of tests/fixtures: one case a line, its fields between semicolons, lines of "#" are comments.
#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace ecu::test {

std::vector<std::vector<std::string>> fixture(const std::string& name);

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
