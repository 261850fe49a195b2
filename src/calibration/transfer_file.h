// The file of a download while it grows: a new file beside its target that takes the target's name when it is whole
// and on the disk. Until then, and for whatever reason it never gets there, the older file of that name stays as it
// was.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace ecu::calibration {

class TransferFile {
public:
    // A link leads to the file it stands for, there or not; the new file gets the older one's permissions. No file
    // that is there already is touched, whatever its name.
    explicit TransferFile(const std::filesystem::path& target);
    TransferFile(const TransferFile&) = delete;
    TransferFile& operator=(const TransferFile&) = delete;
    ~TransferFile(); // removes what was not committed

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

} // namespace ecu::calibration
