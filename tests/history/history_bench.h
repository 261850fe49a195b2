// A whole console with its history file in simulated time, wired to the virtual controller.
#pragma once

#include "calibration/written_value.h"
#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>

namespace ecu::test {

using calibration::FileKey;
using calibration::parameter;
using calibration::table;
using history::JournalRow;
using history::LineState;
using platform::Form;

class HistoryTest : public testing::Test {
protected:
    explicit HistoryTest(const controller::Settings& settings = {.firmware = {}, .faults = {}, .pace_baud = 38400})
        : wired(desktop, desktop.line(), settings) {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", tiny_jpeg);
        desktop.write_file("OEM.TXT", "text of the installer");
        start();
    }
    void start() {
        console = std::make_unique<console::Console>(desktop.ports());
        console->forms.registry.set_host(&desktop);
        console->start("");
        desktop.run_for(0.2);
        console->link_selection.open_comm_link();
    }
    // What the system has of the file at this moment; what waits in the program's memory is not in it.
    void freeze() {
        for (const char* name : {"history.sqlite", "history.sqlite-wal"}) {
            std::filesystem::copy_file(desktop.path(name), desktop.path(std::string("at_kill_") + name),
                                       std::filesystem::copy_options::overwrite_existing);
        }
    }
    // The program was killed at that moment.
    void kill() {
        console->comm1->close(); // the system does it
        console.reset();
        for (const char* name : {"history.sqlite", "history.sqlite-wal"}) {
            std::filesystem::rename(desktop.path(std::string("at_kill_") + name), desktop.path(name));
        }
    }
    void write(const FileKey& key, std::int32_t raw) {
        const auto request = calibration::write_request(key, raw);
        console->comm.poll(request.message, request.reply);
    }
    std::vector<JournalRow> rows() {
        history::HistoryFile file(desktop.folder() / history::history_name);
        std::string failure;
        auto rows = file.journal(failure);
        EXPECT_EQ(failure, "");
        return rows;
    }
    std::int32_t in_controller(const FileKey& key) {
        controller::ControllerMemory& memory = wired.controller.memory();
        return key.table != nullptr
                   ? memory.cell(static_cast<std::size_t>(key.table->base + key.index))
                   : memory.value(calibration::first_element(*key.parameter) + static_cast<std::size_t>(key.index));
    }

    SimDesktop desktop;
    WiredController wired;
    std::unique_ptr<console::Console> console;
    const FileKey cell{.table = &table("MAPM"), .index = 5};
    const FileKey rate{.parameter = &parameter("ACC_RATE")};
    const FileKey offset{.parameter = &parameter("INJO"), .index = 3};
};

} // namespace ecu::test
