// The behaviour of the window "Check the Link". While it is open it looks on at what the console does anyway; it sends
// nothing but the live block's harmless question, and that only when its button is pressed.
#pragma once

#include "link/frm_link.h"
#include "link/link_selection.h"

namespace ecu::link {

class LinkCheck {
public:
    static constexpr int questions = 100;

    struct Use {
        const platform::Ports& ports;
        SharedState& state;
        EcuComm& comm;
        LinkSelection& link_selection;
        platform::SerialPort& comm1;
        FrmLink& form;
    };
    explicit LinkCheck(const Use& use);

    void open();
    const LinkDoctor& doctor() const { return doctor_; }

private:
    void ask_when_idle();
    void ask();
    void look_at_port();
    void show();
    void show_figures();
    void show_trace();
    std::vector<std::string> filtered(std::size_t at_most, std::size_t& matching) const;
    void save_trace();
    LinkState link_state() const;

    Use use_;
    LinkDoctor doctor_;
    PortFacts port_;
    std::string shown_; // what the trace's text was made from
    bool wanted_ = false;
    bool asking_ = false;
};

} // namespace ecu::link
