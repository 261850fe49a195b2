// The page of the engine's phases: one matrix, a phase in each row, with its angle, the tach output and the drivers
// that fire in it.
#include "desktop/control_matrix.h"
#include "desktop/windows/frm_tool_pages.h"

namespace ecu::desktop {

QWidget* phases_page(FormWindow& window, configuration::FrmTool& f) {
    constexpr int angle = 0;
    constexpr int tach = 1;
    constexpr int injectors = 2;
    constexpr int ignition = 10;
    Panel panel = window.panel("Phases");
    ControlMatrix matrix(window, panel);
    const calibration::Parameter& angles = calibration::parameter("PHBT");
    matrix.gap_before(tach);
    matrix.gap_before(injectors);
    matrix.gap_before(ignition);
    matrix.head(-1, "Used");
    matrix.head(angle, "Base Angle [deg]");
    matrix.head(tach, "Tach");
    matrix.head(injectors, "Injector Drivers", 8);
    matrix.head(ignition, "Ignition Drivers", 8);
    for (int b = 0; b < 8; ++b) {
        matrix.head(injectors + b, std::to_string(b + 1));
        matrix.head(ignition + b, std::to_string(b + 1));
    }
    for (std::size_t n = 0; n < f.ph_used.size(); ++n) {
        matrix.row(f.ph_used[n]);
        matrix.cell(angle, f.boxes(angles, static_cast<int>(n)), angles.screen.label);
        matrix.cell(tach, f.tach_ph[n], "Tach output");
        for (std::size_t b = 0; b < 8; ++b) {
            const std::string driver = "driver " + std::to_string(b + 1);
            matrix.cell(injectors + static_cast<int>(b), f.inj_ph[n][b], "injector " + driver);
            matrix.cell(ignition + static_cast<int>(b), f.ign_ph[n][b], "ignition " + driver);
        }
    }
    return in_columns({{panel}});
}

} // namespace ecu::desktop
