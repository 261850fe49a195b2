#include "shell/units.h"

#include "platform/rounding.h"
#include "platform/safe_file.h"
#include "platform/small_file.h"

namespace ecu::shell {

namespace {

constexpr const char* units_file = "lambda.txt";

// The menu says 9.765 beside the factor 9.675; tuners' files and habits rest on both.
constexpr std::array<float, 5> lambda_scales{1.0F, 14.7F, 9.0F, 9.675F, 6.4F};

template <std::size_t N> void check_only(platform::ControlArray<platform::MenuItem, N>& items, std::size_t index) {
    for (std::size_t i = 0; i < N; ++i) {
        items[i].set_checked(i == index);
    }
}

} // namespace

Units::Units(const platform::Ports& ports, calibration::Scales& scales, FrmEcu& form)
    : ports_(ports), scales_(scales), form_(form) {
    for (std::size_t i = 0; i < form_.menuUnitsLambda.size(); ++i) {
        form_.menuUnitsLambda[i].clicked = [this, i] { choose_lambda(i); };
    }
    for (std::size_t i = 0; i < form_.menuUnitsPressure.size(); ++i) {
        form_.menuUnitsPressure[i].clicked = [this, i] { choose_pressure(i); };
    }
    choose_pressure(0);
}

void Units::start() {
    scales_.lambda_scale = 1.0F;
    check_only(form_.menuUnitsLambda, form_.menuUnitsLambda.size());
    scales_.shows_lambda = false;
    const std::filesystem::path path = ports_.folder / units_file;
    const std::optional<std::string> content = platform::read_small_file(path);
    std::error_code ignored;
    if (!content && std::filesystem::exists(path, ignored)) {
        ports_.dialogs.message_box({.text = platform::named_in_folder(ports_, units_file) +
                                            " cannot be read.\nThe air/fuel figure is shown as lambda. Make the file "
                                            "readable and start again, or choose the unit in the menu, which writes "
                                            "the file anew.",
                                    .icon = platform::Icon::warning});
    } else if (!content) {
        write_file(0);
    }
    const auto index = platform::round_to_even(platform::number_of_file(content.value_or("")));
    if (index >= 0 && index < static_cast<int>(lambda_scales.size())) {
        choose_lambda(static_cast<std::size_t>(index));
    }
}

void Units::choose_lambda(std::size_t index) {
    check_only(form_.menuUnitsLambda, index);
    scales_.lambda_scale = lambda_scales[index];
    scales_.shows_lambda = index == 0;
    if (keeps_choices_) {
        write_file(index);
    }
}

void Units::choose_pressure(std::size_t index) { check_only(form_.menuUnitsPressure, index); }

void Units::write_file(std::size_t index) {
    const std::string reason = platform::replace_file(ports_.folder / units_file, std::to_string(index) + "\n");
    if (!reason.empty()) {
        ports_.dialogs.message_box({.text = "The choice of units could not be written to " +
                                            platform::named_in_folder(ports_, units_file) +
                                            ".\nIt holds until the program ends. Make the folder writable and choose "
                                            "the unit again.",
                                    .icon = platform::Icon::warning,
                                    .details = reason});
    }
}

} // namespace ecu::shell
