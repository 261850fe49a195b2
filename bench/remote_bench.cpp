// The remote link over loopback: one A transaction of a client against the wire time at the server's serial port, and
// the served client's rate with ten thousand junk datagrams a second beside it. The server is the console with its
// windows, the client and the junk are processes of their own; all datagrams stay on 127.0.0.1, and the junk ends by
// itself after a count and a time.
#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "bench/controller_process.h"
#include "cli/terminal_desktop.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

namespace {

using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;
constexpr double wire_seconds = (8 + 65) * 10 / 38400.0;
constexpr double junk_seconds = 5;
constexpr int junk_a_second = 10'000;

// Serves until its input ends; says "ready" when a client may come.
int serve(QApplication& application) {
    QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    std::ofstream("port.cfg") << "1\n";
    QPixmap picture(8, 8);
    picture.fill(Qt::black);
    picture.save("OEM.JPG");
    std::ofstream("OEM.TXT") << "bench\n";
    ecu::desktop::theme::apply(application);
    ecu::desktop::DesktopConsole desktop;
    desktop.console().start("");
    desktop.ports().wait_seconds(0.2F);
    desktop.console().forms.frm_ecu.menu_remote_setup_start_server.click();
    desktop.ports().wait_seconds(0.5F);
    std::puts("ready");
    std::fflush(stdout);
    std::thread([] { // ended by the benchmark, which closes the pipe
        const auto started = Clock::now();
        while (std::getchar() != EOF) {
        }
        rusage use{};
        getrusage(RUSAGE_SELF, &use);
        const double used = static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
                            1e-6 * static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec);
        std::printf("%.1f %ld\n", used / Seconds(Clock::now() - started).count() * 100, use.ru_maxrss / 1024);
        std::fflush(stdout);
        std::_Exit(0);
    })
        .detach();
    return QApplication::exec();
}

int send_junk(std::uint16_t port) {
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
    const std::array<QByteArray, 4> junk{QByteArray("MARCO"), QByteArray("\x41\x02\x08\x41\x30\x30\x30\xDB\x00", 9),
                                         QByteArray("x"), QByteArray(500, 'x')};
    const auto start = Clock::now();
    int sent = 0;
    for (const int all = static_cast<int>(junk_seconds * junk_a_second); sent < all;) {
        const double elapsed = Seconds(Clock::now() - start).count();
        if (elapsed > 2 * junk_seconds) {
            break;
        }
        for (const int due = std::min(all, static_cast<int>(elapsed * junk_a_second)); sent < due; ++sent) {
            socket.writeDatagram(junk[static_cast<std::size_t>(sent) % junk.size()],
                                 QHostAddress(QHostAddress::LocalHost), port);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::printf("%.0f\n", sent / Seconds(Clock::now() - start).count());
    return 0;
}

struct Client {
    ecu::adapters::QtClock clock;
    ecu::adapters::QtWaiting waiting;
    ecu::adapters::QtTimers timers;
    ecu::adapters::QtSerialPorts serial_ports;
    ecu::adapters::QtDatagramSockets sockets;
    ecu::cli::TerminalDesktop terminal;
    ecu::console::Console console{{clock, waiting, timers, terminal, terminal, serial_ports, sockets}};

    Client() {
        console.forms.registry.set_host(&terminal);
        if (!console.remote_client.greet("127.0.0.1", [] { return false; }).answered) {
            throw std::runtime_error("the server did not answer");
        }
        console.state.remote_server_ip = "127.0.0.1";
        console.link_selection.open_comm_link();
    }
    double transaction() {
        const auto start = Clock::now();
        if (console.comm.send_ecu_message({'A'}, 63) != ecu::link::Outcome::accepted) {
            throw std::runtime_error("a transaction got no answer");
        }
        return Seconds(Clock::now() - start).count();
    }
    double median(int transactions) {
        std::vector<double> times;
        for (int i = 0; i < transactions; ++i) {
            times.push_back(transaction());
        }
        std::ranges::sort(times);
        return times[times.size() / 2];
    }
    double rate(double seconds) {
        const auto start = Clock::now();
        int done = 0;
        while (Seconds(Clock::now() - start).count() < seconds) {
            transaction();
            ++done;
        }
        return done / Seconds(Clock::now() - start).count();
    }
};

std::uint16_t free_port() {
    QUdpSocket probe;
    probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return probe.localPort();
}

int measure(const QString& own) {
    const std::uint16_t server_port = free_port();
    qputenv("ECU_REMOTE_PORTS", QByteArray::number(free_port()) + ',' + QByteArray::number(server_port));
    const ecu::bench::ControllerProcess controller(ecu::bench::controller_program(own.toStdString()),
                                                   {"--pace", "38400"});
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(own, {"serve"});
    while (server.state() != QProcess::NotRunning && !server.canReadLine()) {
        server.waitForReadyRead(5000);
    }
    server.readLine();
    Client client;
    const double median = client.median(300);
    std::printf("A over the remote link / wire time   %.4f   (%.2f ms over %.2f ms; at most 1.05)\n",
                median / wire_seconds, median * 1000, wire_seconds * 1000);
    const double quiet = client.rate(junk_seconds - 1);
    QProcess junk;
    junk.start(own, {"junk", QString::number(server_port)});
    junk.waitForStarted();
    const double beside = client.rate(junk_seconds - 1);
    junk.waitForFinished(20000);
    std::printf(
        "rate beside junk / without           %.3f   (%.1f over %.1f a second, %.0f junk datagrams a second; at "
        "least 0.8)\n",
        beside / quiet, beside, quiet, QString(junk.readAll()).toDouble());
    server.closeWriteChannel();
    server.waitForFinished(5000);
    const auto used = QString(server.readAll()).split(' ');
    std::printf("the server meanwhile                 %s %% of a core, %s MB at most\n", qPrintable(used.value(0)),
                qPrintable(used.value(1).trimmed()));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool server = argc > 1 && std::string_view(argv[1]) == "serve";
    server ? qunsetenv("QT_NO_GLIB") : qputenv("QT_NO_GLIB", "1"); // each as the program that it stands for
    QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    if (server) {
        return serve(application);
    }
    return words.value(1) == "junk" ? send_junk(words.value(2).toUShort()) : measure(words[0]);
}
