// The flash utility's behaviour. It takes the serial port away from the normal link and gives the monitor a record file
// line by line, exactly as the file has them: without line ends, unless characters are sent one by one. The monitor
// alone checks the records; an "E" from it, a halt and a lost port end a run alike, and the next run begins anew.
// During a run the port is opened by nobody, so that no line goes to a device that has missed others.
#pragma once

#include "flash/frm_sflash.h"
#include "flash/record_file.h"
#include "flash/terminal.h"
#include "link/shared_state.h"
#include "platform/ports.h"

namespace ecu::flash {

inline constexpr int flash_baud = 19200;

class FlashUtility {
public:
    // `comm1` is the normal link's port, `main_form` the window that hides while this one shows.
    FlashUtility(const platform::Ports& ports, link::SharedState& state, platform::SerialPort& comm1,
                 platform::Form& main_form, FrmSflash& form);

    void open();
    void close_port() { port_->close(); } // for a program that ends
    bool flashing() const { return flashing_; }

private:
    enum class End : std::uint8_t { complete, error, halted, port_lost };

    void opened();
    bool take_over_serial_port();
    void show_port();
    void monitor_check();
    void send(std::string_view text);
    void read_monitor_output();
    void show_terminal();

    void flash_program();
    bool monitor_answers();
    bool choose_file();
    void run();
    End send_lines();
    bool send_line(std::string_view line);
    bool await_room();
    bool port_lost() const;
    void show_progress(std::size_t line, bool now);
    void tell_end(End end);
    void set_flashing(bool flashing);
    void close_requested();
    void leave();

    const platform::Ports& ports_;
    link::SharedState& state_;
    platform::SerialPort& comm1_;
    platform::Form& main_form_;
    FrmSflash& form_;
    std::unique_ptr<platform::SerialPort> port_;
    std::unique_ptr<platform::Timer> timer1_;
    Terminal terminal_;
    RecordFile file_;
    std::string file_name_;
    bool preparing_ = false; // from the press of Flash Program to the run or its refusal
    bool flashing_ = false;
    bool flash_halt_ = false;
    bool leave_at_end_ = false;
    std::uint32_t opening_ = 0; // of the port, which the run belongs to
    float run_began_ = 0;
    float progress_shown_ = 0;
    std::size_t bytes_sent_ = 0;
};

} // namespace ecu::flash
