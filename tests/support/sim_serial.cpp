#include "support/sim_serial.h"

#include <algorithm>
#include <utility>

namespace ecu::test {

Bytes take_front(std::deque<std::uint8_t>& from, std::size_t at_most) {
    const auto end = from.begin() + static_cast<std::ptrdiff_t>(std::min(at_most, from.size()));
    Bytes bytes(from.begin(), end);
    from.erase(from.begin(), end);
    return bytes;
}

std::string SimSerialLine::open(int number, int baud, const void* owner) {
    tried_.push_back(number);
    if (open_) {
        return "the port is open already";
    }
    if (const auto failure = failures_.find(number); failure != failures_.end()) {
        return failure->second;
    }
    if (!plugged_) {
        return "there is no device";
    }
    open_ = true;
    owner_ = owner;
    lost_ = false;
    number_ = number;
    ++openings_;
    baud_ = baud;
    ++opening_;
    return "";
}

void SimSerialLine::unplug() {
    const bool was_open = open_;
    close();
    lost_ = was_open;
    plugged_ = false;
}

void SimSerialLine::reopen_lost() {
    if (lost_ && !open_) {
        open(number_, baud_, owner_);
    }
}

void SimSerialLine::close(const void* owner) {
    if (owner != owner_) {
        return;
    }
    open_ = false;
    lost_ = false;
    ++opening_;
    input_.clear();
}

void SimSerialLine::receive(std::span<const std::uint8_t> bytes, double after_seconds) {
    Microseconds due = std::max(events_.now() + to_microseconds(after_seconds), input_free_);
    const std::size_t together = pace_ == 0 ? bytes.size() : 1;
    for (; !bytes.empty(); bytes = bytes.subspan(together)) {
        due += byte_time();
        const auto part = bytes.first(together);
        events_.schedule(due, [this, opening = opening_, arrived = Bytes(part.begin(), part.end())] {
            if (open_ && opening == opening_) {
                input_.insert(input_.end(), arrived.begin(), arrived.end());
            }
        });
    }
    input_free_ = due;
}

std::size_t SimSerialLine::waiting() const {
    if (stalled_) {
        return waiting_at_stall_ + held_.size();
    }
    const Microseconds left = std::max(Microseconds{0}, output_free_ - events_.now());
    return pace_ == 0 ? 0 : static_cast<std::size_t>((left + byte_time() - 1) / byte_time());
}

void SimSerialLine::stall() {
    waiting_at_stall_ = waiting();
    stalled_ = true;
}

void SimSerialLine::go_on() {
    stalled_ = false;
    write(std::exchange(held_, {}));
}

void SimSerialLine::drain(double seconds) {
    const Microseconds whole = to_microseconds(seconds);
    events_.let_time_pass(stalled_ ? whole : std::clamp(output_free_ - events_.now(), Microseconds{0}, whole));
}

void SimSerialLine::write(std::span<const std::uint8_t> bytes) {
    if (!open_ || !peer || bytes.empty()) {
        return;
    }
    most_waiting_ = std::max(most_waiting_, waiting());
    if (stalled_) {
        held_.insert(held_.end(), bytes.begin(), bytes.end());
        return;
    }
    if (pace_ == 0) {
        peer(bytes);
        return;
    }
    output_free_ = std::max(output_free_, events_.now()) + byte_time() * static_cast<Microseconds>(bytes.size());
    events_.schedule(output_free_, [this, sent = Bytes(bytes.begin(), bytes.end())] { peer(sent); });
}

} // namespace ecu::test
