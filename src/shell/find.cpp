#include "shell/find.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace ecu::shell {

namespace {

bool is_word_byte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return std::isalnum(byte) != 0 || byte >= 0x80 || c == '#'; // a letter beyond ASCII is part of its word
}

// Each word in lower case with a blank before it, so that " ac" finds the beginning of a word.
std::string folded(std::string_view text) {
    std::string result;
    bool inside = false;
    for (const char c : text) {
        if (is_word_byte(c)) {
            result += inside ? "" : " ";
            result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        inside = is_word_byte(c);
    }
    return result;
}

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at + 1), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

// 0 where the word does not stand; more where it begins a word, and most where that is the whole one.
int weight(const std::string& text, const std::string& word) {
    const std::size_t at = text.find(word);
    if (at == std::string::npos) {
        return text.find(word.substr(1)) == std::string::npos ? 0 : 1;
    }
    const std::size_t end = at + word.size();
    return end == text.size() || text[end] == ' ' ? 3 : 2;
}

} // namespace

std::vector<std::size_t> find_items(std::span<const Findable> items, std::string_view query, std::size_t most) {
    const std::vector<std::string> words = words_of(folded(query));
    struct Match {
        int score;
        std::size_t item;
    };
    std::vector<Match> matches;
    for (std::size_t i = 0; i < items.size() && !words.empty(); ++i) {
        const std::string name = folded(items[i].name);
        const std::string place = folded(items[i].place);
        const std::string about = folded(items[i].about);
        std::optional<int> score = 0;
        for (const std::string& word : words) {
            const int in_name = weight(name, word);
            const int in_place = weight(place, word);
            const int in_about = weight(about, word);
            if (in_name + in_place + in_about == 0) {
                score.reset();
                break;
            }
            *score += 100 * in_name + 10 * in_place + in_about + (name.starts_with(word) ? 50 : 0);
        }
        if (score) {
            matches.push_back({*score, i});
        }
    }
    std::ranges::stable_sort(matches, std::greater(), &Match::score);
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < matches.size() && i < most; ++i) {
        found.push_back(matches[i].item);
    }
    return found;
}

} // namespace ecu::shell
