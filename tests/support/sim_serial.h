// A simulated serial line: one end is the SerialPort that the console opens, the other the peer of the test.
// Lines exist before and after the port that uses them, so a peer can be joined at any time.
#pragma once

#include "platform/serial_port.h"
#include "support/sim_events.h"

#include <deque>
#include <map>

namespace ecu::test {

using Bytes = std::vector<std::uint8_t>;

// Removes and gives up to so many bytes of the front.
Bytes take_front(std::deque<std::uint8_t>& from, std::size_t at_most);

class SimSerialLine {
public:
    explicit SimSerialLine(SimEvents& events) : events_(events) {}
    SimSerialLine(const SimSerialLine&) = delete;
    SimSerialLine& operator=(const SimSerialLine&) = delete;

    // Gets the bytes of each write when its last one has left the wire.
    std::function<void(std::span<const std::uint8_t>)> peer;
    // 10 bits a byte in both directions; 0, the start value, is no wire time.
    void pace(int baud) { pace_ = baud; }
    // Bytes for the console. They come as events, after what is on the wire already; lost when the port is closed.
    void receive(std::span<const std::uint8_t> bytes, double after_seconds = 0);
    void fail_open(int number, std::string reason) { failures_[number] = std::move(reason); }

    // The device goes away, as by a pulled plug; it can be opened again once plugged in.
    void unplug();
    void plug_in() { plugged_ = true; }

    bool is_open() const { return open_; }
    std::uint32_t openings() const { return openings_; }
    void reopen_lost();
    int baud() const { return baud_; }
    const std::vector<int>& tried() const { return tried_; } // port numbers in the order of open calls

    // The wire takes nothing more, until it goes on with what waits.
    void stall();
    void go_on();
    std::size_t waiting() const; // towards the peer
    // The most that waited as a write came.
    std::size_t most_waiting() const { return most_waiting_; }

    // The console's side. Of several ports on the line the one that opened it has it, until that one closes it.
    std::string open(int number, int baud, const void* owner = nullptr);
    void close(const void* owner);
    void close() { close(owner_); }
    bool is_open(const void* owner) const { return open_ && owner == owner_; }
    void drain(double seconds);
    void write(std::span<const std::uint8_t> bytes);
    std::size_t available() const { return input_.size(); }
    Bytes read(std::size_t at_most) { return take_front(input_, at_most); }

private:
    Microseconds byte_time() const { return pace_ > 0 ? 10'000'000 / pace_ : 0; }

    SimEvents& events_;
    int pace_ = 0;
    bool open_ = false;
    bool plugged_ = true;
    bool lost_ = false;
    int number_ = 0;
    std::uint32_t openings_ = 0;
    int baud_ = 0;
    int opening_ = 0; // counts open and close, so that bytes of an earlier opening are known
    const void* owner_ = nullptr;
    bool stalled_ = false;
    Bytes held_; // written while the wire stalls
    std::size_t waiting_at_stall_ = 0;
    std::size_t most_waiting_ = 0;
    std::map<int, std::string> failures_;
    std::vector<int> tried_;
    std::deque<std::uint8_t> input_;
    Microseconds input_free_ = 0;  // when the wire towards the console is free
    Microseconds output_free_ = 0; // when the wire towards the peer is free
};

class SimSerialPort final : public platform::SerialPort {
public:
    explicit SimSerialPort(SimSerialLine& line) : line_(line) {}
    std::string open(int number, int baud) override { return line_.open(number, baud, this); }
    void close() override { line_.close(this); }
    bool is_open() const override { return line_.is_open(this); }
    void write(std::span<const std::uint8_t> bytes) override {
        if (is_open()) {
            line_.write(bytes);
        }
    }
    void reopen_lost() override { line_.reopen_lost(); }
    std::uint32_t openings() const override { return line_.openings(); }
    std::size_t available() const override { return is_open() ? line_.available() : 0; }
    Bytes read(std::size_t at_most) override { return is_open() ? line_.read(at_most) : Bytes(); }
    std::size_t output_pending() const override { return is_open() ? line_.waiting() : 0; }
    void drain_output(int milliseconds) override { line_.drain(milliseconds / 1000.0); }
    std::string device_of(int number) const override { return "/dev/sim" + std::to_string(number); }

private:
    SimSerialLine& line_;
};

} // namespace ecu::test
