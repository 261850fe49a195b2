// What the monitor says, as the terminal shows it, and the two characters of it that mean something wherever they
// stand: "B" for ready, "E" for an error. Any byte is borne: one beyond 7 bits is shown as Latin-1, a control character
// by its picture. Lines wrap behind 40 characters; a carriage return does not begin that count anew, and "B" and "E" do
// not count.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ecu::flash {

class Terminal {
public:
    void receive(std::uint8_t byte);
    void print(std::string_view line); // with a line end
    void clear() { text_.clear(); }
    const std::string& text() const { return text_; } // UTF-8

    bool monitor_ready = false; // a "B" since it was cleared
    bool flash_error = false;   // an "E" since it was cleared

private:
    std::string text_;
    int terminal_column_ = 0;
};

} // namespace ecu::flash
