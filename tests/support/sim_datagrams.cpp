#include "support/sim_datagrams.h"

namespace ecu::test {

platform::BindResult SimNetwork::bind(SimDatagramSocket& socket, std::uint16_t port) {
    if (const auto refusal = refusals_.find(port); refusal != refusals_.end()) {
        return refusal->second;
    }
    if (!sockets_.emplace(port, &socket).second) {
        return {platform::BindFault::in_use, "the address is in use"};
    }
    return {};
}

void SimNetwork::arrive(const Peer& from, std::uint16_t port, const Bytes& bytes) {
    if (const auto to = sockets_.find(port); to != sockets_.end()) {
        to->second->arrive(from, bytes);
    }
}

void SimNetwork::send(const SimDatagramSocket& from, const Peer& to, const Bytes& bytes) {
    const auto bound = std::ranges::find_if(sockets_, [&](const auto& entry) { return entry.second == &from; });
    const Sent sent{{loopback, bound == sockets_.end() ? std::uint16_t{0} : bound->first}, to, bytes};
    sent_.push_back(sent);
    events_.schedule(events_.now() + latency, [this, sent] {
        if (sent.to.address == loopback && sockets_.contains(sent.to.port)) {
            arrive(sent.from, sent.to.port, sent.bytes);
        } else if (outside) {
            outside(sent);
        }
    });
}

} // namespace ecu::test
