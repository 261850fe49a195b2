// What passes over the link, for those who look on: a trace, a journal of what was written, a doctor of the link.
// Nobody looks on unless asked to; an observer hears of every frame as it was received and of every message's end.
#pragma once

#include "link/frame.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace ecu::link {

// What became of one try, or of a frame that came after it.
enum class Verdict : std::uint8_t {
    accepted, // the message is over
    silent,   // nothing came
    damaged,  // failed a check of length or sum; `fault` tells which
    untaken,  // a good frame of the request's own that no decoder took: another size
    foreign,  // a good frame of another message; the line is let come to rest
    given_up, // the message is over without an answer
};

struct Observed {
    const Request& request;
    std::span<const std::uint8_t> reply; // the bytes as they came, checked or not
    Verdict verdict = Verdict::silent;
    FrameFault fault = FrameFault::none;
    float sent_at = 0; // seconds since midnight at the beginning of the try
    float seconds = 0; // from there until now
    int tries = 0;     // so far, this one included
    int depth = 1;     // above 1: inside the waits of another message
};

using Observer = std::function<void(const Observed&)>;
// Looks on for as long as it is held.
using Observation = std::shared_ptr<const Observer>;

} // namespace ecu::link
