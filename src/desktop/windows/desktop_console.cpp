#include "desktop/windows/desktop_console.h"

#include "controller/rehearsal.h"
#include "desktop/windows/windows.h"

namespace ecu::desktop {

DesktopConsole::DesktopConsole()
    : console_({clock_, waiting_, timers_, dialogs_, program_, serial_ports_, datagram_sockets_}) {
    program_.before_end = [this] { console_.before_end(); };
    console_.flash_check.make_monitor = controller::rehearsal_monitor<flash::Monitor>;
    add_windows();
    console_.forms.registry.set_host(&host_);
}

void DesktopConsole::add_windows() {
    console::Forms& forms = console_.forms;
    const auto add = [this](auto& form, auto make) {
        host_.add(form.form, [this, &form, make] { return make(form, host_); });
    };
    add(forms.frm_ecu, make_frm_ecu_window);
    add(forms.frm_about, make_frm_about_window);
    add(forms.frm_dialog, make_frm_dialog_window);
    add(forms.frm_retries, make_frm_retries_window);
    add(forms.frm_wait, make_frm_wait_window);
    add(forms.frm_mon, make_frm_mon_window);
    add(forms.frm_dashboard, make_frm_dashboard_window);
    add(forms.frm_plotter, make_frm_plotter_window);
    add(forms.frm_tool, make_frm_tool_window);
    add(forms.frm_3d, make_frm_3d_window);
    add(forms.frm_2d, make_frm_2d_window);
    add(forms.frm_3d_graph, make_frm_3d_graph_window);
    add(forms.frm_cellblock_modifier, make_frm_cellblock_modifier_window);
    add(forms.frm_sup, make_frm_sup_window);
    add(forms.frm_autotune, make_frm_autotune_window);
    add(forms.frm_remote_ip, make_frm_remote_ip_window);
    add(forms.frm_server, make_frm_server_window);
    add(forms.frm_diagnostics, make_frm_diagnostics_window);
    add(forms.sflash, make_sflash_window);
    add(forms.frm_link, make_frm_link_window);
    add(forms.frm_flash_check, make_frm_flash_check_window);
    add(forms.frm_changes, make_frm_changes_window);
    add(forms.frm_compare, make_frm_compare_window);
    add(forms.frm_journal, make_frm_journal_window);
    add(forms.frm_restore_points, make_frm_restore_points_window);
}

} // namespace ecu::desktop
