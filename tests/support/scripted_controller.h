// A controller that answers as the test says: it records each 8-byte request and replies by a function.
#pragma once

#include "link/frame.h"
#include "support/sim_serial.h"

namespace ecu::test {

using link::Request;

// The whole reply of {code, data...}; with a payload_count (2 + code and data) the data is filled up with zeros to it.
Bytes reply_frame(Bytes code_and_data, int payload_count = 0);

class ScriptedController {
public:
    explicit ScriptedController(SimSerialLine& line);
    ScriptedController(const ScriptedController&) = delete;
    ScriptedController& operator=(const ScriptedController&) = delete;
    ~ScriptedController() { line_.peer = nullptr; }

    // Reply bytes for a request that reply_to does not cover; empty for none. Unset: silence.
    std::function<Bytes(const Request&)> responder;
    // The same reply to every request of the code of this frame (made by reply_frame).
    void reply_to(std::uint8_t code, Bytes frame) { fixed_[code] = std::move(frame); }
    void set_reply_delay(double seconds) { reply_delay_ = seconds; } // of every reply; 2 ms unless told

    void drop_next_reply(int count = 1) { dropped_ = count; }
    // The next reply comes this much later than the others.
    void answer_late(double seconds) { late_by_ = seconds; }
    // In place of the next reply this frame comes, and the reply itself `behind` seconds after it, or never.
    void answer_with(Bytes foreign_frame, std::optional<double> behind = {}) {
        foreign_ = std::move(foreign_frame);
        behind_ = behind;
    }
    void silence() { silent_ = true; } // until speak()
    void speak() { silent_ = false; }

    const std::vector<Request>& sent() const { return sent_; }
    std::string sent_codes() const; // the command bytes in order, as characters
    // Each request's command and three arguments.
    std::vector<Bytes> messages() const;
    std::size_t count(std::uint8_t code) const;
    void clear_sent() { sent_.clear(); }

private:
    void answer(const Request& request);

    SimSerialLine& line_;
    std::vector<Request> sent_;
    std::map<std::uint8_t, Bytes> fixed_;
    double reply_delay_ = 0.002;
    double late_by_ = 0;
    Bytes foreign_;
    std::optional<double> behind_;
    int dropped_ = 0;
    bool silent_ = false;
};

} // namespace ecu::test
