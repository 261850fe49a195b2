#include "flash/record_check.h"

#include "flash/flash_utility.h"

#include <algorithm>
#include <map>

namespace ecu::flash {

namespace {

constexpr std::size_t count_end = 4; // "S", type, two digits of count

std::string hex(std::uint64_t value, std::size_t digits) {
    constexpr std::string_view all = "0123456789ABCDEF";
    std::string text;
    for (; value > 0 || text.size() < digits; value >>= 4) {
        text.insert(text.begin(), all[value & 0xF]);
    }
    return text;
}

std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;) {
        text.insert(at -= 3, ",");
    }
    return text;
}

std::string counted(std::size_t count, std::string_view what) {
    return grouped(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string time_text(double seconds) {
    const int whole = std::max(1, static_cast<int>(seconds + 0.5));
    return whole < 100 ? std::to_string(whole) + " s"
                       : std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

int digit_of(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
}

// Bytes of address in a record of this type.
std::size_t address_bytes(int type) { return type == 2 || type == 6 || type == 8 ? 3 : type == 3 || type == 7 ? 4 : 2; }

std::string quoted(std::string_view text) {
    std::string shown;
    for (const char c : text.substr(0, 12)) {
        shown += c >= ' ' && c <= '~' ? c : '?';
    }
    return "\"" + shown + (text.size() > 12 ? "...\"" : "\"");
}

class Checker {
public:
    explicit Checker(const RecordFile& file) : file_(file) {}

    RecordReport run() {
        report_.lines = file_.lines().size();
        report_.file_bytes = file_.bytes();
        for (const std::string_view line : file_.lines()) {
            ++line_;
            look_at(line);
        }
        line_ = 0;
        if (report_.data_bytes == 0) {
            fault("there is no data in the file");
        }
        if (end_line_ == 0) {
            fault("there is no end record (S7, S8 or S9): the file may be cut, and the monitor waits for more");
        }
        for (const auto& [first, piece] : pieces_) {
            if (!report_.ranges.empty() && first <= report_.ranges.back().last + 1ULL) {
                report_.ranges.back().last = std::max(report_.ranges.back().last, piece.last);
            } else {
                report_.ranges.push_back({first, piece.last});
            }
        }
        return std::move(report_);
    }

private:
    struct Piece {
        std::uint32_t last;
        std::size_t line;
    };

    void fault(const std::string& text) {
        if (++report_.fault_count <= RecordReport::faults_kept) {
            report_.faults.push_back({line_, text});
        }
    }

    // The bytes behind the type, count and checksum among them; none where the line is no whole record.
    std::vector<std::uint8_t> bytes_of(std::string_view line) {
        if (line.find_first_not_of(" \t") == std::string_view::npos) {
            fault("blank");
            return {};
        }
        if (line.size() < 2 || line[0] != 'S' || line[1] < '0' || line[1] > '9') {
            fault("does not begin as a record, with S and a digit: " + quoted(line));
            return {};
        }
        for (std::size_t i = 2; i < line.size(); ++i) {
            if (digit_of(line[i]) < 0) {
                fault("column " + std::to_string(i + 1) + ": " + quoted(line.substr(i, 1)) +
                      " is no hexadecimal digit");
                return {};
            }
        }
        if (line.size() < count_end) {
            fault("is cut before its count");
            return {};
        }
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 2; i + 1 < line.size(); i += 2) {
            bytes.push_back(static_cast<std::uint8_t>(digit_of(line[i]) * 16 + digit_of(line[i + 1])));
        }
        const std::size_t wanted = count_end + 2 * std::size_t{bytes.front()};
        if (line.size() != wanted) {
            fault("has " + std::to_string(line.size()) + " characters; its count " + hex(bytes.front(), 2) +
                  " asks for " + std::to_string(wanted));
            return {};
        }
        return bytes;
    }

    void look_at(std::string_view line) {
        const std::vector<std::uint8_t> bytes = bytes_of(line);
        if (bytes.empty()) {
            return;
        }
        const int type = line[1] - '0';
        const std::size_t width = address_bytes(type);
        if (bytes.size() < width + 2) {
            fault("its count " + hex(bytes.front(), 2) + " leaves no room for address and checksum");
            return;
        }
        unsigned sum = 0;
        for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
            sum += bytes[i];
        }
        if (const unsigned right = 0xFFU - (sum & 0xFFU); right != bytes.back()) {
            fault("its checksum is " + hex(bytes.back(), 2) + "; its bytes add up to " + hex(right, 2));
            return;
        }
        std::uint32_t address = 0;
        for (std::size_t i = 1; i <= width; ++i) {
            address = address << 8U | bytes[i];
        }
        if (end_line_ > 0) {
            fault("stands behind the end record of line " + std::to_string(end_line_) +
                  "; the monitor has ended there");
        }
        ++report_.records.at(static_cast<std::size_t>(type));
        take(type, address, {bytes.begin() + 1 + static_cast<std::ptrdiff_t>(width), bytes.end() - 1}, width);
    }

    void take(int type, std::uint32_t address, const std::vector<std::uint8_t>& data, std::size_t width) {
        switch (type) {
        case 0:
            header(data);
            break;
        case 1:
        case 2:
        case 3:
            widest_ = std::max(widest_, type);
            place(address, data.size(), width);
            break;
        case 5:
        case 6:
            if (const std::size_t so_far = report_.records[1] + report_.records[2] + report_.records[3];
                address != so_far) {
                fault("counts " + std::to_string(address) + " data records; there are " + std::to_string(so_far) +
                      " before it");
            }
            break;
        case 7:
        case 8:
        case 9:
            end(type, address);
            break;
        default:
            fault("is of type S4, which is reserved");
        }
    }

    void header(const std::vector<std::uint8_t>& data) {
        if (report_.records[0] > 1) {
            fault("is a second header record");
        } else if (line_ > 1) {
            fault("is a header record behind other lines");
        }
        for (const std::uint8_t byte : data) {
            report_.header += byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : ' ';
        }
    }

    void end(int type, std::uint32_t address) {
        if (end_line_ == 0) {
            end_line_ = line_;
            report_.starts = address;
        }
        if (widest_ > 0 && type != 10 - widest_) {
            fault("is an end record of type S" + std::to_string(type) + "; behind data of type S" +
                  std::to_string(widest_) + " it should be S" + std::to_string(10 - widest_));
        }
    }

    void place(std::uint32_t address, std::size_t size, std::size_t width) {
        if (size == 0) {
            fault("is a data record without data");
            return;
        }
        const std::uint64_t last = address + std::uint64_t{size} - 1;
        if (last >> (8 * width) != 0) {
            fault("its data go past the end of its addresses, from " + hex(address, 2 * width) + " to " +
                  hex(last, 2 * width));
            return;
        }
        report_.data_bytes += size;
        // A record holds fewer than 256 bytes, so that none which begins further below can reach up here.
        const Piece* hit = nullptr;
        for (auto at = pieces_.lower_bound(address - std::min<std::uint32_t>(address, 255));
             at != pieces_.end() && at->first <= last && hit == nullptr; ++at) {
            hit = at->second.last >= address ? &at->second : nullptr;
        }
        if (hit != nullptr) {
            fault("its data, " + range_text({address, static_cast<std::uint32_t>(last)}) + ", overlap those of line " +
                  std::to_string(hit->line));
        }
        Piece& piece = pieces_[address];
        piece = {std::max(piece.last, static_cast<std::uint32_t>(last)), line_};
    }

    const RecordFile& file_;
    RecordReport report_;
    std::map<std::uint32_t, Piece> pieces_; // by first address
    std::size_t line_ = 0;
    std::size_t end_line_ = 0;
    int widest_ = 0;
};

} // namespace

RecordReport check_records(const RecordFile& file) { return Checker(file).run(); }

Rehearsal rehearse(const RecordFile& file, const Monitor& monitor) {
    Rehearsal result;
    std::size_t bytes = 0;
    std::size_t line_number = 0;
    for (const std::string_view line : file.lines()) {
        ++line_number;
        for (const char character : line) {
            ++bytes;
            if (monitor.receive(static_cast<std::uint8_t>(character)).find('E') != std::string::npos) {
                result.refused_line = line_number;
                break;
            }
        }
        if (result.refused_line > 0) {
            break;
        }
    }
    result.done = result.refused_line == 0 && monitor.started();
    result.seconds = 10.0 / flash_baud * static_cast<double>(bytes);
    return result;
}

std::string range_text(const AddressRange& range) {
    const std::size_t digits = range.last > 0xFFFFFF ? 8 : range.last > 0xFFFF ? 6 : 4;
    return hex(range.first, digits) + " to " + hex(range.last, digits) + ", " +
           counted(std::uint64_t{range.last} - range.first + 1, "byte");
}

std::string report(const RecordReport& checked, const std::optional<Rehearsal>& rehearsal, const std::string& name) {
    std::string text = name + ": " + counted(checked.lines, "line") + ", " + counted(checked.data_bytes, "byte") +
                       " of data in " +
                       counted(checked.records[1] + checked.records[2] + checked.records[3], "record") + "\n";
    if (!checked.header.empty()) {
        text += "Header: " + checked.header + "\n";
    }
    for (std::size_t i = 0; i < checked.ranges.size(); ++i) {
        if (i > 0) {
            text += "Gap: " + range_text({checked.ranges[i - 1].last + 1, checked.ranges[i].first - 1}) + "\n";
        }
        text += "Data: " + range_text(checked.ranges[i]) + "\n";
    }
    if (checked.starts) {
        text += "Starts at " + hex(*checked.starts, 4) + "\n";
    }
    for (const RecordFault& fault : checked.faults) {
        text += (fault.line > 0 ? "Line " + std::to_string(fault.line) + ": " : "") + fault.text + "\n";
    }
    if (checked.fault_count > checked.faults.size()) {
        text += "and " + grouped(checked.fault_count - checked.faults.size()) + " more\n";
    }
    text += checked.fault_count == 0 ? "Nothing wrong found\n" : counted(checked.fault_count, "finding") + "\n";
    if (rehearsal) {
        text += rehearsal->refused_line > 0
                    ? "Rehearsal: the virtual monitor refused line " + std::to_string(rehearsal->refused_line) + "\n"
                : rehearsal->done ? "Rehearsal: the virtual monitor took the whole file; flashing it takes " +
                                        time_text(rehearsal->seconds) + " at " + std::to_string(flash_baud) + " baud\n"
                                  : "Rehearsal: the virtual monitor took the whole file and waits for its end\n";
    }
    return text;
}

} // namespace ecu::flash
