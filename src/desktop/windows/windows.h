// The windows of the forms: one function each, in a file of its own. QtHost::add takes them, so that a window is
// built when its form first shows.
#pragma once

#include "desktop/form_window.h"

#include <memory>

namespace ecu::link {
struct FrmDialog;
struct FrmLink;
struct FrmRemoteIp;
struct FrmRetries;
struct FrmServer;
} // namespace ecu::link
namespace ecu::calibration {
struct FrmWait;
}
namespace ecu::shell {
struct FrmEcu;
struct FrmAbout;
} // namespace ecu::shell
namespace ecu::views {
struct FrmDashboard;
struct FrmMon;
} // namespace ecu::views
namespace ecu::logging {
struct FrmPlotter;
}

namespace ecu::maps {
struct Frm2d;
struct Frm3d;
struct Frm3dGraph;
struct FrmCellblockModifier;
struct FrmSup;
} // namespace ecu::maps
namespace ecu::autotune {
struct FrmAutotune;
}
namespace ecu::configuration {
struct FrmTool;
}
namespace ecu::diagnostics {
struct FrmDiagnostics;
}
namespace ecu::flash {
struct FrmFlashCheck;
struct FrmSflash;
} // namespace ecu::flash

namespace ecu::history {
struct FrmChanges;
struct FrmCompare;
struct FrmJournal;
struct FrmRestorePoints;
} // namespace ecu::history

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_ecu_window(shell::FrmEcu& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_about_window(shell::FrmAbout& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_dialog_window(link::FrmDialog& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_retries_window(link::FrmRetries& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_wait_window(calibration::FrmWait& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_mon_window(views::FrmMon& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_dashboard_window(views::FrmDashboard& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_plotter_window(logging::FrmPlotter& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_tool_window(configuration::FrmTool& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_3d_window(maps::Frm3d& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_2d_window(maps::Frm2d& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_3d_graph_window(maps::Frm3dGraph& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_cellblock_modifier_window(maps::FrmCellblockModifier& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_sup_window(maps::FrmSup& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_autotune_window(autotune::FrmAutotune& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_remote_ip_window(link::FrmRemoteIp& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_link_window(link::FrmLink& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_server_window(link::FrmServer& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_diagnostics_window(diagnostics::FrmDiagnostics& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_changes_window(history::FrmChanges& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_compare_window(history::FrmCompare& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_journal_window(history::FrmJournal& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_restore_points_window(history::FrmRestorePoints& form, QtHost& host);
std::unique_ptr<FormWindow> make_sflash_window(flash::FrmSflash& form, QtHost& host);
std::unique_ptr<FormWindow> make_frm_flash_check_window(flash::FrmFlashCheck& form, QtHost& host);

} // namespace ecu::desktop
