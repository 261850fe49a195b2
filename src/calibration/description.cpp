#include "calibration/description.h"

#include "calibration/encoding.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ecu::calibration {

namespace {

struct RawRange {
    std::int32_t low;
    std::int32_t high;
};

RawRange of_width(Width width) {
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

// At most `decimals` places, and no zeros at the end.
std::string plain(double value, int decimals) {
    std::array<char, 40> digits{};
    std::snprintf(digits.data(), digits.size(), "%.*f", decimals, value);
    std::string text = digits.data();
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text == "-0" ? "0" : text;
}

int decimals_of(std::string_view mask) {
    const std::size_t point = mask.find('.');
    return point == std::string_view::npos ? 0 : static_cast<int>(mask.size() - point - 1);
}

// Two digits that count, three where they tell it exactly: "0.25", "0.0016", "about 0.016".
std::string step_text(double step) {
    const int leading = static_cast<int>(std::floor(std::log10(step)));
    for (const int digits : {2, 3}) {
        const std::string text = plain(step, std::max(0, digits - 1 - leading));
        if (std::abs(std::stod(text) - step) < step * 1e-9) {
            return text;
        }
    }
    return "about " + plain(step, std::max(0, 1 - leading));
}

std::string range(const Screen& screen, const Entry& entry, const Conversion& shown, std::string_view mask,
                  Width width) {
    const bool threshold = shown.kind == ConversionKind::prime_threshold; // degrees, below 0 too, in its byte
    if (shown.kind != ConversionKind::linear && !threshold) {
        return "";
    }
    const Conversion scale = threshold ? as_it_stands() : shown;
    const RawRange sent = of_width(width);
    const bool wraps = entry.low_byte && !threshold;
    RawRange raw{entry.raw_low, entry.raw_high};
    if (!threshold) {
        raw = {std::max(sent.low, wraps ? 0 : entry.raw_low), std::min(sent.high, wraps ? 255 : entry.raw_high)};
    }
    const double step = scale.multiply / scale.divide;
    const auto shown_as_entry = [&](double number) { return (number - scale.zero) * step; };
    const Refusal& refusal = entry.refusal;
    const auto in_entry = [&](double limit) { return refusal.of_entry ? limit : shown_as_entry(limit); };
    double low = std::max(shown_as_entry(raw.low), in_entry(refusal.below));
    double high = shown_as_entry(raw.high);
    if (std::isfinite(refusal.from)) {
        high = std::min(high, in_entry(refusal.from) - step);
    }
    if (!entry.lowest.text.empty()) {
        low = std::max(low, entry.lowest.value);
    }
    if (!entry.highest.text.empty()) {
        high = std::min(high, entry.highest.value);
    }
    const int decimals = decimals_of(mask);
    const bool refuses = std::isfinite(refusal.from) || std::isfinite(refusal.below);
    return plain(low, decimals) + " to " + plain(high, decimals) +
           (screen.unit.empty() ? "" : " " + std::string(screen.unit)) + ", in steps of " + step_text(step) + "; " +
           (wraps     ? "beyond that the number wraps around"
            : refuses ? "beyond that nothing is sent"
                      : "beyond that the limit is sent");
}

std::string tip_of(const Screen& screen, const std::string& range) {
    if (!screen.tip.empty()) {
        return std::string(screen.tip);
    }
    return std::string(screen.about) + (range.empty() ? "" : "\n" + range);
}

} // namespace

std::string entry_range(const Parameter& row) {
    return row.shows_text() ? range(row.screen, row.entry, row.shown, row.mask, row.read.width) : "";
}

std::string entry_range(const Table& row) {
    return range(row.screen, row.entry, row.entry_scale.value_or(row.shown), row.mask, Width::byte);
}

std::string tool_tip(const Parameter& row) { return tip_of(row.screen, entry_range(row)); }

std::string tool_tip(const Table& row) { return tip_of(row.screen, entry_range(row)); }

std::string element_label(const Parameter& row, int i) {
    return std::string(row.screen.label) + (row.is_vector() ? " " + std::to_string(i + 1) : "");
}

std::string element_label(const Table& row, int i) {
    return std::string(row.screen.label) + " " + std::to_string(i + 1);
}

} // namespace ecu::calibration
