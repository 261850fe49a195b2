#include "messages/parameter_controls.h"

namespace ecu::messages {

namespace {

using calibration::ControlKind;
using calibration::ControlRef;
using calibration::Parameter;
using platform::CheckBox;
using platform::OptionButton;
using platform::TextBox;

// Box b is bit b.
void tick_bits(const std::vector<CheckBox*>& boxes, std::int32_t bits) {
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        boxes[b]->set_checked((bits >> b & 1) != 0);
    }
}

std::int32_t ticked_bits(const std::vector<CheckBox*>& boxes) {
    std::int32_t bits = 0;
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        bits |= static_cast<std::int32_t>(boxes[b]->checked()) << b;
    }
    return bits;
}

// A number beyond the options leaves them as they are.
void choose(const std::vector<OptionButton*>& options, std::int32_t number) {
    if (static_cast<std::size_t>(number) < options.size()) {
        options[static_cast<std::size_t>(number)]->set_checked(true);
    }
}

std::int32_t chosen_index(const std::vector<OptionButton*>& options, std::int32_t stored) {
    for (std::size_t n = 0; n < options.size(); ++n) {
        if (options[n]->checked()) {
            return static_cast<std::int32_t>(n);
        }
    }
    return stored;
}

// The options of all fields stand one after the other; a code that no option has chooses nothing.
void choose_input_uses(const std::vector<OptionButton*>& options, std::int32_t word) {
    std::size_t first = 0;
    for (const calibration::InputField& field : calibration::input_fields) {
        for (std::size_t n = 0; n < field.options; ++n) {
            if (field.codes[n] == (word & 7)) {
                options[first + n]->set_checked(true);
            }
        }
        first += field.options;
        word >>= calibration::input_field_bits;
    }
}

std::int32_t chosen_input_uses(const std::vector<OptionButton*>& options, std::int32_t stored) {
    std::int32_t word = 0;
    std::size_t first = 0;
    int shift = 0;
    for (const calibration::InputField& field : calibration::input_fields) {
        std::int32_t code = stored >> shift & 7;
        for (std::size_t n = 0; n < field.options; ++n) {
            code = options[first + n]->checked() ? field.codes[n] : code;
        }
        word += code << shift;
        first += field.options;
        shift += calibration::input_field_bits;
    }
    return word;
}

void clear_marks(platform::Control& control) {
    control.set_fore_colour(platform::black);
    control.set_tag("");
}

bool marked(const platform::Control& control) {
    return control.fore_colour() == platform::pending || !control.tag().empty();
}

} // namespace

ParameterControls::ParameterControls(const platform::FormRegistry& forms, const calibration::Scales& scales)
    : scales_(scales), oxygen_voltage_boxes_{&forms.get<TextBox>("frm_tool", "WB_EGO_0V_LAMBDA"),
                                             &forms.get<TextBox>("frm_tool", "WB_EGO_1V_LAMBDA")} {
    elements_.reserve(calibration::element_count);
    for (const Parameter& row : calibration::parameters) {
        first_elements_.push_back(elements_.size());
        for (int i = 0; i < row.count; ++i) {
            elements_.push_back(resolve(forms, row, i));
        }
    }
}

ParameterControls::Element ParameterControls::resolve(const platform::FormRegistry& forms, const Parameter& row,
                                                      int i) {
    const ControlRef& control = row.control;
    const platform::Form& form = forms.at(control.form);
    Element element;
    const auto add_checks = [&](std::string_view name, int count) {
        for (int n = 0; n < count; ++n) {
            element.checks.push_back(&form.get<CheckBox>(name, n));
        }
    };
    const auto add_options = [&](std::string_view name, int count) {
        for (int n = 0; n < count; ++n) {
            element.options.push_back(&form.get<OptionButton>(name, n));
        }
    };
    switch (control.kind) {
    case ControlKind::text_box: {
        const int index = row.is_vector() ? i : control.index;
        element.box = &form.get<TextBox>(control.name, index);
        if (!control.second_form.empty()) {
            element.second_box = &forms.get<TextBox>(control.second_form, control.name, index);
        }
        break;
    }
    case ControlKind::check_box:
        element.checks.push_back(&form.get<CheckBox>(control.name));
        break;
    case ControlKind::bit_boxes:
        add_checks(control.name, 16);
        break;
    case ControlKind::phase_boxes:
        add_checks(std::string(control.name) + std::to_string(i), 8);
        break;
    case ControlKind::map_flags:
        element.checks = {&form.get<CheckBox>("TPS_mapped"), &form.get<CheckBox>("MAP_accel")};
        break;
    case ControlKind::pressure_sensor:
        add_options(control.name, 4);
        add_checks("special_cfg", 2);
        break;
    case ControlKind::oxygen_sensor:
        add_options(control.name, 3);
        break;
    case ControlKind::input_uses:
        for (const calibration::InputField& field : calibration::input_fields) {
            add_options(field.control, field.options);
        }
        break;
    case ControlKind::output_mode:
        add_options(std::string(control.name) + std::to_string(i) + "_mode", 11);
        element.checks.push_back(&form.get<CheckBox>("dont_interpolate", i));
        break;
    case ControlKind::output_flags:
        element.checks = {&form.get<CheckBox>(control.name, i), &form.get<CheckBox>("use_as_pwm", i)};
        break;
    }
    return element;
}

const ParameterControls::Element& ParameterControls::at(const Parameter& row, int i) const {
    return elements_.at(first_elements_[calibration::index_of(row)] + static_cast<std::size_t>(i));
}

void ParameterControls::show(const Parameter& row, int i, std::int32_t raw) { show_as(row, i, raw, row.shown); }

void ParameterControls::show_echo(const Parameter& row, int i, std::int32_t raw) {
    show_as(row, i, raw, row.echo.value_or(row.shown));
}

void ParameterControls::show_as(const Parameter& row, int i, std::int32_t raw,
                                const calibration::Conversion& conversion) {
    const Element& element = at(row, i);
    if (element.box == nullptr) {
        if (&element != sending_ || switches(row, i, sent_) == sent_) {
            show_switches(row, element, raw);
        }
        return;
    }
    const std::string text = calibration::shown_as(conversion, row.mask, raw, scales_);
    element.box->confirm(text);
    if (element.second_box != nullptr) {
        element.second_box->confirm(text);
    }
}

// Setting a switch fires its click, which marks it; so the marks are cleared when all of them stand.
void ParameterControls::show_switches(const Parameter& row, const Element& element, std::int32_t raw) {
    switch (row.control.kind) {
    case ControlKind::text_box:
        break;
    case ControlKind::check_box:
        element.checks.front()->set_checked(raw != 0);
        break;
    case ControlKind::bit_boxes:
    case ControlKind::phase_boxes:
    case ControlKind::map_flags:
    case ControlKind::output_flags:
        tick_bits(element.checks, raw);
        break;
    case ControlKind::pressure_sensor:
        choose(element.options, raw & 3);
        tick_bits(element.checks, raw >> calibration::special_cfg_first_bit);
        break;
    case ControlKind::oxygen_sensor:
        choose(element.options, raw);
        for (TextBox* box : oxygen_voltage_boxes_) {
            box->set_enabled(element.options[calibration::oxygen_sensor_with_voltages]->checked());
        }
        break;
    case ControlKind::input_uses:
        choose_input_uses(element.options, raw);
        break;
    case ControlKind::output_mode:
        // The box first: a click on the mode takes the box's state along.
        element.checks.front()->set_checked((raw & calibration::dont_interpolate_bit) != 0);
        choose(element.options, raw & calibration::output_mode_mask);
        break;
    }
    for (CheckBox* box : element.checks) {
        clear_marks(*box);
    }
    for (OptionButton* option : element.options) {
        clear_marks(*option);
    }
}

void ParameterControls::begin_sending(const Parameter& row, int i, std::int32_t raw) {
    sending_ = &at(row, i);
    sent_ = raw;
}

std::vector<ParameterControls::Click> ParameterControls::clicks(const Parameter& row, int i) const {
    std::vector<Click> clicked;
    for (CheckBox* box : at(row, i).checks) {
        if (box->fore_colour() == platform::pending) {
            clicked.push_back({box, box->checked()});
        }
    }
    for (OptionButton* option : at(row, i).options) {
        if (option->fore_colour() == platform::pending && option->checked()) {
            clicked.push_back({option, true});
        }
    }
    return clicked;
}

void ParameterControls::click_again(const std::vector<Click>& clicks) {
    for (const auto& [control, checked] : clicks) {
        const auto set = [checked](auto& button) {
            button.set_checked(checked);
            if (button.clicked) { // it marks, also where nothing changed
                button.clicked();
            }
        };
        control->kind() == platform::Kind::check_box ? set(static_cast<CheckBox&>(*control))
                                                     : set(static_cast<OptionButton&>(*control));
    }
}

void ParameterControls::choose_none(const Parameter& row, int i) {
    for (OptionButton* option : at(row, i).options) {
        option->set_checked(false);
    }
}

bool ParameterControls::pending(const Parameter& row, int i) const {
    const Element& element = at(row, i);
    if (element.box != nullptr) {
        return element.box->is_pending();
    }
    const auto is_marked = [](const platform::Control* control) { return marked(*control); };
    return std::any_of(element.checks.begin(), element.checks.end(), is_marked) ||
           std::any_of(element.options.begin(), element.options.end(), is_marked);
}

std::int32_t ParameterControls::switches(const Parameter& row, int i, std::int32_t stored) const {
    const Element& element = at(row, i);
    switch (row.control.kind) {
    case ControlKind::text_box:
        return 0;
    case ControlKind::check_box:
    case ControlKind::bit_boxes:
    case ControlKind::phase_boxes:
    case ControlKind::map_flags:
    case ControlKind::output_flags:
        return ticked_bits(element.checks);
    case ControlKind::pressure_sensor:
        return chosen_index(element.options, stored & 3) | ticked_bits(element.checks)
                                                               << calibration::special_cfg_first_bit;
    case ControlKind::oxygen_sensor:
        return chosen_index(element.options, stored);
    case ControlKind::input_uses:
        return chosen_input_uses(element.options, stored);
    case ControlKind::output_mode:
        return chosen_index(element.options, stored & calibration::output_mode_mask) |
               (element.checks.front()->checked() ? calibration::dont_interpolate_bit : 0);
    }
    return 0;
}

} // namespace ecu::messages
