// Finding an item by words: what it is called, where it stands and what its tip says. Each word of the query must begin
// a word of the item, or stand inside one; what is called so comes before what only mentions it.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::shell {

struct Findable {
    std::string name;  // "Filter Rate, V/s"
    std::string place; // "Configuration > Acceleration Enrichments > Throttle Movement"
    std::string about; // its tip
};

// The places in `items` of at most `most` matches, best first; of equals the earlier. Nothing for a query without
// words.
std::vector<std::size_t> find_items(std::span<const Findable> items, std::string_view query, std::size_t most);

} // namespace ecu::shell
