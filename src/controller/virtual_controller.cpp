#include "controller/virtual_controller.h"

#include <algorithm>

namespace ecu::controller {

namespace {

constexpr double bits_per_byte = 10; // start, 8 data, stop
// A serial adapter hands bytes on in pieces of its buffer, each when its last bit is in.
constexpr std::size_t fifo_chunk = 14;

} // namespace

VirtualController::VirtualController(const Settings& settings)
    : pace_baud_(settings.pace_baud), faults_(settings.faults, settings.firmware.seed), firmware_(settings.firmware) {
    firmware_.set_wheel_fault(settings.faults.wheel);
    flash_monitor_.fail_at_line(settings.faults.flash_error_at_line);
}

double VirtualController::byte_time() const {
    if (pace_baud_ == 0) {
        return 0;
    }
    return bits_per_byte / (flash_monitor_.running() ? std::min(pace_baud_, flash_monitor_baud) : pace_baud_);
}

void VirtualController::receive(std::span<const std::uint8_t> bytes, double now) {
    for (const std::uint8_t byte : bytes) {
        line_in_free_ = std::max(line_in_free_, now) + byte_time();
        if (faults_.unplugged() || faults_.silent()) {
            continue;
        }
        if (flash_monitor_.running()) {
            serve_monitor(byte, line_in_free_);
        } else {
            pending_.push_back(byte);
            serve_requests(line_in_free_);
        }
    }
}

// Finds the requests in what has come in. A byte that begins no good request is dropped alone, so that a request
// behind noise, or behind a broken one, is still found.
void VirtualController::serve_requests(double arrival) {
    while (pending_.size() >= link::request_size) {
        link::Request request;
        std::copy_n(pending_.begin(), request.size(), request.begin());
        if (link::check_request(request) != link::FrameFault::none) {
            pending_.erase(pending_.begin());
            continue;
        }
        pending_.erase(pending_.begin(), pending_.begin() + link::request_size);
        faults_.note_request();
        if (faults_.unplugged()) {
            return;
        }
        if (on_request) {
            on_request(request);
        }
        firmware_.advance_to(arrival);
        std::vector<std::uint8_t> reply = firmware_.answer(request);
        if (!reply.empty()) {
            const double delay = faults_.befall(reply);
            send(reply, arrival + delay);
        }
        if (firmware_.stopped()) {
            pending_.clear();
            flash_monitor_.start();
        }
    }
}

void VirtualController::serve_monitor(std::uint8_t byte, double arrival) {
    const std::string said = flash_monitor_.receive(byte);
    send(std::vector<std::uint8_t>(said.begin(), said.end()), arrival);
    if (!flash_monitor_.running()) {
        if (const std::optional<std::uint16_t> revision = flash_monitor_.revision()) {
            firmware_.set_revision(*revision);
        }
        firmware_.restart();
    }
}

void VirtualController::send(std::span<const std::uint8_t> bytes, double earliest) {
    const double spacing = byte_time();
    const std::size_t piece = spacing > 0 ? fifo_chunk : bytes.size();
    line_out_free_ = std::max(earliest, line_out_free_);
    while (!bytes.empty()) {
        const auto chunk = bytes.first(std::min(piece, bytes.size()));
        bytes = bytes.subspan(chunk.size());
        line_out_free_ += static_cast<double>(chunk.size()) * spacing;
        output_.push_back({line_out_free_, {chunk.begin(), chunk.end()}});
    }
}

std::optional<double> VirtualController::next_output() const {
    return output_.empty() ? std::nullopt : std::optional(output_.front().time);
}

std::vector<std::uint8_t> VirtualController::take_output(double now) {
    std::vector<std::uint8_t> bytes;
    while (!output_.empty() && output_.front().time <= now) {
        const std::vector<std::uint8_t>& due = output_.front().bytes;
        bytes.insert(bytes.end(), due.begin(), due.end());
        output_.pop_front();
    }
    return bytes;
}

void VirtualController::exchange(std::uint32_t serial_number) {
    constexpr calibration::Table fuel = calibration::table("MAPM");
    firmware_.set_serial_number(serial_number);
    for (std::size_t at = fuel.base; at < std::size_t{fuel.base} + fuel.cells(); ++at) {
        memory().store_cell(at, static_cast<std::uint8_t>(memory().cell(at) + 1));
    }
    pending_.clear();
    output_.clear();
    faults_.plug_in();
}

} // namespace ecu::controller
