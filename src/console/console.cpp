#include "console/console.h"

#include "maps/correction_axes.h"

namespace ecu::console {

using link::View;

Console::Console(const platform::Ports& machine)
    : ports(machine), image(scales), forms(ports.timers), comm1(ports.serial_ports.make_serial_port()),
      outgoing_sock(ports.datagram_sockets.make_datagram_socket()),
      incomming_sock(ports.datagram_sockets.make_datagram_socket()),
      comm(ports, state, *comm1, *outgoing_sock, forms.frm_dialog, forms.frm_retries, forms.frm_mon.group_delay),
      link_selection(ports, state, *comm1, forms.frm_dialog, forms.frm_ecu.form),
      remote_client({ports, state, comm, *comm1, *outgoing_sock, forms.frm_remote_ip, forms.frm_ecu.form,
                     forms.frm_ecu.menu_remote_setup_start_server, forms.frm_ecu.menu_remote_setup_start_client,
                     forms.frm_ecu.menu_remote_setup_halt_client}),
      remote_server({ports, state, comm, link_selection, *comm1, *incomming_sock, forms.frm_dialog, forms.frm_server,
                     forms.frm_ecu.form}),
      live_decoder(state, live, forms.registry), reply_decoders(ports, state, image, scales, forms.registry,
                                                                [this](const link::Reply& reply, int payload_count) {
                                                                    return live_decoder.decode(reply, payload_count);
                                                                }),
      navigation(with_views(ports, state, comm, link_selection, forms)),
      polling({ports, state, live, scales, comm, navigation, forms.frm_ecu, forms.registry}),
      units(ports, scales, forms.frm_ecu), about(ports, state, comm, link_selection, forms.frm_about),
      main_console({ports, state, comm, link_selection, *comm1, navigation, units, about, forms.frm_ecu}),
      monitor(ports, state, live, scales, navigation, polling, forms.frm_mon),
      dashboard(ports, state, comm, navigation, scales, live, forms.frm_dashboard),
      graphing(ports, state, forms.frm_3d, forms.frm_3d_graph, forms.frm_2d, map_cell_colours),
      surface_window(forms.frm_3d_graph, graphing),
      block_modifier(ports, state, forms.registry, forms.frm_cellblock_modifier, block_selection),
      basic_mapping(ports, state, comm, scales, live, forms.frm_3d, forms.frm_tool.TPS_mapped, navigation,
                    block_selection, surface_window, map_cell_colours),
      gpo_mapping(ports, state, comm, scales, live, image, reply_decoders.controls(), forms.frm_sup, navigation,
                  block_selection),
      additional_mapping(ports, state, comm, scales, live, forms.frm_2d,
                         maps::Legend(forms.frm_3d.bk_color.begin(), forms.frm_3d.bk_color.end()), navigation,
                         block_selection, graphing, map_cell_colours),
      configuration_page(ports, state, comm, scales, image, reply_decoders.controls(), navigation, forms.frm_tool),
      plotter(ports, state, comm, navigation, polling.timer3(), scales, live,
              {forms.frm_mon.inj_duty[0], forms.frm_mon.ign_duty[0], forms.frm_mon.wheel_idx_num}, forms.frm_plotter),
      autotune(ports, state, forms.frm_autotune, forms.frm_3d, scales),
      transfer({ports, state, comm, link_selection, image, forms.frm_wait, forms.frm_ecu.form, shell::console_version}),
      diagnostics({ports, state, comm, navigation, polling.timer1(), live, reply_decoders.wheel_samples(),
                   forms.frm_diagnostics}),
      flash_utility(ports, state, *comm1, forms.frm_ecu.form, forms.sflash),
      history_file(ports.folder / history::history_name), journal(ports, state, comm, image, scales, history_file),
      send_changes({ports, state, comm, transfer, image, journal}),
      link_check({ports, state, comm, link_selection, *comm1, forms.frm_link}),
      flash_check({ports, forms.sflash, forms.frm_flash_check}),
      changes_window({ports, state, send_changes, scales, forms.frm_changes}),
      compare_window({ports, history_file, scales, changes_window, forms.frm_compare}),
      points_window({ports, history_file, changes_window, forms.frm_restore_points}),
      journal_window({ports, history_file, journal, changes_window, forms.frm_journal}),
      two_calibrations({ports, history_file, journal, send_changes, changes_window, forms.frm_ecu.form,
                        forms.frm_ecu.transfer_result}) {
    wire();
}

// The views that this version has. They are known before the first menu is wired, since an item that leads to a view
// that does not exist stays disabled.
shell::Navigation Console::with_views(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                                      link::LinkSelection& link_selection, Forms& forms) {
    shell::Navigation navigation(ports, state, comm, link_selection, forms.frm_ecu.form);
    navigation.add_view(View::monitor, forms.frm_mon.form);
    navigation.add_view(View::dashboard, forms.frm_dashboard.form);
    navigation.add_view(View::configuration, forms.frm_tool.form);
    navigation.add_view(View::basic_mapping, forms.frm_3d.form);
    navigation.add_view(View::gpo_mapping, forms.frm_sup.form);
    navigation.add_view(View::additional_mapping, forms.frm_2d.form);
    navigation.add_view(View::plotter, forms.frm_plotter.form);
    navigation.add_view(View::diagnostics, forms.frm_diagnostics.form);
    return navigation;
}

void Console::wire() {
    comm.set_decoders(reply_decoders.in_order());
    polling.on_refresh(View::dashboard, [this] { dashboard.refresh(); });
    polling.on_refresh(View::basic_mapping, [this] { basic_mapping.refresh_live(); });
    polling.on_refresh(View::gpo_mapping, [this] { gpo_mapping.refresh_live(); });
    reply_decoders.parameter_shown = [this](const calibration::Parameter& row, int i) {
        gpo_mapping.follow_reply(row, i);
    };
    polling.on_refresh(View::additional_mapping, [this] { additional_mapping.refresh_live(); });
    polling.on_refresh(View::none, [this] { main_console.look_around(); });
    polling.plot_and_log_sample = [this] { plotter.plot_and_log_sample(); };
    navigation.wire_menus();
    forms.link_strip.follow({ports, state, comm, *comm1,
                             [this] {
                                 return plotter.logging_active()
                                            ? "Log: " + std::to_string(plotter.log_sample_count()) + " rows"
                                            : std::string();
                             },
                             [this] { return static_cast<float>(polling.timer3().interval_ms()) / 1000; }});
    dashboard.held_changed = [this] { forms.held_note.refresh(); };
    transfer.close_files = [this] {
        if (plotter.logging_active()) {
            plotter.stop_logging();
        }
    };
    transfer.tell_result = [this](const std::string& result) {
        forms.frm_ecu.transfer_result.set_text(result);
        forms.frm_ecu.transfer_result.set_tool_tip(result);
    };
    main_console.on_upload = [this] {
        if (points_window.before("an upload")) {
            transfer.menufileopen_Click();
        }
    };
    main_console.on_download = [this] { transfer.menufilesave_Click(); };
    main_console.on_start_server = [this] { remote_server.start(); };
    main_console.on_start_client = [this] { remote_client.start(); };
    main_console.on_halt_client = [this] { remote_client.halt(); };
    live_decoder.on_dyno_row = [this] { diagnostics.dyno().on_row(); };
    live_decoder.on_dyno_finish = [this] { diagnostics.dyno().on_finish(); };
    forms.frm_ecu.menu_comm_check.clicked = [this] { link_check.open(); };
    main_console.on_flash_utility = [this] { flash_utility.open(); };
    wire_history();
    main_console.offer_what_exists();
}

void Console::wire_history() {
    main_console.on_compare = [this] { compare_window.open(); };
    main_console.on_upload_changes = [this] { changes_window.choose_file_and_show(); };
    main_console.on_restore_points = [this] { points_window.open(); };
    main_console.on_journal = [this] { journal_window.open(); };
    main_console.on_switch = [this] { two_calibrations.switch_over(); };
    main_console.before_reflash = [this] {
        two_calibrations.lose_sight();
        return points_window.before("a re-flash");
    };
    changes_window.before_sending = [this](const history::ControllerCopy& copy, const std::string& title) {
        return points_window.keep_before(copy, title);
    };
    basic_mapping.before_reset = [this](const calibration::Table& table) {
        const auto copy = send_changes.as_read(table);
        return !copy || points_window.keep_before(*copy, "reset of " + history::item_of({.table = &table}) +
                                                             " (this map alone, as it was read)");
    };
    points_window.compare_with_controller = [this](const std::string& name) {
        compare_window.open_with_controller(name);
    };
    points_window.use_as = [this](bool b, const std::string& name) { two_calibrations.choose(b, name); };
    points_window.both = [this] { return two_calibrations.both(); };
    points_window.letter_of = [this](const std::string& name) { return two_calibrations.letter_of(name); };
    journal.place = [this] { return where_the_tuner_is(); };
    journal.warn = [this](const std::string& text) {
        ports.dialogs.message_box({.text = text, .icon = platform::Icon::warning});
    };
}

// The transfer's "ECU<-tune1.set", or the view that is open by the name in its title.
std::string Console::where_the_tuner_is() const {
    if (forms.frm_wait.form.visible()) {
        return forms.frm_wait.form.caption();
    }
    const platform::Form* view = navigation.form_of(state.current_view);
    std::string name = (view != nullptr ? *view : forms.frm_ecu.form).caption();
    if (const std::size_t suffix = name.rfind(state.link_title_suffix); suffix != std::string::npos) {
        name.resize(suffix);
    }
    return name;
}

void Console::start(std::string_view command_line) {
    shell::start_up({ports, state, scales, link_selection, units, forms.frm_ecu, forms.frm_about, forms.registry,
                     [this] { maps::label_correction_axes(forms.frm_2d, scales); }},
                    command_line);
    forms.frm_ecu.form.show();
    polling.start();
}

void Console::before_end() {
    transfer.abandon();
    journal.flush();
    comm1->close();
    flash_utility.close_port();
    diagnostics.dyno().close_file();
}

} // namespace ecu::console
