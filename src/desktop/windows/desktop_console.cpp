#include "desktop/windows/desktop_console.h"

#include "controller/rehearsal.h"
#include "desktop/windows/windows.h"

namespace ecu::desktop {

namespace {

constexpr const char* channels_key = "plotter/channels";
constexpr const char* interval_key = "plotter/interval";

} // namespace

DesktopConsole::DesktopConsole(const QString& settings)
    : console_({clock_, waiting_, timers_, dialogs_, program_, serial_ports_, datagram_sockets_}),
      remembered_(settings.isEmpty() ? std::make_unique<Remembered>() : std::make_unique<Remembered>(settings)),
      appearance_(console_.forms.frm_ecu, *remembered_), host_(remembered_.get()),
      finder_(host_, console_.navigation, console_.forms.frm_ecu, console_.state), guide_(console_.forms.frm_ecu) {
    program_.before_end = [this] {
        remember_chart();
        console_.before_end();
    };
    recall_chart();
    console_.flash_check.make_monitor = controller::rehearsal_monitor<flash::Monitor>;
    add_windows();
    console_.forms.registry.set_host(&host_);
}

DesktopConsole::~DesktopConsole() { remember_chart(); }

// Which channels are drawn, by a mark for each, and the logging interval by its place in the menu.
void DesktopConsole::recall_chart() {
    logging::FrmPlotter& plotter = console_.forms.frm_plotter;
    const QString channels = remembered_->value(channels_key).toString();
    if (channels.size() == static_cast<qsizetype>(plotter.Check3d1.size())) {
        for (platform::CheckBox& box : plotter.Check3d1) {
            box.set_checked(channels.at(box.index()) == '1');
        }
    }
    bool kept = false;
    const int interval = remembered_->value(interval_key).toInt(&kept);
    if (kept && interval >= 0 && interval < static_cast<int>(plotter.menu_log_int.size())) {
        plotter.menu_log_int[static_cast<std::size_t>(interval)].click();
    }
}

void DesktopConsole::remember_chart() {
    const logging::FrmPlotter& plotter = console_.forms.frm_plotter;
    QString channels;
    for (const platform::CheckBox& box : plotter.Check3d1) {
        channels.append(box.checked() ? '1' : '0');
    }
    remembered_->set_value(channels_key, channels);
    for (const platform::MenuItem& item : plotter.menu_log_int) {
        if (item.checked()) {
            remembered_->set_value(interval_key, item.index());
        }
    }
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
