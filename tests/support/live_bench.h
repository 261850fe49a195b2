// The link with a navigation and an obedient controller above it, for the views that poll: every known message is
// answered with zeros of its length, and no decoder touches the forms.
#pragma once

#include "calibration/scales.h"
#include "link/link_bench.h"
#include "messages/live_data.h"
#include "shell/navigation.h"

namespace ecu::test {

struct LiveBench : LinkBench {
    shell::Navigation navigation{ports, state, comm, selection, main_form};
    calibration::Scales scales;
    messages::EcuLiveData live;

    LiveBench() {
        sizes = {{'A', 63}, {'B', 12}, {'C', 21}, {'D', 3}, {'d', 3}, {'m', 5},
                 {'o', 5},  {129, 30}, {163, 4},  {164, 4}, {169, 4}, {207, 37}};
        controller.responder = [this](const Request& request) {
            return reply_frame({request[2]}, sizes.at(request[2]));
        };
    }
    // What went out since the last call, as "command argument argument argument" in numbers.
    std::vector<Bytes> sent() {
        std::vector<Bytes> messages = controller.messages();
        controller.clear_sent();
        return messages;
    }
    // Shows the form and lets its activation run to its end.
    void open(platform::Form& form) {
        form.set_host(&desktop);
        form.show();
        desktop.run_for(2);
    }
};

} // namespace ecu::test
