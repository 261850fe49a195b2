#include "adapters/end_signals.h"

#include <QSocketNotifier>

#ifndef _WIN32
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ecu::adapters {

#ifdef _WIN32

class EndSignals::Watch {
public:
    explicit Watch(std::function<void()>) {}
};

#else

namespace {

// A signal's handler may do little more than write a byte; it reaches nothing but what stands here.
volatile std::sig_atomic_t signal_pipe = -1;

void note_signal(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signal_pipe, &byte, 1);
}

void handle_with(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

class EndSignals::Watch {
public:
    explicit Watch(std::function<void()> end) {
        std::signal(SIGXFSZ, SIG_IGN);
        if (::pipe(pipe_) != 0) {
            return; // the signals keep their hard meaning
        }
        for (const int fd : pipe_) {
            fcntl(fd, F_SETFD, FD_CLOEXEC);
        }
        signal_pipe = pipe_[1];
        notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, end = std::move(end)] {
            char byte = 0;
            if (::read(pipe_[0], &byte, 1) == 1) {
                end();
            }
        });
        handle_with(note_signal);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() {
        if (notifier_) {
            handle_with(SIG_DFL);
            signal_pipe = -1;
            ::close(pipe_[0]);
            ::close(pipe_[1]);
        }
    }

private:
    int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

#endif

EndSignals::EndSignals(std::function<void()> end) : watch_(std::make_unique<Watch>(std::move(end))) {}

EndSignals::~EndSignals() = default;

} // namespace ecu::adapters
