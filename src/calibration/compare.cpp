#include "calibration/compare.h"

#include <algorithm>
#include <set>

namespace ecu::calibration {

Comparison compare(const Snapshot& a, const Snapshot& b) {
    Comparison out;
    std::set<std::pair<std::string, Side>> unreadable; // these are there, in their way
    const auto note_unreadable = [&](const Snapshot& values, Side side) {
        for (const UnreadableLine& line : values.unreadable) {
            out.unreadable.push_back({line, side});
            unreadable.emplace(line.key, side);
        }
    };
    note_unreadable(a, Side::a);
    note_unreadable(b, Side::b);
    for (const FileKey& key : Snapshot::all_keys()) {
        const auto in_a = a.find(key);
        const auto in_b = b.find(key);
        if (in_a && in_b && in_a->raw != in_b->raw) {
            out.changed.push_back({key, in_a->raw, in_b->raw});
        } else if (in_a.has_value() != in_b.has_value()) {
            const Side side = in_a ? Side::b : Side::a;
            if (!unreadable.contains({key_text(key), side})) {
                out.missing.push_back({key, side});
            }
        }
    }
    for (const UnknownKey& key : a.unknown) {
        out.unknown.push_back({key, Side::a});
    }
    for (const UnknownKey& key : b.unknown) {
        out.unknown.push_back({key, Side::b});
    }
    out.same = out.changed.empty() && out.missing.empty() && out.unreadable.empty() &&
               std::ranges::is_permutation(a.unknown, b.unknown, std::equal_to<>());
    return out;
}

} // namespace ecu::calibration
