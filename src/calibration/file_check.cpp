#include "calibration/file_check.h"

#include "calibration/encoding.h"
#include "calibration/snapshot.h"
#include "platform/rounding.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <limits>

namespace ecu::calibration {

namespace {

struct Limits {
    std::int32_t low;
    std::int32_t high;
};

Limits of_width(Width width) {
    switch (width) {
    case Width::byte:
        return {0, 255};
    case Width::word:
        return {0, 65535};
    case Width::signed_word:
        return {-32768, 32767};
    }
    return {0, 0};
}

const Entry& entry_of(const FileKey& key) { return key.table != nullptr ? key.table->entry : key.parameter->entry; }

// What the screens could make of an entry. The limit of a typed number becomes that of the raw number it leads to.
Limits entry_limits(const FileKey& key, Limits width, const Scales& scales) {
    const Entry& entry = entry_of(key);
    Limits limits{std::max(width.low, entry.raw_low), std::min(width.high, entry.raw_high)};
    const auto raw_of = [&](std::string_view text) {
        return key.table != nullptr ? raw_from_entry(*key.table, text, scales).raw
                                    : raw_from_entry(*key.parameter, text, scales).raw;
    };
    if (!entry.lowest.text.empty()) {
        limits.low = std::max(limits.low, raw_of(entry.lowest.text));
    }
    if (!entry.highest.text.empty()) {
        limits.high = std::min(limits.high, raw_of(entry.highest.text));
    }
    return limits;
}

bool refused(const FileKey& key, std::int32_t raw, const Scales& scales) {
    const Refusal& refusal = entry_of(key).refusal;
    const double tested =
        refusal.of_entry && key.parameter != nullptr ? shown_value(key.parameter->shown, raw, scales) : raw;
    return tested < refusal.below || tested >= refusal.from;
}

std::string with_shown(const FileKey& key, std::int32_t raw, const Scales& scales) {
    const std::string shown = shown_text(key, raw, scales);
    return std::to_string(raw) + (shown.empty() || shown == std::to_string(raw) ? "" : " (" + shown + ")");
}

// A whole decimal number and nothing else.
std::string number_fault(std::string_view text, std::int32_t sent) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    text = text.substr(0, text.find_last_not_of(" \t") + 1);
    if (text.empty()) {
        return "has no value; an upload would send 0";
    }
    const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
        return "\"" + platform::printable(text) + "\" is not a whole number; an upload would send " +
               std::to_string(sent);
    }
    return {};
}

// The value as it stands in the message.
std::int32_t sent_value(const LineMessage& known) {
    const link::Message& message = known.message;
    if (known.key.table != nullptr) {
        return message[3];
    }
    switch (known.key.parameter->write.file_form) {
    case WriteForm::byte:
        return message[1];
    case WriteForm::word:
        return message[1] + 256 * message[2];
    case WriteForm::element_byte:
        return message[2];
    case WriteForm::element_word:
        return message[2] + 256 * message[3];
    }
    return 0;
}

// What is wrong with a raw value by its row's width and limits; empty when nothing is.
std::string range_fault(const FileKey& key, std::int32_t raw, std::int32_t sent, const Scales& scales) {
    const Limits width = of_width(key.table != nullptr ? Width::byte : key.parameter->read.width);
    if (raw < width.low || raw > width.high) {
        return std::to_string(raw) + " does not fit the item's " + (width.high == 255 ? "8" : "16") +
               " bits; an upload would send " + std::to_string(sent) +
               (width.high == 255 && sent > 255 ? ", its high byte along" : "");
    }
    const Entry& entry = entry_of(key);
    if (entry.low_byte) {
        // The entry's limits are those of a signed byte.
        const std::int32_t value = raw > 127 ? raw - 256 : raw;
        const bool any = entry.raw_low == std::numeric_limits<std::int32_t>::min();
        return any || (value >= entry.raw_low && value <= entry.raw_high)
                   ? ""
                   : std::to_string(raw) + " stands for " + std::to_string(value) + ", outside " +
                         std::to_string(entry.raw_low) + " to " + std::to_string(entry.raw_high);
    }
    const Limits limits = entry_limits(key, width, scales);
    if (raw < limits.low || raw > limits.high) {
        return with_shown(key, raw, scales) + " is outside " + with_shown(key, limits.low, scales) + " to " +
               with_shown(key, limits.high, scales);
    }
    return refused(key, raw, scales) ? with_shown(key, raw, scales) + " is a value that the console's screens refuse"
                                     : "";
}

class Checker {
public:
    CheckReport check(std::string_view text) {
        const std::vector<std::string> lines = split_lines(text);
        report_.lines = static_cast<int>(lines.size());
        // The spans that later lines set hold for earlier ones too.
        for (const std::string& line : lines) {
            if (const auto meaning = read_line(line); const auto* known = std::get_if<LineMessage>(&meaning)) {
                scales_of_.put(known->key, {known->value, 0});
            }
        }
        for (const std::string& line : lines) {
            ++number_;
            look_at(line);
        }
        add_notes();
        if (!text.empty() && text.back() != '\n') {
            report_.notes.push_back("the last line has no line end; the file may have been cut short");
        }
        return std::move(report_);
    }

private:
    void find(std::string key, std::string text) {
        report_.findings.push_back({number_, std::move(key), std::move(text)});
    }

    void look_at(const std::string& line) {
        const auto meaning = read_line(line);
        if (const auto* stop = std::get_if<LineStop>(&meaning)) {
            find(stop->key, stop_text(*stop) + "; an upload would stop here");
        } else if (const auto* unknown = std::get_if<UnknownLine>(&meaning)) {
            find(unknown->texts.front().substr(unknown_variable.size()), "is not known; an upload would pass over it");
        } else if (const auto* known = std::get_if<LineMessage>(&meaning)) {
            look_at_value(line, *known);
        }
    }

    void look_at_value(const std::string& line, const LineMessage& known) {
        const std::string key = key_text(known.key);
        if (const auto earlier = seen_.find(known.key)) {
            find(key, "stands in line " + std::to_string(earlier->line) + " already; the later value holds");
        }
        const std::int32_t printed = printed_value(line, known);
        seen_.put(known.key, {printed, number_});
        if (printed != known.value) {
            ++lost_;
        }
        if (std::string fault = number_fault(value_text(line, known.key), sent_value(known)); !fault.empty()) {
            find(key, std::move(fault));
        }
        if (std::string fault = range_fault(known.key, printed, sent_value(known), scales_of_.scales());
            !fault.empty()) {
            find(key, std::move(fault));
        }
    }

    // As printed_value() takes it: of a doubled line what stands behind its second "=".
    static std::string_view value_text(std::string_view line, const FileKey& key) {
        std::string_view text = line.substr(std::min(value_column, line.size()));
        const bool doubled = key.parameter != nullptr && key.parameter->file == FileForm::vector_doubled;
        const std::size_t sign = text.find_first_not_of(' ');
        return doubled && sign != std::string_view::npos && text[sign] == '=' ? text.substr(sign + 1) : text;
    }

    void add_notes() {
        report_.values = static_cast<int>(seen_.size());
        if (const std::size_t all = Snapshot::all_keys().size(); seen_.size() < all) {
            report_.notes.push_back(std::to_string(all - seen_.size()) + " of " + std::to_string(all) +
                                    " values are not in the file; an upload leaves them as the controller has them");
        }
        if (lost_ > 0) {
            report_.notes.push_back(std::to_string(lost_) + (lost_ == 1 ? " BO_P value stands" : " BO_P values stand") +
                                    " behind a second \"=\"; an upload sends 0 in its place, so set the boost gains "
                                    "again after it");
        }
    }

    CheckReport report_;
    Snapshot scales_of_;
    Snapshot seen_;
    int number_ = 0;
    int lost_ = 0;
};

} // namespace

CheckReport check(std::string_view text) { return Checker().check(text); }

} // namespace ecu::calibration
