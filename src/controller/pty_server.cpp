#include "controller/pty_server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <system_error>
#include <termios.h>
#include <time.h>
#include <unistd.h>

namespace ecu::controller {

namespace {

constexpr double longest_sleep = 1;   // seconds; the engine runs on and the state is looked at
constexpr double spin_before = 40e-6; // a sleeping process wakes up later than it asked for

std::int64_t monotonic_nanoseconds() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * std::int64_t{1000000000} + time.tv_nsec;
}

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

} // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

void Descriptor::close() {
    if (number_ >= 0) {
        ::close(number_);
        number_ = -1;
    }
}

PtyServer::PtyServer(VirtualController& controller)
    : controller_(controller), master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), started_(monotonic_nanoseconds()) {
    if (!master_.open() || grantpt(master_.get()) != 0 || unlockpt(master_.get()) != 0) {
        fail("no pseudo-terminal can be opened");
    }
    device_ = ptsname(master_.get());
    slave_ = Descriptor(::open(device_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios settings{};
    if (!slave_.open() || tcgetattr(slave_.get(), &settings) != 0) {
        fail("the pseudo-terminal cannot be set up");
    }
    cfmakeraw(&settings);
    cfsetspeed(&settings, B38400);
    if (tcsetattr(slave_.get(), TCSANOW, &settings) != 0 || fcntl(master_.get(), F_SETFL, O_NONBLOCK) != 0) {
        fail("the pseudo-terminal cannot be set up");
    }
    prctl(PR_SET_TIMERSLACK, 1UL); // sleeps as short as asked for
}

double PtyServer::now() const { return static_cast<double>(monotonic_nanoseconds() - started_) * 1e-9; }

void PtyServer::serve(int end_fd, const std::function<void()>& when_idle) {
    double last_idle = now();
    while (wait(end_fd)) {
        take_in();
        if (controller_.unplugged()) {
            master_.close();
            slave_.close();
            return;
        }
        hand_out();
        if (!controller_.next_output() && now() - last_idle >= longest_sleep) {
            last_idle = now();
            controller_.firmware().advance_to(last_idle);
            when_idle();
        }
    }
}

bool PtyServer::wait(int end_fd) {
    const double due = controller_.next_output().value_or(now() + longest_sleep);
    std::array<pollfd, 2> watched{{{master_.get(), POLLIN, 0}, {end_fd, POLLIN, 0}}};
    const double seconds = std::max(0.0, due - spin_before - now());
    const double whole = std::floor(seconds);
    const timespec timeout{static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
    ppoll(watched.data(), watched.size(), &timeout, nullptr);
    if (watched[1].revents != 0) {
        return false;
    }
    if (watched[0].revents == 0 && controller_.next_output()) {
        while (now() < due) { // at most spin_before
        }
    }
    return true;
}

void PtyServer::take_in() {
    std::array<std::uint8_t, 4096> bytes;
    const ssize_t count = ::read(master_.get(), bytes.data(), bytes.size());
    if (count > 0) {
        controller_.receive(std::span(bytes).first(static_cast<std::size_t>(count)), now());
    }
}

// What no client takes is lost when the terminal's buffer is full, as on a wire.
void PtyServer::hand_out() {
    const std::optional<double> due = controller_.next_output();
    if (!due || *due > now()) {
        return;
    }
    const std::vector<std::uint8_t> bytes = controller_.take_output(now());
    [[maybe_unused]] const ssize_t written = ::write(master_.get(), bytes.data(), bytes.size());
}

} // namespace ecu::controller
