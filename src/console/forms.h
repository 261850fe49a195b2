// Every form of the console, living for the whole run, and the register by which the decoders, the table of parameters
// and the desktop find their controls.
#pragma once

#include "autotune/frm_autotune.h"
#include "calibration/frm_wait.h"
#include "configuration/frm_tool.h"
#include "diagnostics/frm_diagnostics.h"
#include "flash/frm_flash_check.h"
#include "flash/frm_sflash.h"
#include "history/frm_changes.h"
#include "history/frm_compare.h"
#include "history/frm_journal.h"
#include "history/frm_restore_points.h"
#include "link/frm_dialog.h"
#include "link/frm_link.h"
#include "link/frm_remote_ip.h"
#include "link/frm_retries.h"
#include "link/frm_server.h"
#include "logging/frm_plotter.h"
#include "maps/frm_2d.h"
#include "maps/frm_3d.h"
#include "maps/frm_3d_graph.h"
#include "maps/frm_cellblock_modifier.h"
#include "maps/frm_sup.h"
#include "shell/frm_about.h"
#include "shell/frm_ecu.h"
#include "views/frm_dashboard.h"
#include "views/frm_mon.h"
#include "views/held_note.h"
#include "views/link_strip.h"

namespace ecu::console {

struct Forms {
    explicit Forms(platform::Timers& timers) : frm_retries(timers), frm_server(timers), frm_link(timers) {
        for (platform::Form* form : {&frm_ecu.form,
                                     &frm_about.form,
                                     &frm_dialog.form,
                                     &frm_retries.form,
                                     &frm_wait.form,
                                     &frm_mon.form,
                                     &frm_dashboard.form,
                                     &frm_tool.form,
                                     &frm_3d.form,
                                     &frm_3d_graph.form,
                                     &frm_cellblock_modifier.form,
                                     &frm_2d.form,
                                     &frm_sup.form,
                                     &frm_plotter.form,
                                     &frm_diagnostics.form,
                                     &frm_autotune.form,
                                     &frm_remote_ip.form,
                                     &frm_server.form,
                                     &sflash.form,
                                     &frm_link.form,
                                     &frm_flash_check.form,
                                     &frm_changes.form,
                                     &frm_compare.form,
                                     &frm_restore_points.form,
                                     &frm_journal.form}) {
            registry.add(*form);
        }
    }

    shell::FrmEcu frm_ecu;
    shell::FrmAbout frm_about;
    link::FrmDialog frm_dialog;
    link::FrmRetries frm_retries;
    calibration::FrmWait frm_wait;
    views::FrmMon frm_mon;
    views::FrmDashboard frm_dashboard;
    configuration::FrmTool frm_tool;
    maps::Frm3d frm_3d;
    maps::Frm3dGraph frm_3d_graph;
    maps::FrmCellblockModifier frm_cellblock_modifier;
    maps::Frm2d frm_2d;
    maps::FrmSup frm_sup;
    logging::FrmPlotter frm_plotter;
    diagnostics::FrmDiagnostics frm_diagnostics;
    autotune::FrmAutotune frm_autotune;
    link::FrmRemoteIp frm_remote_ip;
    link::FrmServer frm_server;
    flash::FrmSflash sflash;
    flash::FrmFlashCheck frm_flash_check;
    link::FrmLink frm_link;
    history::FrmChanges frm_changes;
    history::FrmCompare frm_compare;
    history::FrmRestorePoints frm_restore_points;
    history::FrmJournal frm_journal;
    views::HeldNote held_note{frm_dashboard,
                              {&frm_mon.form, &frm_dashboard.form, &frm_tool.form, &frm_3d.form, &frm_2d.form,
                               &frm_sup.form, &frm_plotter.form, &frm_diagnostics.form}};
    views::LinkStrip link_strip{&frm_mon.form, &frm_dashboard.form, &frm_tool.form,    &frm_3d.form,
                                &frm_2d.form,  &frm_sup.form,       &frm_plotter.form, &frm_diagnostics.form};
    platform::FormRegistry registry;
};

} // namespace ecu::console
