// A log being written. Each call hands its whole line to the operating system before it returns, so that the end of
// the console, however sudden, loses no row; a line that does not fit is taken back, so that every row in the file
// is whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace ecu::logging {

class LogFile {
public:
    // Creates the file, or replaces one of that name, and writes the header. Returns an empty text, or the system's
    // reason why not; the file is then not open.
    std::string open(const std::filesystem::path& path, std::string_view header);
    // Adds one row, given with its line end. Returns an empty text, or the reason why not, such as a full disk, or that
    // the file is no longer there; the file is then closed and rows() still tells how many it kept.
    std::string add(std::string_view row);
    // Brings what was added onto the disk itself, which takes some milliseconds.
    void sync();
    void close();
    bool is_open() const { return file_.is_open(); }
    std::int32_t rows() const { return rows_; }

private:
    std::string write(std::string_view text);

    std::ofstream file_;
    std::filesystem::path path_;
    std::uintmax_t length_ = 0; // of what was written whole
    std::int32_t rows_ = 0;
};

// A name as the user typed it, in UTF-8, relative to `folder` unless absolute.
std::filesystem::path path_of(const std::filesystem::path& folder, std::string_view name);

} // namespace ecu::logging
