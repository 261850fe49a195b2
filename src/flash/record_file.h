// A record file in its lines, as they are: nothing is trimmed, checked or cut, and blank lines count. Lines end with
// CR LF or LF, which are not part of them; the last may have no end. It is read whole, so that nothing that befalls the
// file during a run of minutes can spoil it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::flash {

class RecordFile {
public:
    // Returns an empty text, or why the file cannot be used.
    std::string open(const std::filesystem::path& path);
    void close();
    bool is_open() const { return !lines_.empty(); }

    std::size_t bytes() const { return content_.size(); }
    const std::vector<std::string_view>& lines() const { return lines_; }

private:
    std::string content_;
    std::vector<std::string_view> lines_;
};

} // namespace ecu::flash
