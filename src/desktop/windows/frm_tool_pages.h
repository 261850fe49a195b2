// The pages of the configuration window, by tab. Plain values are listed by their rows' groups (row_panel); a page has
// a function of its own where it holds more than that.
#pragma once

#include "configuration/frm_tool.h"
#include "desktop/form_window.h"

namespace ecu::desktop {

// A panel with the scalars of a group, in the order of the table: boxes with label and unit, check boxes, options.
Panel row_panel(FormWindow& window, configuration::FrmTool& f, calibration::Tab tab, std::string_view group);
// The panels of a tab's groups, spread over columns.
QWidget* plain_page(FormWindow& window, configuration::FrmTool& f, calibration::Tab tab);
// Panels in columns, each as high as it needs.
QWidget* in_columns(const std::vector<std::vector<QWidget*>>& columns);

QWidget* engine_setup_page(FormWindow& window, configuration::FrmTool& f);
QWidget* injection_page(FormWindow& window, configuration::FrmTool& f);
QWidget* phases_page(FormWindow& window, configuration::FrmTool& f);
QWidget* sensors_page(FormWindow& window, configuration::FrmTool& f);
QWidget* inputs_page(FormWindow& window, configuration::FrmTool& f);
QWidget* speed_page(FormWindow& window, configuration::FrmTool& f);
Panel stutter_panel(FormWindow& window, configuration::FrmTool& f);

} // namespace ecu::desktop
