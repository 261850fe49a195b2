#include "controller/faults.h"

#include <utility>

namespace ecu::controller {

void Faults::strike_next(Fault fault, int times) {
    forced_ = fault;
    forced_times_ = times;
}

void Faults::plug_in() {
    unplugged_ = false;
    plan_.unplug_after.reset();
}

void Faults::note_request() {
    if (plan_.unplug_after && replies_ >= *plan_.unplug_after) {
        unplugged_ = true;
    }
}

std::optional<Fault> Faults::draw() {
    if (forced_times_ > 0) {
        --forced_times_;
        return forced_;
    }
    for (std::size_t kind = 0; kind < fault_count; ++kind) {
        if (plan_.rate[kind] > 0 && noise_.uniform() < plan_.rate[kind]) {
            return static_cast<Fault>(kind);
        }
    }
    return std::nullopt;
}

double Faults::befall(std::vector<std::uint8_t>& reply) {
    ++replies_;
    const std::optional<Fault> fault = draw();
    const std::vector<std::uint8_t> before = std::exchange(reply_before_, reply);
    if (!fault) {
        return 0;
    }
    switch (*fault) {
    case Fault::lost:
        reply.clear();
        break;
    case Fault::late:
        return plan_.late_by;
    case Fault::cut: // keeps at least one byte and loses at least one
        reply.resize(1 + noise_.below(reply.size() - 1));
        break;
    case Fault::corrupted: // always another byte than before
        reply[noise_.below(reply.size())] ^= static_cast<std::uint8_t>(1 + noise_.below(255));
        break;
    case Fault::foreign: // lost where there is none before it
        reply = before;
        break;
    case Fault::surplus:
        for (std::uint64_t stray = 1 + noise_.below(3); stray > 0; --stray) {
            reply.push_back(static_cast<std::uint8_t>(noise_.bits()));
        }
        break;
    }
    return 0;
}

} // namespace ecu::controller
