#include "autotune/log_fields.h"

namespace ecu::autotune {

namespace {

constexpr int end_of_file = std::istream::traits_type::eof();

bool is_blank(int c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

} // namespace

std::optional<std::string> read_line(std::istream& in) {
    std::string line;
    if (!std::getline(in, line)) {
        return std::nullopt;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return line;
}

bool at_end(std::istream& in) {
    while (is_blank(in.peek())) {
        in.get();
    }
    return in.peek() == end_of_file;
}

std::optional<std::string> read_field(std::istream& in) {
    if (at_end(in)) {
        return std::nullopt;
    }
    std::string field;
    for (int c = in.get(); c != end_of_file && c != ',' && c != '\n'; c = in.get()) {
        field += static_cast<char>(c);
    }
    return field;
}

} // namespace ecu::autotune
