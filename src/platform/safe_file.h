// A file that is written whole or not at all: a new file beside its target that takes the target's name when it is
// complete and on the disk. Until then, and for whatever reason it never gets there, the older file of that name stays
// as it was. A program that was killed leaves its unfinished file behind; the next one that writes into that folder
// clears it away, once nobody holds it any more.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace ecu::platform {

class SafeFile {
public:
    // A link leads to the file it stands for, there or not; the new file gets the older one's permissions. No file
    // that is there already is touched but unfinished ones of programs that are gone.
    explicit SafeFile(const std::filesystem::path& target);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    ~SafeFile(); // removes what was not committed

    bool write(std::string_view text); // false once something has failed
    bool commit();
    // Why it failed, in the system's words; empty while all is well.
    const std::string& failure() const { return failure_; }

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void open_beside();
    bool fail(const std::error_code& error);
    bool fail(std::string reason);

    std::filesystem::path target_;
    std::filesystem::path beside_; // empty while there is none to remove
    std::unique_ptr<std::FILE, Close> file_;
    std::string failure_;
};

// Brings what was written to a file so far onto the disk, past the system's buffers. False when that cannot be done.
bool sync_file(const std::filesystem::path& path);

// The whole of a small file at once. Returns an empty text, or the reason why it could not be written. Line ends are
// written as given.
std::string replace_file(const std::filesystem::path& path, std::string_view text);

} // namespace ecu::platform
