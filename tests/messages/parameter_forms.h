// The decoders with the forms that the parameter replies act on, and replies fed to them as the receiver does.
#pragma once

#include "console/forms.h"
#include "messages/reply_decoders.h"
#include "support/sim_desktop.h"

namespace ecu::test {

struct ParameterBench {
    SimDesktop desktop;
    platform::Ports ports = desktop.ports();
    link::SharedState state;
    calibration::Scales scales;
    calibration::CalibrationImage image{scales};
    console::Forms all{desktop};
    platform::FormRegistry& forms = all.registry;
    configuration::FrmTool& tool = all.frm_tool;
    maps::Frm2d& corrections = all.frm_2d;
    maps::Frm3d& mapping = all.frm_3d;
    maps::FrmSup& outputs = all.frm_sup;
    views::FrmDashboard& dashboard = all.frm_dashboard;
    messages::ReplyDecoders decoders{ports, state, image, scales, forms, {}};

    // Offers a reply of this code and data to all three decoders; whether one of them took it.
    bool receive(const Bytes& code_and_data, int surplus = 0) {
        link::Reply reply{2, static_cast<std::uint8_t>(code_and_data.size() + 4)};
        std::copy(code_and_data.begin(), code_and_data.end(), reply.begin() + 2);
        reply[code_and_data.size() + 2] = 0xEE; // the checksum must not be read as data
        reply[code_and_data.size() + 3] = 0xEE;
        state.reply_accepted = false;
        for (const link::Decoder& decoder : decoders.in_order()) {
            decoder(reply, static_cast<int>(code_and_data.size()) + 2 + surplus);
        }
        return state.reply_accepted;
    }
};

} // namespace ecu::test
