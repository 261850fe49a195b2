#include "configuration/stutter_tool.h"

#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <algorithm>

namespace ecu::configuration {

namespace {

constexpr std::int32_t most_of_a_kind = 32767;

std::size_t count_of(double entered) {
    return static_cast<std::size_t>(std::clamp(platform::round_to_even(entered), 0, most_of_a_kind));
}

} // namespace

std::string stutter_text(double skips, double hits) {
    const std::string cycle = std::string(count_of(skips), '1') + std::string(count_of(hits), '0');
    std::string text;
    if (skips == 0 || cycle.empty()) {
        return text;
    }
    while (text.size() < stutter_events) {
        text += cycle;
    }
    return text;
}

// A position is a character, which may take several bytes of the text.
StutterWords stutter_words(std::string_view text) {
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    StutterWords words{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < stutter_events; ++i) {
        if (at >= text.size() || text[at] == '1') {
            words[i / events_of_word] |= 1 << i % events_of_word;
        }
        do {
            ++at;
        } while (at < text.size() && continues(text[at]));
    }
    return words;
}

std::array<bool, stutter_events> stutter_marks(const std::array<std::string_view, words_of_pattern>& boxes) {
    std::array<bool, stutter_events> marks{};
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const std::int32_t word = platform::round_to_even(platform::leading_number(boxes[i / events_of_word]));
        marks[i] = (word >> i % events_of_word & 1) != 0;
    }
    return marks;
}

} // namespace ecu::configuration
