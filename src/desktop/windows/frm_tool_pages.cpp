// The pages of the configuration window that are made of panels of rows, with a few matrices of channels and gears.
#include "desktop/windows/frm_tool_pages.h"

#include "desktop/control_matrix.h"
#include "desktop/theme.h"

#include <QBoxLayout>
#include <QLabel>

#include <algorithm>

namespace ecu::desktop {

using calibration::ControlKind;
using calibration::Parameter;
using calibration::Tab;
using configuration::FrmTool;

namespace {

constexpr int narrowest_panel = 320;

// What a row shows that is no text; the phases have a page of their own.
void add_switches(Panel& panel, FrmTool& f, const Parameter& row) {
    switch (row.control.kind) {
    case ControlKind::check_box:
        panel.add(f.form.at(row.control.name));
        break;
    case ControlKind::map_flags:
        panel.add(f.TPS_mapped);
        panel.add(f.MAP_accel);
        break;
    case ControlKind::pressure_sensor:
        panel.column(each(f.map_type));
        panel.side_by_side(each(f.special_cfg));
        panel.note("Only Master Mode can change these.");
        break;
    case ControlKind::oxygen_sensor:
        panel.column(each(f.EGO_type));
        break;
    case ControlKind::text_box:
    case ControlKind::bit_boxes:
    case ControlKind::phase_boxes:
    case ControlKind::input_uses:
    case ControlKind::output_mode:
    case ControlKind::output_flags:
        break;
    }
}

std::vector<std::string_view> groups_of(Tab tab) {
    std::vector<std::string_view> groups;
    for (const Parameter& row : calibration::scalars) {
        if (row.screen.tab == tab && std::ranges::find(groups, row.screen.group) == groups.end()) {
            groups.push_back(row.screen.group);
        }
    }
    return groups;
}

// Rows of a matrix: one for each element, one column for each vector.
void add_vectors(ControlMatrix& matrix, FrmTool& f, std::initializer_list<const Parameter*> vectors,
                 std::string_view element) {
    int column = 0;
    for (const Parameter* row : vectors) {
        const std::string unit(row->screen.unit);
        matrix.head(column++, std::string(row->screen.label) + (unit.empty() ? "" : "\n[" + unit + "]"));
    }
    for (int i = 0; i < (*vectors.begin())->count; ++i) {
        matrix.row(std::string(element) + " " + std::to_string(i + 1));
        column = 0;
        for (const Parameter* row : vectors) {
            matrix.cell(column++, f.boxes(*row, i), row->screen.label);
        }
    }
}

template <typename Options> Panel options_panel(FormWindow& window, Options& options, std::size_t field) {
    Panel panel = window.panel(calibration::input_fields.at(field).title.data());
    panel.column(each(options));
    return panel;
}

} // namespace

Panel row_panel(FormWindow& window, FrmTool& f, Tab tab, std::string_view group) {
    Panel panel = window.panel(std::string(group).c_str());
    static_cast<QWidget*>(panel)->setMinimumWidth(narrowest_panel);
    for (const Parameter& row : calibration::scalars) {
        if (row.screen.tab != tab || row.screen.group != group) {
            continue;
        }
        if (row.shows_text()) {
            // A blank unit keeps its room, so that the boxes stand in line.
            panel.row(row.screen.label, f.boxes(row), row.screen.unit.empty() ? " " : row.screen.unit);
        } else {
            add_switches(panel, f, row);
        }
    }
    return panel;
}

QWidget* in_columns(const std::vector<std::vector<QWidget*>>& columns) {
    auto* page = new QWidget;
    auto* across = new QHBoxLayout(page);
    across->setSpacing(theme::margin);
    for (const auto& panels : columns) {
        auto* down = new QVBoxLayout;
        down->setSpacing(theme::margin);
        for (QWidget* panel : panels) {
            down->addWidget(panel);
        }
        down->addStretch(1);
        across->addLayout(down);
    }
    across->addStretch(1);
    return page;
}

QWidget* plain_page(FormWindow& window, FrmTool& f, Tab tab) {
    std::vector<std::vector<QWidget*>> columns(2);
    std::size_t next = 0;
    for (const std::string_view group : groups_of(tab)) {
        columns[next++ % columns.size()].push_back(row_panel(window, f, tab, group));
    }
    return in_columns(columns);
}

QWidget* engine_setup_page(FormWindow& window, FrmTool& f) {
    const auto panel = [&](std::string_view group) -> QWidget* {
        return row_panel(window, f, Tab::engine_setup, group);
    };
    QWidget* top = in_columns({{panel("Crank Wheel and Speed"), panel("Manifold Pressure"), panel("MAP Sensor")},
                               {panel("Rev Limit 1"), panel("Rev Limit 2"), panel("Overrev")}});
    const QMargins margins = top->layout()->contentsMargins(); // of every page: their left sides stand in line
    top->layout()->setContentsMargins(0, 0, 0, 0);
    QWidget* page = window.stack({top, stutter_panel(window, f)});
    page->layout()->setContentsMargins(margins.left(), margins.top(), 0, margins.bottom());
    return page;
}

QWidget* injection_page(FormWindow& window, FrmTool& f) {
    Panel channels = window.panel("Injector Channels");
    ControlMatrix matrix(window, channels);
    add_vectors(matrix, f,
                {&calibration::parameter("INJK"), &calibration::parameter("INJO"), &calibration::parameter("INJL"),
                 &calibration::parameter("INJM")},
                "Channel");
    return in_columns({{row_panel(window, f, Tab::injection, "Battery Voltage"), channels}});
}

QWidget* sensors_page(FormWindow& window, FrmTool& f) {
    Panel throttle = row_panel(window, f, Tab::sensors, "Throttle");
    throttle.side_by_side(each(f.calibrate_tps_val));
    Panel temperatures = window.panel("Temperature Sensors");
    ControlMatrix matrix(window, temperatures);
    const calibration::Table& coolant = calibration::table("CLTF");
    const calibration::Table& air = calibration::table("MATF");
    matrix.head(-1, "Ohms");
    matrix.heads(0, {"Coolant\n[deg C]", "Air\n[deg C]"});
    for (int i = 0; i < coolant.cells(); ++i) {
        matrix.row(FrmTool::calibration_ohms.at(static_cast<std::size_t>(i)));
        matrix.cell(0, f.boxes(coolant, i), coolant.screen.label);
        matrix.cell(1, f.boxes(air, i), air.screen.label);
    }
    return in_columns({{throttle, row_panel(window, f, Tab::sensors, "Pressure Sensors")}, {temperatures}});
}

QWidget* inputs_page(FormWindow& window, FrmTool& f) {
    Panel aux = options_panel(window, f.aux_in_used_as, 0);
    Panel map_select = options_panel(window, f.map_sel_used_as, 1);
    Panel trigger_b = options_panel(window, f.trig_b_used_as, 2);
    Panel index = options_panel(window, f.idx_used_as, 3);
    return in_columns({{aux, map_select}, {trigger_b, index}});
}

QWidget* speed_page(FormWindow& window, FrmTool& f) {
    Panel wizard = window.panel("Speed Wizard");
    wizard.row("Rolling Circumference", f.rolling_circum_inches, "inches");
    wizard.add(f.speed_wizard_calc[0]);
    wizard.row("Revs per Mile", f.revs_mile, " ");
    wizard.row("Triggers per Rev", f.trigs_rev, " ");
    wizard.add(f.speed_wizard_calc[1]);
    Panel gears = window.panel("Gears");
    ControlMatrix matrix(window, gears);
    add_vectors(matrix, f,
                {&calibration::parameter("RPSL"), &calibration::parameter("RPSH"), &calibration::parameter("GGPO")},
                "Gear");
    return in_columns({{row_panel(window, f, Tab::speed, "Wheel Speed"), wizard}, {gears}});
}

} // namespace ecu::desktop
