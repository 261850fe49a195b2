#include "link/link_doctor.h"

#include "platform/display_mask.h"

#include <algorithm>
#include <numeric>

namespace ecu::link {

namespace {

constexpr double byte_ms = 10 * 1000.0 / controller_baud;
constexpr int low_latency_ms = 1;
constexpr double slow_delay_ms = 8;           // an adapter that holds bytes back for its usual 16 ms is well above
constexpr std::uint64_t enough_messages = 20; // for a word about the share of retries
constexpr double many_retries = 0.01;

std::string number(double value, const char* mask) { return platform::masked(static_cast<float>(value), mask); }
std::string ms(double value) { return number(value, "##0.0") + " ms"; }

RetryKind kind_of(const Observed& observed) {
    switch (observed.verdict) {
    case Verdict::damaged:
        return observed.fault == FrameFault::checksum ? RetryKind::checksum : RetryKind::too_short;
    case Verdict::untaken:
        return RetryKind::size;
    case Verdict::foreign:
        return RetryKind::foreign;
    case Verdict::silent:
    case Verdict::accepted:
    case Verdict::given_up:
        break;
    }
    return RetryKind::no_answer;
}

const char* word_of(const TracedFrame& frame) {
    switch (frame.verdict) {
    case Verdict::accepted:
        return "answered";
    case Verdict::silent:
        return "no answer";
    case Verdict::damaged:
        return frame.fault == FrameFault::checksum ? "bad checksum" : "cut short or too long";
    case Verdict::untaken:
        return "of another size";
    case Verdict::foreign:
        return "of another message";
    case Verdict::given_up:
        return "given up";
    }
    return "";
}

std::string hex(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += {digits[byte >> 4], digits[byte & 0xF], ' '};
    }
    return text;
}

std::string time_of(float seconds) {
    const auto whole = static_cast<int>(seconds);
    const auto two = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    return two(whole / 3600) + ":" + two(whole / 60 % 60) + ":" + two(whole % 60) +
           number(seconds - static_cast<float>(whole), ".00").substr(0, 3);
}

std::string joined(const std::vector<std::string>& words) {
    return std::accumulate(words.begin(), words.end(), std::string(), [](const std::string& text, const auto& word) {
        return text.empty() ? word : text + ", " + word;
    });
}

// What stands in the way before any message.
void port_advice(const PortFacts& port, std::vector<std::string>& said) {
    if (!port.present) {
        said.push_back((port.device.empty() ? "There is no device for this port" : port.device + " is not there") +
                       ". Plug the adapter in, or choose another port in the Comm menu.");
        return;
    }
    if (!port.permitted) {
        const std::string group = port.group.empty() || port.group == "root" ? "dialout" : port.group;
        said.push_back("This user may not use " + port.device + ". Run  sudo adduser $USER " + group +
                       "  and log in again.");
    }
    if (!port.holders.empty()) {
        said.push_back("Other programs have " + port.device + " open: " + joined(port.holders) +
                       ". End them; two readers of one port take each other's bytes.");
    }
    if (port.latency_ms.value_or(low_latency_ms) > low_latency_ms) {
        said.push_back("The adapter holds received bytes back for up to " + std::to_string(*port.latency_ms) +
                       " ms (its latency timer). Lower it:  echo 1 | sudo tee " + port.latency_file.string() +
                       "  until the adapter is plugged in again.");
    }
}

void retry_advice(const LinkState& link, std::vector<std::string>& said) {
    const LinkFigures& seen = link.figures;
    const auto count = [&](RetryKind kind) { return seen.retries[static_cast<std::size_t>(kind)]; };
    const std::uint64_t tries = seen.answered + seen.all_retries();
    const auto many = [&](std::uint64_t retries) {
        return tries >= enough_messages && static_cast<double>(retries) > many_retries * static_cast<double>(tries);
    };
    if (seen.answered == 0 && seen.given_up > 0) {
        said.push_back(link.server.empty()
                           ? "The controller did not answer at all. Check its power, the cable, and that this is the "
                             "port it is plugged into."
                           : "Nothing was answered. Check the controller at the server, and the network to it.");
        return;
    }
    if (many(count(RetryKind::no_answer))) {
        said.push_back(link.server.empty()
                           ? "Replies go missing. Check the plugs, the controller's power while the engine is cranked, "
                             "and the adapter's supply."
                           : "Datagrams go missing. A cable is steadier than a wireless network; see that nothing else "
                             "fills it.");
    }
    if (many(count(RetryKind::too_short) + count(RetryKind::checksum))) {
        said.push_back("Replies come damaged. Keep the cable short and away from ignition leads, and join the grounds "
                       "of engine and laptop well.");
    }
    if (count(RetryKind::foreign) > 0) {
        said.push_back("Replies came so late that they met the next message. Nothing is lost by it, but the way to the "
                       "controller is slow at times: close programs that load this machine.");
    }
    if (count(RetryKind::size) > 0) {
        said.push_back("Some replies were of another size than this console expects. The controller's firmware may be "
                       "older or newer than the console.");
    }
}

} // namespace

std::string round_trip_class(std::size_t index) {
    if (index == 0) {
        return "up to " + std::to_string(round_trip_edges.front()) + " ms";
    }
    const std::string from = std::to_string(round_trip_edges.at(index - 1));
    return index < round_trip_edges.size() ? from + " to " + std::to_string(round_trip_edges[index]) + " ms"
                                           : "over " + from + " ms";
}

std::uint64_t LinkFigures::all_retries() const { return std::accumulate(retries.begin(), retries.end(), 0ULL); }

std::string as_text(const TracedFrame& frame) {
    std::string text = time_of(frame.sent_at) + "  #" + std::to_string(frame.tries) + "  " + hex(frame.request) + "> ";
    if (frame.reply.empty()) {
        text += "- ";
    }
    return text + hex(frame.reply) + " " + word_of(frame) + "  " + ms(1000 * frame.seconds);
}

void LinkDoctor::look_on() {
    if (!observation_) {
        observation_ = comm_.observe([this](const Observed& observed) { note(observed); });
    }
}

void LinkDoctor::clear() {
    figures_ = {};
    trace_.clear();
    frames_traced_ = 0;
}

void LinkDoctor::note(const Observed& observed) {
    const double took = 1000.0 * static_cast<double>(observed.seconds);
    switch (observed.verdict) {
    case Verdict::accepted: {
        const auto edge = std::ranges::lower_bound(round_trip_edges, took);
        ++figures_.round_trips[static_cast<std::size_t>(edge - round_trip_edges.begin())];
        figures_.fastest_ms = figures_.answered == 0 ? took : std::min(figures_.fastest_ms, took);
        figures_.slowest_ms = std::max(figures_.slowest_ms, took);
        figures_.sum_ms += took;
        figures_.wire_ms += byte_ms * static_cast<double>(request_size + observed.reply.size());
        ++figures_.answered;
        break;
    }
    case Verdict::given_up:
        ++figures_.given_up;
        break;
    case Verdict::silent:
    case Verdict::damaged:
    case Verdict::untaken:
    case Verdict::foreign:
        ++figures_.retries[static_cast<std::size_t>(kind_of(observed))];
        break;
    }
    if (!tracing_) {
        return;
    }
    trace_.push_back({.sent_at = observed.sent_at,
                      .seconds = observed.seconds,
                      .tries = observed.tries,
                      .request = observed.request,
                      .reply = {observed.reply.begin(), observed.reply.end()},
                      .verdict = observed.verdict,
                      .fault = observed.fault});
    ++frames_traced_;
    if (trace_.size() > frames_kept) {
        trace_.pop_front();
    }
}

std::vector<std::string> advice(const LinkState& link) {
    std::vector<std::string> said;
    if (link.server.empty()) {
        port_advice(link.port, said);
    }
    retry_advice(link, said);
    const LinkFigures& seen = link.figures;
    if (link.server.empty() && seen.answered >= enough_messages && seen.mean_delay_ms() > slow_delay_ms) {
        said.push_back("Each message takes " + ms(seen.mean_delay_ms()) +
                       " longer than its bytes need. An adapter with a latency timer, or a hub with much else on it, "
                       "is the usual cause; plug the adapter into the machine itself.");
    }
    return said;
}

std::string report(const LinkState& link) {
    const LinkFigures& seen = link.figures;
    std::string text = "Link: " + link.name + "\n";
    if (link.server.empty()) {
        const PortFacts& port = link.port;
        text += "Device: " +
                std::string(!port.present     ? "not there"
                            : !port.permitted ? "there, but this user may not use it"
                                              : "there") +
                (port.real_path.empty() || port.real_path == port.device ? "" : ", " + port.real_path) + "\n";
        text += "Open elsewhere: " + (port.holders.empty() ? "no" : joined(port.holders)) + "\n";
        text += "Latency timer: " +
                (port.latency_ms ? std::to_string(*port.latency_ms) + " ms" : std::string("none that tells")) + "\n";
    } else {
        text += "Through the console at " + link.server + "\n";
    }
    text += "Messages: " + std::to_string(seen.answered) + " answered, " + std::to_string(seen.given_up) +
            " without an answer\n";
    if (seen.answered > 0) {
        text += "Round trip: " + ms(seen.mean_ms()) + " on average, " + ms(seen.fastest_ms) + " to " +
                ms(seen.slowest_ms) + "; " + ms(seen.mean_delay_ms()) + " beyond the time of the bytes\n";
    }
    for (std::size_t i = 0; i < round_trip_classes; ++i) {
        if (seen.round_trips[i] > 0) {
            text += "  " + round_trip_class(i) + ": " + std::to_string(seen.round_trips[i]) + "\n";
        }
    }
    text += "Retries: " + std::to_string(seen.all_retries()) + "\n";
    for (std::size_t i = 0; i < retry_kinds; ++i) {
        if (seen.retries[i] > 0) {
            text += "  " + std::string(retry_names[i]) + ": " + std::to_string(seen.retries[i]) + "\n";
        }
    }
    const std::vector<std::string> said = advice(link);
    text += said.empty() ? "Advice: none, all is well\n" : "Advice:\n";
    for (const std::string& line : said) {
        text += "- " + line + "\n";
    }
    return text;
}

} // namespace ecu::link
