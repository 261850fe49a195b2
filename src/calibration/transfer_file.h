// The file of a download while it grows: a new file beside its target that takes the target's name when it is whole.
// Until then, and for whatever reason it never gets there, the older file of that name stays as it was.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace ecu::calibration {

class TransferFile {
public:
    // A link leads to the file it stands for; the new file gets the older one's permissions.
    explicit TransferFile(const std::filesystem::path& target);
    TransferFile(const TransferFile&) = delete;
    TransferFile& operator=(const TransferFile&) = delete;
    ~TransferFile(); // removes what was not committed

    bool write(std::string_view text); // false once something has failed
    bool commit();
    // Why it failed, in the system's words; empty while all is well.
    const std::string& failure() const { return failure_; }

private:
    bool fail(const std::error_code& error);
    bool fail(std::string reason);

    std::filesystem::path target_;
    std::filesystem::path beside_;
    std::ofstream file_;
    std::string failure_;
    bool committed_ = false;
};

} // namespace ecu::calibration
