// The flash utility over a real pseudo-terminal at 19200 baud: the rate of record bytes from the first to the monitor's
// last word, over the wire's. A pseudo-terminal does not tell what waits in its output, so the port here is followed by
// a clock that does, as a serial driver's queue would.
#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "bench/controller_process.h"
#include "cli/terminal_desktop.h"
#include "console/console.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

double now() { return Seconds(Clock::now().time_since_epoch()).count(); }

struct Traffic {
    std::size_t most_waiting = 0; // as a line is added
    std::size_t bytes = 0;        // since the last single character
    double began = 0;
};

class QueuedPort final : public ecu::platform::SerialPort {
public:
    QueuedPort(std::unique_ptr<SerialPort> port, Traffic& traffic) : port_(std::move(port)), traffic_(traffic) {}
    std::string open(int number, int baud) override {
        byte_seconds_ = 10.0 / baud;
        return port_->open(number, baud);
    }
    void close() override { port_->close(); }
    bool is_open() const override { return port_->is_open(); }
    void write(std::span<const std::uint8_t> bytes) override {
        if (bytes.size() == 1) {
            traffic_ = {};
        } else {
            traffic_.began = traffic_.bytes == 0 ? now() : traffic_.began;
            traffic_.bytes += bytes.size();
            traffic_.most_waiting = std::max(traffic_.most_waiting, output_pending());
        }
        free_ = std::max(free_, now()) + static_cast<double>(bytes.size()) * byte_seconds_;
        port_->write(bytes);
    }
    std::uint32_t openings() const override { return port_->openings(); }
    std::size_t available() const override { return port_->available(); }
    std::vector<std::uint8_t> read(std::size_t at_most) override { return port_->read(at_most); }
    void discard_input() override { port_->discard_input(); }
    std::size_t output_pending() const override {
        return port_->output_pending() + static_cast<std::size_t>(std::max(0.0, free_ - now()) / byte_seconds_);
    }
    void drain_output(int milliseconds) override {
        std::this_thread::sleep_for(Seconds(std::clamp(free_ - now(), 0.0, milliseconds / 1000.0)));
        port_->drain_output(0);
    }
    std::string device_of(int number) const override { return port_->device_of(number); }

private:
    std::unique_ptr<SerialPort> port_;
    Traffic& traffic_;
    double byte_seconds_ = 1;
    double free_ = 0;
};

// Agrees to everything, chooses the record file, and shows nothing.
class Desktop final : public ecu::platform::Dialogs, public ecu::platform::FormHost, public ecu::platform::SerialPorts {
public:
    explicit Desktop(ecu::platform::Timers& timers) : timers_(timers) {}
    ecu::platform::Answer message_box(const ecu::platform::MessageBox& box) override {
        std::fprintf(stderr, "  (%s)\n", box.text.c_str());
        return ecu::platform::Answer::ok;
    }
    std::string open_file(const ecu::platform::FileDialog&) override { return record_file; }
    std::string save_file(const ecu::platform::FileDialog&) override { return ""; }
    void form_shown(ecu::platform::Form& form) override {
        timers_.post([&form] { form.activate(); });
    }
    void form_hidden(ecu::platform::Form&) override {}
    void form_changed(ecu::platform::Form&, ecu::platform::FormChange) override {}
    void run_modal(ecu::platform::Form& form) override { form.hide(); }
    void control_changed(ecu::platform::Control&, ecu::platform::Property) override {}
    std::unique_ptr<ecu::platform::SerialPort> make_serial_port() override {
        return std::make_unique<QueuedPort>(ports_.make_serial_port(), traffic);
    }

    std::string record_file;
    Traffic traffic;

private:
    ecu::platform::Timers& timers_;
    ecu::adapters::QtSerialPorts ports_;
};

// `count` records of 32 data bytes and the end record.
void write_records(const std::string& path, int count) {
    std::ofstream file(path, std::ios::binary);
    const auto record = [&file](char type, const std::string& body) {
        std::array<char, 3> hex{};
        std::snprintf(hex.data(), hex.size(), "%02X", static_cast<unsigned>(body.size() / 2 + 1));
        const std::string counted = hex.data() + body;
        unsigned sum = 0;
        for (std::size_t i = 0; i < counted.size(); i += 2) {
            sum += static_cast<unsigned>(std::stoul(counted.substr(i, 2), nullptr, 16));
        }
        std::snprintf(hex.data(), hex.size(), "%02X", 0xFFU & ~sum);
        file << 'S' << type << counted << hex.data() << "\r\n";
    };
    for (int i = 0; i < count; ++i) {
        std::array<char, 7> address{};
        std::snprintf(address.data(), address.size(), "%06X", static_cast<unsigned>(i * 32));
        record('2', address.data() + std::string(64, '5'));
    }
    record('8', "000000");
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_NO_GLIB", "1");
    QCoreApplication application(argc, argv);
    const ecu::bench::ControllerProcess controller(ecu::bench::controller_program(argv[0]), {"--pace", "38400"});
    ecu::adapters::QtClock clock;
    ecu::adapters::QtWaiting waiting;
    ecu::adapters::QtTimers timers;
    ecu::adapters::QtDatagramSockets sockets;
    ecu::cli::TerminalDesktop terminal;
    Desktop desktop(timers);
    desktop.record_file = (std::filesystem::temp_directory_path() / "ecu-flash-bench.s19").string();
    write_records(desktop.record_file, 600);
    ecu::console::Console console({clock, waiting, timers, desktop, terminal, desktop, sockets});
    console.forms.registry.set_host(&desktop);
    console.state.comm_port_number = 1;
    console.forms.frm_ecu.menu_tool_reflash.click();
    console.forms.frm_ecu.menu_tool_flash_utility.click();
    console.ports.wait_seconds(0.5F);
    ecu::flash::FrmSflash& form = console.forms.sflash;
    form.flash_button.press();
    // The terminal wraps what the monitor says, so only the last word's end is looked for.
    ecu::platform::wait_until(waiting, clock, 5, [&] {
        std::string said = form.terminal.text();
        std::erase(said, '\n');
        return said.ends_with("done, starting");
    });
    const double took = now() - desktop.traffic.began;
    const double wire = static_cast<double>(desktop.traffic.bytes) * 10 / ecu::flash::flash_baud;
    std::printf("flash: rate of record bytes / wire   %.4f   (%zu bytes in %.2f s; at least 0.98)\n", wire / took,
                desktop.traffic.bytes, took);
    std::printf("most characters waiting at a line    %zu      (at most 128)\n", desktop.traffic.most_waiting);
    std::filesystem::remove(desktop.record_file);
    return 0;
}
