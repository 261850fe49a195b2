// A controller that answers as the test says: it records each 8-byte request and replies by a function, with one
// named fault at a time on the next reply. Frames are built here from their bytes alone, independent of the console.
#pragma once

#include "support/sim_serial.h"

#include <array>

namespace ecu::test {

using Request = std::array<std::uint8_t, 8>;

// The whole reply of {code, data...}: start byte 2, length, the bytes, checksum low and high. With a payload_count
// (2 + code and data) the data is filled up with zero bytes to it.
Bytes reply_frame(Bytes code_and_data, int payload_count = 0);
// The request of {command, up to three arguments}, missing ones the ASCII "0".
Request request_frame(Bytes message);

class ScriptedController {
public:
    ScriptedController(SimEvents& events, SimSerialLine& line);
    ScriptedController(const ScriptedController&) = delete;
    ScriptedController& operator=(const ScriptedController&) = delete;
    ~ScriptedController() { line_.peer = nullptr; }

    // Reply bytes for a request that reply_to does not cover; empty for none. Unset: silence.
    std::function<Bytes(const Request&)> responder;
    // The same reply to every request of the code of this frame (made by reply_frame).
    void reply_to(std::uint8_t code, Bytes frame) { fixed_[code] = std::move(frame); }
    void set_reply_delay(double seconds) { reply_delay_ = seconds; } // of every reply; 2 ms unless told

    // Faults of the next reply.
    void drop_next_reply(int count = 1) { dropped_ = count; }
    void corrupt_checksum() { corrupt_ = true; }
    void cut_reply(std::size_t bytes) { cut_ = bytes; } // loses the last ones
    void surplus_bytes(std::size_t bytes) { surplus_ = bytes; }
    void delay_next_reply(double seconds) { delay_ = seconds; }
    void silence() { silent_ = true; } // until speak()
    void speak() { silent_ = false; }

    const std::vector<Request>& sent() const { return sent_; }
    std::string sent_codes() const; // the command bytes in order, as characters
    // Each request's command and three arguments.
    std::vector<Bytes> messages() const;
    std::size_t count(std::uint8_t code) const;
    void clear_sent() { sent_.clear(); }

private:
    void take(std::span<const std::uint8_t> bytes);
    void answer(const Request& request);

    SimEvents& events_;
    SimSerialLine& line_;
    Bytes partial_;
    std::vector<Request> sent_;
    std::map<std::uint8_t, Bytes> fixed_;
    double reply_delay_ = 0.002;
    double delay_ = 0;
    int dropped_ = 0;
    bool corrupt_ = false;
    bool silent_ = false;
    std::size_t cut_ = 0;
    std::size_t surplus_ = 0;
};

} // namespace ecu::test
