// One A reply into the live record with every label text that it writes, the monitor open: core only.
#include "console/console.h"
#include "controller/virtual_controller.h"

#include <benchmark/benchmark.h>

namespace {

// A machine on which nothing happens: decoding asks it for nothing.
class NoMachine final : public ecu::platform::Clock,
                        public ecu::platform::Waiting,
                        public ecu::platform::Timers,
                        public ecu::platform::Dialogs,
                        public ecu::platform::Program,
                        public ecu::platform::SerialPorts,
                        public ecu::platform::DatagramSockets {
    struct NoTimer final : ecu::platform::Timer {
        int interval_ms() const override { return 50; }
        void set_interval_ms(int) override {}
        bool running() const override { return false; }
        void set_running(bool) override {}
    };

public:
    float seconds_since_midnight() const override { return 43200; }
    double fine_seconds() const override { return 0; }
    std::string date_text() const override { return "01-01-2026"; }
    std::string time_text() const override { return "12:00:00"; }
    void process_events() override {}
    void wait_for_events(float) override {}
    std::unique_ptr<ecu::platform::Timer> make_timer(int) override { return std::make_unique<NoTimer>(); }
    void post(std::function<void()>) override {}
    ecu::platform::Answer message_box(const ecu::platform::MessageBox&) override { return {}; }
    std::string open_file(const ecu::platform::FileDialog&) override { return {}; }
    std::string save_file(const ecu::platform::FileDialog&) override { return {}; }
    [[noreturn]] void end(int status) override { std::exit(status); }
    std::unique_ptr<ecu::platform::SerialPort> make_serial_port() override { return nullptr; }
    std::unique_ptr<ecu::platform::DatagramSocket> make_datagram_socket() override { return nullptr; }
};

// Replies to A of a running engine, no two alike.
std::vector<ecu::link::Reply> live_replies() {
    ecu::controller::VirtualController controller;
    std::vector<ecu::link::Reply> replies;
    const ecu::link::Request request = ecu::link::build_request(std::vector<std::uint8_t>{'A'});
    for (int i = 0; i < 64; ++i) {
        const double now = 1 + i * 0.05;
        controller.receive(request, now);
        const std::vector<std::uint8_t> bytes = controller.take_output(now + 0.04);
        ecu::link::Reply& reply = replies.emplace_back();
        std::copy_n(bytes.begin(), std::min(bytes.size(), reply.size()), reply.begin());
    }
    return replies;
}

void decode_live_block(benchmark::State& state) {
    NoMachine machine;
    // EcuComm needs a port only to send.
    ecu::link::SharedState shared;
    shared.current_view = ecu::link::View::monitor;
    ecu::messages::EcuLiveData live;
    ecu::console::Forms forms(machine);
    ecu::messages::LiveDecoder decoder(shared, live, forms.registry);
    const std::vector<ecu::link::Reply> replies = live_replies();
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(decoder.decode(replies[next], 63));
        next = (next + 1) % replies.size();
    }
}
BENCHMARK(decode_live_block);

} // namespace

BENCHMARK_MAIN();
