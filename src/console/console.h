// The whole console with no window: every form, all shared state and everything that acts on them, constructed in the
// order in which they need one another, and wired together. The desktop shows the forms, the command line and the
// tests use them without.
#pragma once

#include "autotune/autotune.h"
#include "calibration/calibration_image.h"
#include "calibration/transfer.h"
#include "configuration/configuration_page.h"
#include "console/forms.h"
#include "diagnostics/diagnostics.h"
#include "flash/flash_check.h"
#include "flash/flash_utility.h"
#include "history/compare_window.h"
#include "history/journal_window.h"
#include "history/points_window.h"
#include "history/two_calibrations.h"
#include "link/ecu_comm.h"
#include "link/link_check.h"
#include "link/link_selection.h"
#include "link/remote_client.h"
#include "link/remote_server.h"
#include "logging/plotter.h"
#include "maps/additional_mapping.h"
#include "maps/basic_mapping.h"
#include "maps/block_modifier.h"
#include "maps/gpo_mapping.h"
#include "maps/graphing.h"
#include "maps/surface_window.h"
#include "messages/live_decoder.h"
#include "messages/reply_decoders.h"
#include "shell/about.h"
#include "shell/main_console.h"
#include "shell/polling.h"
#include "shell/start_up.h"
#include "shell/units.h"
#include "views/dashboard.h"
#include "views/monitor.h"

namespace ecu::console {

class Console {
public:
    // Everything that `ports` refers to must outlive the console. Whoever shows the forms sets the registry's host.
    explicit Console(const platform::Ports& ports);
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Start-up by the files of the working folder, then the main window and the timers. `command_line` is "demo" or
    // empty. Ends the program where a start-up file is missing.
    void start(std::string_view command_line);

    // For a program that ends from wherever it stands: leaves nothing behind that the system would not clear away.
    void before_end();

    // In the order of construction. What a program without windows needs of the console it takes from here.
    const platform::Ports ports;
    link::SharedState state;
    calibration::Scales scales;
    messages::EcuLiveData live;
    calibration::CalibrationImage image;
    Forms forms;

    std::unique_ptr<platform::SerialPort> comm1;
    std::unique_ptr<platform::DatagramSocket> outgoing_sock;
    std::unique_ptr<platform::DatagramSocket> incomming_sock;
    link::EcuComm comm;
    link::LinkSelection link_selection;
    link::RemoteClient remote_client;
    link::RemoteServer remote_server;
    messages::LiveDecoder live_decoder;
    messages::ReplyDecoders reply_decoders;
    shell::Navigation navigation;
    shell::Polling polling;
    shell::Units units;
    shell::About about;
    shell::MainConsole main_console;
    views::Monitor monitor;
    views::Dashboard dashboard;
    maps::MapCellColours map_cell_colours;
    maps::BlockSelection block_selection;
    maps::Graphing graphing;
    maps::SurfaceWindow surface_window;
    maps::BlockModifier block_modifier;
    maps::BasicMapping basic_mapping;
    maps::GpoMapping gpo_mapping;
    maps::AdditionalMapping additional_mapping;
    configuration::ConfigurationPage configuration_page;
    logging::Plotter plotter;
    autotune::Autotune autotune;
    calibration::Transfer transfer;
    diagnostics::Diagnostics diagnostics;
    flash::FlashUtility flash_utility;
    history::HistoryFile history_file;
    history::Journal journal;
    history::SendChanges send_changes;
    link::LinkCheck link_check;
    flash::FlashCheck flash_check;
    history::ChangesWindow changes_window;
    history::CompareWindow compare_window;
    history::PointsWindow points_window;
    history::JournalWindow journal_window;
    history::TwoCalibrations two_calibrations;

private:
    static shell::Navigation with_views(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                                        link::LinkSelection& link_selection, Forms& forms);
    void wire();
    void wire_history();
    std::string where_the_tuner_is() const;
};

} // namespace ecu::console
