// The forms on which the live replies and the capability word act, in a register of their own.
#pragma once

#include "diagnostics/frm_diagnostics.h"
#include "maps/frm_2d.h"
#include "maps/frm_sup.h"
#include "maps/frm_tool.h"
#include "views/frm_dashboard.h"
#include "views/frm_mon.h"

namespace ecu::test {

struct LiveForms {
    views::FrmMon mon;
    views::FrmDashboard dashboard;
    maps::FrmTool tool;
    maps::Frm2d corrections;
    maps::FrmSup outputs;
    diagnostics::FrmDiagnostics diagnostics;
    platform::FormRegistry registry;

    LiveForms() {
        for (platform::Form* form :
             {&mon.form, &dashboard.form, &tool.form, &corrections.form, &outputs.form, &diagnostics.form}) {
            registry.add(*form);
        }
    }
};

} // namespace ecu::test
