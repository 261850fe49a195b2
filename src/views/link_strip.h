// One line on every view that tells how the link is: by what it goes, how many replies come a second, how often was
// asked again in the last minute, and whether a log is recorded. When no live values have come for two seconds the line
// is red, and the window greys its figures: what they show is no longer the engine's. It looks on; it sends nothing.
#pragma once

#include "link/ecu_comm.h"

#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>

namespace ecu::views {

class LinkStrip {
public:
    // Gives each of these forms a label `link_strip`.
    explicit LinkStrip(std::initializer_list<platform::Form*> views);

    struct Use {
        const platform::Ports& ports;
        const link::SharedState& state;
        link::EcuComm& comm;
        const platform::SerialPort& comm1;
        std::function<std::string()> log;    // "Log: 120 rows", empty while none is recorded
        std::function<float()> log_interval; // seconds: how often the plotter asks
    };
    // From now on it is kept up to date.
    void follow(const Use& use);

private:
    void look(const link::Observed& observed);
    void show();
    std::string way() const;
    std::string replies() const;
    bool stale() const;

    std::deque<platform::Label> labels_;
    std::unique_ptr<const Use> use_;
    link::Observation observation_;
    std::unique_ptr<platform::Timer> second_;
    int replies_now_ = 0;       // in the second that runs
    int replies_before_ = 0;    // in the one before
    std::deque<float> retries_; // when, in the last minute
    float live_at_ = 0;         // the last live values, or the opening of the view
    link::View shown_ = link::View::none;
};

} // namespace ecu::views
