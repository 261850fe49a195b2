// The link's budgets over a real pseudo-terminal: one A transaction and a whole calibration download against their
// wire time at 38400 baud, and the software cost of a transaction on an unpaced line. Prints one line per row.
#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "bench/controller_process.h"
#include "cli/terminal_desktop.h"
#include "console/console.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

constexpr double byte_seconds = 10 / 38400.0;
using Seconds = std::chrono::duration<double>;

struct Rig {
    ecu::adapters::QtClock clock;
    ecu::adapters::QtWaiting waiting;
    ecu::adapters::QtTimers timers;
    ecu::adapters::QtSerialPorts serial_ports;
    ecu::adapters::QtDatagramSockets sockets;
    ecu::cli::TerminalDesktop terminal;
    ecu::console::Console console{{clock, waiting, timers, terminal, terminal, serial_ports, sockets}};

    Rig() {
        console.forms.registry.set_host(&terminal);
        console.state.comm_port_number = 1;
        console.link_selection.open_comm_link();
    }
    double median_seconds(int transactions) {
        std::vector<double> times;
        for (int i = 0; i < transactions + 5; ++i) {
            const auto start = std::chrono::steady_clock::now();
            console.comm.poll({'A'}, 63);
            times.push_back(Seconds(std::chrono::steady_clock::now() - start).count());
            if (!console.state.reply_accepted) {
                throw std::runtime_error("a transaction got no answer");
            }
        }
        times.erase(times.begin(), times.begin() + 5);
        std::ranges::sort(times);
        return times[times.size() / 2];
    }
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_NO_GLIB", "1"); // as the command line program does
    QCoreApplication application(argc, argv);
    const std::string program = ecu::bench::controller_program(argv[0]);
    {
        const ecu::bench::ControllerProcess controller(program, {"--pace", "38400"});
        Rig rig;
        const double wire = (8 + 65) * byte_seconds;
        const double median = rig.median_seconds(300);
        std::printf("A transaction / wire time            %.4f   (%.2f ms over %.2f ms; at most 1.03)\n", median / wire,
                    median * 1000, wire * 1000);
        const auto start = std::chrono::steady_clock::now();
        rig.console.state.tx_byte_count[1] = rig.console.state.rx_byte_count[1] = 0;
        const auto result = rig.console.transfer.download_lines("bench", [](std::string_view) { return true; });
        const double took = Seconds(std::chrono::steady_clock::now() - start).count();
        const double bytes = rig.console.state.tx_byte_count[1] + rig.console.state.rx_byte_count[1];
        std::printf("calibration download / wire time     %.4f   (%.2f s over %.2f s, %d lines; at most 1.03)\n",
                    took / (bytes * byte_seconds), took, bytes * byte_seconds, result.lines);
    }
    {
        const ecu::bench::ControllerProcess controller(program, {});
        Rig rig;
        const double median = rig.median_seconds(5000);
        {
            long bytes = 0;
            const auto watch =
                rig.console.comm.observe([&](const ecu::link::Observed& seen) { bytes += std::ssize(seen.reply); });
            const double watched = rig.median_seconds(5000);
            std::printf("cost of an observer                  %.1f us a transaction (%ld bytes seen; at most 20)\n",
                        (watched - median) * 1e6, bytes);
        }
        std::printf("transaction on an unpaced line       %.0f us (both sides; at most 150)\n", median * 1e6);
    }
    return 0;
}
