// The configuration page: reads everything at each activation and paints nothing, writes back what was changed in the
// order of page_update_order, and has three tools of its own: stutter generator, speed wizard, throttle calibration.
// How a value is shown, entered and sent stands in its row; here stands only what is unlike the rest.
#pragma once

#include "calibration/calibration_image.h"
#include "configuration/frm_tool.h"
#include "editing/editor.h"
#include "messages/parameter_controls.h"
#include "shell/navigation.h"

#include <map>

namespace ecu::configuration {

class ConfigurationPage {
public:
    ConfigurationPage(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                      const calibration::Scales& scales, calibration::CalibrationImage& image,
                      messages::ParameterControls& controls, shell::Navigation& navigation, FrmTool& frm_tool);

    // What the buttons and Enter do. In demo mode nothing.
    void update_changed_entries();
    // Has the controller measure the throttle: 0 closed, 1 open.
    void calibrate_throttle(std::size_t which);
    void make_stutter_text();
    void use_stutter_text(std::size_t pattern);
    // From the wheel's circumference (0) or its turns in a mile (1).
    void work_out_wheel_scaler(std::size_t from);

private:
    void prepare();
    void add_items();
    void add_switches(const calibration::Parameter& row);
    void wire_boxes();
    void wire_switches();
    void wire_tools();
    bool read_page();
    void walking(bool walking);
    void show_marks();

    link::SharedState& state_;
    calibration::CalibrationImage& image_;
    messages::ParameterControls& controls_;
    FrmTool& form_;
    editing::Editor editor_;
    std::map<const platform::Control*, int> tabs_; // of the boxes
    bool walking_ = false;
    bool close_wanted_ = false;                      // the window's own button during an Update
    std::vector<platform::MenuItem*> waiting_items_; // of the menu, for the end of an Update
};

} // namespace ecu::configuration
