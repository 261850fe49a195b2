// Serves a virtual engine controller on a pseudo-terminal.
#include "controller/device_link.h"
#include "controller/options.h"
#include "controller/pty_server.h"
#include "controller/state_file.h"

#include <csignal>
#include <iostream>
#include <memory>
#include <sys/signalfd.h>
#include <system_error>

namespace {

namespace controller = ecu::controller;

constexpr int bad_command_line = 2;

int complain(const std::string& text) {
    std::cerr << "ecu-controller: " << text << '\n';
    return bad_command_line;
}

// Readable as soon as the program is asked to end.
controller::Descriptor watch_end_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return controller::Descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

int run(const controller::Options& options) {
    controller::VirtualController machine(options.controller);
    const std::string& state_path = options.state_path;
    if (!state_path.empty()) {
        std::string error = controller::load_state(state_path, machine.memory());
        if (error.empty()) {
            error = controller::save_state(state_path, machine.memory()); // better now than at the end
        }
        if (!error.empty()) {
            return complain(error);
        }
    }
    const controller::Descriptor end = watch_end_signals();
    auto server = std::make_unique<controller::PtyServer>(machine);
    const auto make_link = [&] {
        return options.link_path.empty() ? std::string()
                                         : controller::make_device_link(options.link_path, server->device());
    };
    if (const std::string error = make_link(); !error.empty()) {
        return complain(error);
    }
    std::cout << server->device() << std::endl;

    controller::ControllerMemory saved = machine.memory();
    std::string error;
    const auto save_changes = [&] {
        if (!state_path.empty() && machine.memory() != saved) {
            saved = machine.memory();
            error = controller::save_state(state_path, saved);
        }
    };
    server->serve(end.get(), save_changes);
    if (machine.unplugged()) {
        std::cerr << "ecu-controller: the plug has been pulled, as asked for\n";
        save_changes();
        if (const auto other = machine.faults().replug_as(); other && !options.link_path.empty()) {
            machine.exchange(*other);
            saved = machine.memory(); // the other controller's is kept nowhere
            server = std::make_unique<controller::PtyServer>(machine);
            if (const std::string trouble = make_link(); !trouble.empty()) {
                return complain(trouble);
            }
            server->serve(end.get(), [] {});
            saved = machine.memory();
        }
    }
    save_changes();
    if (!options.link_path.empty()) {
        controller::remove_device_link(options.link_path, server->device());
    }
    return error.empty() ? 0 : complain(error);
}

} // namespace

int main(int argc, char* argv[]) {
    const controller::Options options = controller::parse_options({argv + 1, static_cast<std::size_t>(argc - 1)});
    if (!options.shown.empty()) {
        std::cout << options.shown;
        return 0;
    }
    if (!options.error.empty()) {
        return complain(options.error + "\nTry ecu-controller --help.");
    }
    try {
        return run(options);
    } catch (const std::system_error& failure) {
        return complain(failure.what());
    }
}
