// The realtime monitor's behaviour: turns the live record into the texts of its rows, writes those that differ from
// what is shown, and lets the user in and out. The labels that only repeat a reply are written by the live decoder.
#pragma once

#include "calibration/scales.h"
#include "link/shared_state.h"
#include "messages/live_data.h"
#include "platform/ports.h"
#include "shell/navigation.h"
#include "shell/polling.h"
#include "views/frm_mon.h"

namespace ecu::views {

class Monitor {
public:
    // Adds itself to the navigation as the view and to the polling as what is refreshed.
    Monitor(const platform::Ports& ports, link::SharedState& state, messages::EcuLiveData& data,
            const calibration::Scales& scales, shell::Navigation& navigation, shell::Polling& polling, FrmMon& form);

    // Limits the record to what the rows can show, and writes the rows whose text has changed.
    void refresh_monitor_strings();

private:
    static constexpr std::size_t rows = FrmMon::Row::count;

    void activate();
    void mark_shown(std::size_t count, std::string_view mark);
    void form_strings();
    void form_mixture_strings();

    const platform::Ports& ports_;
    link::SharedState& state_;
    messages::EcuLiveData& data_;
    const calibration::Scales& scales_;
    shell::Navigation& navigation_;
    FrmMon& form_;
    std::array<std::string, rows> wanted_;
    std::array<std::string, rows> shown_;
    std::string unit_text_; // of the air/fuel figure, taken at activation
};

} // namespace ecu::views
