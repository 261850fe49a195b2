// The controls that show the scalars and vectors, found once by the names in their rows. Shows a raw number as the
// controller's (text, then white; switches, then every mark cleared), and reads back what the user has set.
#pragma once

#include "calibration/encoding.h"
#include "platform/form.h"

#include <vector>

namespace ecu::messages {

class ParameterControls {
public:
    // Throws std::logic_error naming the first control that the forms lack.
    ParameterControls(const platform::FormRegistry& forms, const calibration::Scales& scales);

    // Element `i` of the row, 0 for a scalar, by the row's own conversion, and as the echo of its write shows it.
    void show(const calibration::Parameter& row, int i, std::int32_t raw);
    void show_echo(const calibration::Parameter& row, int i, std::int32_t raw);
    void show_as(const calibration::Parameter& row, int i, std::int32_t raw, const calibration::Conversion& conversion);

    // While `raw` is on the way: its echo leaves the switches alone where they stand for another number by then, which
    // the user has set meanwhile.
    void begin_sending(const calibration::Parameter& row, int i, std::int32_t raw);
    void end_sending() { sending_ = nullptr; }

    // What the user has clicked of an element since the last reply; put back by `click_again` with its marks.
    struct Click {
        platform::Control* control;
        bool checked;
    };
    std::vector<Click> clicks(const calibration::Parameter& row, int i) const;
    static void click_again(const std::vector<Click>& clicks);

    // None of its options is chosen, as before a first reading.
    void choose_none(const calibration::Parameter& row, int i);
    // Whether the user has changed it since: a yellow box; a yellow foreground or a tag among its switches.
    bool pending(const calibration::Parameter& row, int i) const;
    // The raw number that check boxes and options stand for. Where no option of a group is chosen, the controller's
    // number, `stored`, has a code that none of them stands for: it keeps it.
    std::int32_t switches(const calibration::Parameter& row, int i, std::int32_t stored = 0) const;
    // The box of an element, null for switches; the first form's where two show it.
    platform::TextBox* box(const calibration::Parameter& row, int i) const { return at(row, i).box; }

private:
    struct Element {
        platform::TextBox* box = nullptr;
        platform::TextBox* second_box = nullptr;
        std::vector<platform::CheckBox*> checks;
        std::vector<platform::OptionButton*> options;
    };
    static Element resolve(const platform::FormRegistry& forms, const calibration::Parameter& row, int i);
    const Element& at(const calibration::Parameter& row, int i) const;
    void show_switches(const calibration::Parameter& row, const Element& element, std::int32_t raw);

    const calibration::Scales& scales_;
    std::vector<Element> elements_;
    std::vector<std::size_t> first_elements_;
    const Element* sending_ = nullptr;
    std::int32_t sent_ = 0;
    std::array<platform::TextBox*, 2> oxygen_voltage_boxes_;
};

} // namespace ecu::messages
