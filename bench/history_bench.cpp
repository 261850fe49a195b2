// The history's budgets: the comparison of two full calibrations, from their texts to the list of differences, and what
// the journal adds to a message that sets a value. Prints one line per row.
#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "bench/controller_process.h"
#include "calibration/written_value.h"
#include "cli/terminal_desktop.h"
#include "console/console.h"
#include "history/difference.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;

double median(std::vector<double> times) {
    std::ranges::sort(times);
    return times.at(times.size() / 2);
}

double milliseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

std::string setup_text(int plus) {
    std::string text;
    for (const ecu::calibration::FileKey& key : ecu::calibration::Snapshot::all_keys()) {
        text += key.table != nullptr ? ecu::calibration::file_line(*key.table, key.index, 100 + plus)
                                     : ecu::calibration::file_line(*key.parameter, key.index, 100 + plus);
    }
    return text;
}

double comparison_ms() {
    const std::string a_text = setup_text(0);
    const std::string b_text = setup_text(1); // every value differs
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        const auto start = Clock::now();
        const auto a = ecu::calibration::values_of(a_text);
        const auto b = ecu::calibration::values_of(b_text);
        const auto list = ecu::history::differences(ecu::calibration::compare(a, b), a, b, {});
        times.push_back(milliseconds_since(start));
        if (list.size() < 2000) {
            throw std::runtime_error("the calibrations were not compared");
        }
    }
    return median(times);
}

struct Rig {
    ecu::adapters::QtClock clock;
    ecu::adapters::QtWaiting waiting;
    ecu::adapters::QtTimers timers;
    ecu::adapters::QtSerialPorts serial_ports;
    ecu::adapters::QtDatagramSockets sockets;
    ecu::cli::TerminalDesktop terminal;
    QTemporaryDir folder;
    ecu::console::Console console{
        {clock, waiting, timers, terminal, terminal, serial_ports, sockets, folder.path().toStdString()}};

    Rig() {
        console.forms.registry.set_host(&terminal);
        console.state.comm_port_number = 1;
        console.link_selection.open_comm_link();
    }
};

// Before a write goes out, which is all that the message waits for; the disk is the timer's.
double journal_us() {
    Rig rig;
    std::vector<double> times;
    rig.console.comm.before_sending = [&times, journal = rig.console.comm.before_sending](const auto& request) {
        const auto start = Clock::now();
        journal(request);
        times.push_back(milliseconds_since(start) * 1000);
    };
    const ecu::calibration::FileKey cell{.table = ecu::calibration::find_table("MAPM"), .index = 5};
    for (int i = 0; i < 3000; ++i) {
        const auto request = ecu::calibration::write_request(cell, i % 256);
        rig.console.comm.poll(request.message, request.reply);
        if (!rig.console.state.reply_accepted) {
            throw std::runtime_error("a write got no answer");
        }
    }
    if (rig.console.journal.writes() != times.size() || !rig.console.journal.flush()) {
        throw std::runtime_error("the journal was not kept");
    }
    return median(times);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_NO_GLIB", "1"); // as the command line program does
    QCoreApplication application(argc, argv);
    std::printf("comparison of two full calibrations: %.1f ms (budget 50)\n", comparison_ms());
    const ecu::bench::ControllerProcess controller(ecu::bench::controller_program(argv[0]), {});
    std::printf("journal, a write's share before it goes out: %.1f us (budget 20)\n", journal_us());
    return 0;
}
