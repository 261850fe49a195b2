#include "adapters/end_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ecu::adapters {

#ifdef Q_OS_UNIX

namespace {

volatile std::sig_atomic_t told_at = -1; // the end of the pipe that the handler writes to

void tell(int signal) {
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(told_at, &byte, 1);
}

} // namespace

void on_end_signal(std::function<void(int signal)> asked_to_end) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // then a signal does what it does by itself
    }
    told_at = ends[1];
    auto* notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, QCoreApplication::instance()); // NOLINT: Qt's
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [from = ends[0], asked_to_end = std::move(asked_to_end)] {
                         unsigned char signal = 0;
                         if (::read(from, &signal, 1) == 1) {
                             asked_to_end(signal);
                         }
                     });
    struct sigaction noted {};
    noted.sa_handler = tell;
    noted.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &noted, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond the limit is an error of its writing
}

#else
void on_end_signal(std::function<void(int)>) {}
#endif

} // namespace ecu::adapters
