#include "diagnostics/driver_tests.h"

#include "platform/rounding.h"

namespace ecu::diagnostics {

namespace {

std::string fired_text(std::string_view drivers, std::string_view channels, link::Outcome outcome) {
    const std::string what =
        std::string(drivers) + (channels.empty() ? ": no channel" : " channel " + std::string(channels));
    switch (outcome) {
    case link::Outcome::accepted:
        return "Fired " + what;
    case link::Outcome::unanswered:
        return "No answer: whether it fired is not known (" + what + ")";
    case link::Outcome::not_sent:
        return "Not sent: there is no link to a controller";
    }
    return {};
}

} // namespace

DriverTests::DriverTests(const platform::Ports& ports, link::EcuComm& comm, WhenFree& when_free, FrmDiagnostics& form)
    : ports_(ports), comm_(comm), when_free_(when_free), form_(form) {
    for (platform::Button& button : form_.unlock_button) {
        button.clicked = [this] { unlock(); };
    }
    form_.test_injectors_button.clicked = [this] {
        fire({form_.inj_chan_test, messages::fire_injectors, "injector", form_.test_result[0]});
    };
    form_.test_ignition_button.clicked = [this] {
        fire({form_.ign_chan_test, messages::fire_ignition, "ignition", form_.test_result[1]});
    };
}

void DriverTests::lock() {
    set_unlocked(false);
    for (platform::Label& result : form_.test_result) {
        result.set_text("");
    }
}

void DriverTests::set_unlocked(bool unlocked) {
    form_.test_injectors_button.set_enabled(unlocked);
    form_.test_ignition_button.set_enabled(unlocked);
    for (platform::Button& button : form_.unlock_button) {
        button.set_enabled(!unlocked);
    }
}

void DriverTests::unlock() {
    ports_.dialogs.message_box({.text = "Testing drivers requires that the engine NOT be running, in addition, make "
                                        "certain that the driver parameters EI dwell or fuel pulse width are "
                                        "appropriate or ECU/wiring or engine damage may occur!",
                                .icon = platform::Icon::warning});
    if (form_.diagnostics_open) {
        set_unlocked(true);
    }
}

// The boxes as they stand at the press, one message however long it has to wait.
void DriverTests::fire(const Panel& panel) {
    std::int32_t mask = 0;
    std::string channels;
    for (std::size_t i = 0; i < panel.boxes.size(); ++i) {
        if (panel.boxes[i].checked()) {
            mask += 1 << i;
            channels += (channels.empty() ? "" : ", ") + std::to_string(i + 1);
        }
    }
    when_free_.run([this, panel, mask, channels] {
        if (!form_.diagnostics_open) {
            return;
        }
        const link::Outcome outcome = comm_.send_ecu_message(
            {panel.command.code, platform::byte_low(mask), platform::byte_high(mask), 0}, panel.command.reply);
        panel.result.set_text(fired_text(panel.drivers, channels, outcome));
    });
}

} // namespace ecu::diagnostics
