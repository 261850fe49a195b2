// What the dashboard holds back from the running engine, told on every view: with the timing held at 0 degrees or the
// oxygen control switched off, figures that look wrong elsewhere are explained.
#pragma once

#include "views/frm_dashboard.h"

#include <deque>
#include <initializer_list>

namespace ecu::views {

class HeldNote {
public:
    // Gives each of these forms a label `held_note`, hidden while nothing is held.
    HeldNote(FrmDashboard& dashboard, std::initializer_list<platform::Form*> views);
    void refresh(); // one of the two boxes changed

private:
    FrmDashboard& dashboard_;
    std::deque<platform::Label> labels_;
};

} // namespace ecu::views
