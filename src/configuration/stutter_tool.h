// The stutter generator: a pattern of 32 engine events as text, "1" a skip and "0" a hit, made of skips and hits that
// take turns; and as the four words of a stutter table, eight events each, the first event in the lowest bit.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace ecu::configuration {

inline constexpr int stutter_events = 32;
inline constexpr int events_of_word = 8;
inline constexpr int words_of_pattern = stutter_events / events_of_word;
using StutterWords = std::array<std::int32_t, words_of_pattern>;

// Whole cycles of skips and hits until 32 events are there; the last is not cut. Empty when there are no skips, or
// when a cycle has no events at all.
std::string stutter_text(double skips, double hits);
// Events that the text lacks are skips; what is not a "1" is a hit.
StutterWords stutter_words(std::string_view text);
// The events of four boxes of a stutter table as they will be sent, true a skip.
std::array<bool, stutter_events> stutter_marks(const std::array<std::string_view, words_of_pattern>& boxes);

} // namespace ecu::configuration
