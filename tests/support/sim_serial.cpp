#include "support/sim_serial.h"

#include <algorithm>

namespace ecu::test {

Bytes take_front(std::deque<std::uint8_t>& from, std::size_t at_most) {
    const auto end = from.begin() + static_cast<std::ptrdiff_t>(std::min(at_most, from.size()));
    Bytes bytes(from.begin(), end);
    from.erase(from.begin(), end);
    return bytes;
}

std::string SimSerialLine::open(int number, int baud) {
    tried_.push_back(number);
    if (open_) {
        return "the port is open already";
    }
    if (const auto failure = failures_.find(number); failure != failures_.end()) {
        return failure->second;
    }
    open_ = true;
    baud_ = baud;
    ++opening_;
    return "";
}

void SimSerialLine::close() {
    open_ = false;
    ++opening_;
    input_.clear();
}

void SimSerialLine::receive(std::span<const std::uint8_t> bytes, double after_seconds) {
    Microseconds due = std::max(events_.now() + to_microseconds(after_seconds), input_free_);
    const auto arrive = [this, opening = opening_](const Bytes& arrived) {
        if (opening == opening_) {
            input_.insert(input_.end(), arrived.begin(), arrived.end());
        }
    };
    if (pace_ == 0) {
        events_.schedule(due, [arrive, all = Bytes(bytes.begin(), bytes.end())] { arrive(all); });
    } else {
        for (const std::uint8_t byte : bytes) {
            due += byte_time();
            events_.schedule(due, [arrive, one = Bytes{byte}] { arrive(one); });
        }
    }
    input_free_ = due;
}

void SimSerialLine::write(std::span<const std::uint8_t> bytes) {
    if (!open_) {
        return;
    }
    written_.insert(written_.end(), bytes.begin(), bytes.end());
    if (pace_ == 0) {
        if (peer) {
            peer(bytes);
        }
        return;
    }
    output_free_ = std::max(output_free_, events_.now()) + byte_time() * static_cast<Microseconds>(bytes.size());
    events_.schedule(output_free_, [this, sent = Bytes(bytes.begin(), bytes.end())] {
        if (peer) {
            peer(sent);
        }
    });
}

} // namespace ecu::test
