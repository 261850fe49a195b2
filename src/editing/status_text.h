// The one line in which an editor tells what it has: what was never read, what waits to be sent and where, what is no
// number, what the controller did not take, and how the last Update went. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ecu::editing {

// Values of a map or tab, or of several.
struct Counts {
    int pending = 0;      // Update sends them
    int sent_as_zero = 0; // of these, what is no number and would go out as 0,
    int cut_short = 0;    // and what is none and would go out as the digits it begins with
    int unread = 0;       // neither a reply nor an entry has filled them since the opening
    int unread_cells = 0; // of these, cells of tables
    int held_back = 0;    // of the unread, entered in part: sent when the rest of the value has been read
    int not_taken = 0;    // sent or refused, and not confirmed since

    Counts& operator+=(const Counts& other);
};

struct GroupCount {
    std::string_view group;
    int pending = 0;
};

// What an Update did.
struct Tally {
    int sent = 0;
    int held = 0;           // to a limit, without a word
    std::string first_held; // "99 is 47.75"
};

struct Status {
    Counts counts;
    std::vector<GroupCount> groups; // of the pending ones
    Tally tally;
    bool aborted = false;
    bool demo = false;
    std::string note; // of what was just pasted
};

std::string status_text(const Status& status);

} // namespace ecu::editing
