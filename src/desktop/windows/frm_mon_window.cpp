// The realtime monitor, to be read at arm's length: the figures grow with the window as far as everything fits.
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "views/frm_mon.h"

#include <QGridLayout>

namespace ecu::desktop {

namespace {

using Row = views::FrmMon::Row;

Panel engine_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Engine");
    panel.figure("Engine Speed", f.ECU_Data[Row::engine_speed], "RPM", "00000");
    panel.figure("MPH=", f.speed_MPH, "", "000.00");
    panel.figure("R/M=", f.rpm_mph_ratio, "", "0000.00");
    panel.figure("Gear=", f.gear_number, "", "00");
    panel.figure("IAC State", f.ECU_Data[Row::idle_state], "", "OPENING");
    panel.figure("IAC Error", f.ECU_Data[Row::idle_error], "", "ERR255");
    panel.figure("IAC Position", f.ECU_Data[Row::idle_position], "", "0000");
    panel.figure("IAC RPM Setpoint", f.ECU_Data[Row::idle_setpoint], "RPM", "0000");
    panel.spread();
    return panel;
}

Panel fuel_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Fuel");
    panel.figure("A/F Ratio", f.ECU_Data[Row::mixture], f.unit_of_lambda, "00.00");
    panel.figure("Lambda Setpoint", f.ego_lambda_setpoint, f.unit_of_setpoint, "00.00");
    panel.figure("Base Injection PW", f.ECU_Data[Row::injection_time], "ms", "00.000");
    panel.figure("EGO Correction", f.ECU_Data[Row::ego_correction], "Gamma", "0.000");
    panel.figure("MAP Enrichment", f.ECU_Data[Row::map_enrichment], "Gamma", "0.000");
    panel.figure("Accel Enrichment", f.ECU_Data[Row::accel_enrichment], "", "00.000");
    panel.figure("CLT Enrichment", f.ECU_Data[Row::clt_enrichment], "Gamma", "0.000");
    panel.figure("Map#=", f.map_num, "", "0");
    panel.spread();
    return panel;
}

Panel sensors_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Sensors");
    panel.figure("Manifold Pressure", f.ECU_Data[Row::manifold], "kPa", "000.0");
    panel.figure("Throttle Position", f.ECU_Data[Row::throttle], "%", "000.0");
    panel.figure("Coolant Temp.", f.ECU_Data[Row::coolant], "\u00b0C", "-000");
    panel.figure("AirTemp.", f.ECU_Data[Row::air_temperature], "\u00b0C", "-000");
    panel.figure("EGT=", f.EGT, "\u00b0C", "0000.0");
    panel.figure("Barometic Pressure", f.ECU_Data[Row::barometer], "kPa", "000.0");
    panel.figure("Battery Voltage", f.ECU_Data[Row::battery], "Volts DC", "00.00");
    panel.figure("AUX Input", f.ECU_Data[Row::aux_input], "Volts DC", "0.000");
    panel.spread();
    return panel;
}

// What fires the plugs, from the crank's and cam's teeth to what holds the spark back.
Panel ignition_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Ignition");
    panel.figure("Timing", f.ECU_Data[Row::timing], "degrees", "00.00B");
    panel.figure("Rev Lim=", f.rev_limit_stat, "", "RPM2");
    panel.figure("Flat Shft=", f.flat_shift_stat, "", "FLAT+");
    panel.figure("TrigB=", f.trig_b_stat, "", "HIGH");
    panel.figure("#Trigs=", f.num_trigs, "", "00000");
    panel.figure("#Cam=", f.num_cams, "", "00000");
    panel.figure("WDbg=", f.wheel_idx_num, "", "000");
    panel.figure("CDbg=", f.cam_idx_num, "", "000");
    panel.spread();
    return panel;
}

// Fuel and ignition of each channel side by side.
Panel channels_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Channels");
    panel.header({{"Inj ms", "00.000"}, {"Duty%", "000"}, {"Dwell", "00.000"}, {"Duty%", "000"}});
    for (std::size_t i = 0; i < 8; ++i) {
        const std::string name = "Chan" + std::to_string(i + 1);
        panel.figures(std::string_view(name), {&f.inj_pw[i], &f.inj_duty[i], &f.ign_dwell[i], &f.ign_duty[i]});
    }
    panel.spread();
    return panel;
}

Panel status_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Status");
    panel.figure("AUX=", f.aux_stat, "", "HIGH");
    panel.figure("MapSel=", f.map_sel_stat, "", "HIGH");
    panel.figure("TErrs=", f.err_flgs, "", "000");
    panel.figure("CPUt=", f.cpu_secs, "", "00000");
    panel.spread();
    return panel;
}

Panel link_panel(FormWindow& window, views::FrmMon& f) {
    Panel panel = window.panel("Link");
    panel.figure("TXB", f.tx_bytes, "", "00000000");
    panel.figure("RXB", f.rx_bytes, "", "00000000");
    panel.figure("Comm Group Delay", f.group_delay, "MS", "0000.0");
    panel.figure("CAN RX", f.can_rx_frames, "", "00000");
    panel.spread();
    return panel;
}

// Two bands of three panels, whose edges meet.
QWidget* panels(FormWindow& window, views::FrmMon& f) {
    auto* body = new QWidget;
    auto* layout = new QGridLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::margin);
    layout->addWidget(engine_panel(window, f), 0, 0);
    layout->addWidget(fuel_panel(window, f), 0, 1);
    layout->addWidget(sensors_panel(window, f), 0, 2);
    layout->addWidget(ignition_panel(window, f), 1, 0);
    layout->addWidget(window.down({status_panel(window, f), link_panel(window, f)}), 1, 1);
    layout->addWidget(channels_panel(window, f), 1, 2);
    layout->setRowStretch(0, 8);
    layout->setRowStretch(1, 9);
    for (int column = 0; column < 3; ++column) {
        layout->setColumnStretch(column, 1);
    }
    return body;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_mon_window(views::FrmMon& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    window->set_body(panels(*window, f));
    window->set_footer(window->buttons({&f.exit_button}));
    window->demo_badge(f.show_demo_mode);
    window->keep_hidden(f.ECU_Data[Row::unused]); // nothing is ever written to it
    window->scale_figures(8, 30);
    window->resize(1240, 740);
    return window;
}

} // namespace ecu::desktop
