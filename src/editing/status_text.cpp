#include "editing/status_text.h"

namespace ecu::editing {

namespace {

std::string counted(int count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string pending_text(const Status& status) {
    std::string text = counted(status.counts.pending, "value") + " pending";
    std::string_view before = ": ";
    for (const GroupCount& group : status.groups) {
        if (group.pending > 0 && !group.group.empty()) {
            text += std::string(before) + std::string(group.group) + " " + std::to_string(group.pending);
            before = ", ";
        }
    }
    const auto tell_no_numbers = [&text](int count, std::string_view consequence) {
        if (count > 0) {
            text += "; " + std::to_string(count) + (count == 1 ? " is no number" : " are no numbers") +
                    std::string(consequence);
        }
    };
    tell_no_numbers(status.counts.sent_as_zero, " and would be sent as 0");
    tell_no_numbers(status.counts.cut_short, " and would be sent without the rest");
    return text;
}

std::string not_taken_text(const Status& status) {
    const int count = status.counts.not_taken;
    if (status.demo) {
        return counted(count, "value") + " not sent: demo mode";
    }
    if (status.counts.pending > 0) {
        return std::to_string(count) + " not taken";
    }
    return counted(count, "value") + (count == 1 ? " was" : " were") + " not taken by the controller";
}

} // namespace

Counts& Counts::operator+=(const Counts& other) {
    pending += other.pending;
    sent_as_zero += other.sent_as_zero;
    cut_short += other.cut_short;
    unread += other.unread;
    unread_cells += other.unread_cells;
    held_back += other.held_back;
    not_taken += other.not_taken;
    return *this;
}

std::string status_text(const Status& status) {
    if (status.aborted) {
        return "Aborted: nothing is sent until a view is opened";
    }
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : "; ") + part; };
    if (!status.note.empty()) {
        add(status.note);
    }
    const Counts& counts = status.counts;
    if (counts.unread > 0) {
        add(counted(counts.unread, counts.unread == counts.unread_cells ? "cell" : "value") + " not read" +
            (status.demo ? "" : ": read again"));
    }
    if (counts.held_back > 0) {
        add(std::to_string(counts.held_back) + " changed, but not sent before the rest of " +
            (counts.held_back == 1 ? "it" : "them") + " is read");
    }
    if (counts.pending > 0) {
        add(pending_text(status));
    }
    if (counts.not_taken > 0) {
        add(not_taken_text(status));
    }
    if (text.empty()) {
        text = "No values pending";
    }
    if (const Tally& tally = status.tally; tally.held > 0) {
        add(std::to_string(tally.sent) + " sent, " + std::to_string(tally.held) +
            (tally.held == 1 ? " held to its limit: " : " held to their limits: ") + tally.first_held);
    }
    return text;
}

} // namespace ecu::editing
