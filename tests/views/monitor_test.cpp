#include "shell/console_rig.h"

namespace ecu::test {
namespace {

class MonitorTest : public ConsoleRig {};

TEST_F(MonitorTest, TextsOfTheRows) {
    start_in_monitor();
    state.polling_paused = true;
    data.status_flags = 1;
    data.engine_rpm = 40001;
    data.coolant_temp = 126;
    data.throttle_percent = 101;
    data.lambda = 0.9994F;
    data.ego_lambda_setpoint = 0.5F;
    data.throttle_raw_percent = -0.97F;
    data.manifold_kpa = 0.25F;
    data.injector_pw = 0.00808F;
    data.accel_enrichment = 0.5F;
    data.iac_error = 3;
    data.iac_position = 0;
    monitor.refresh_monitor_strings();
    const std::vector<std::pair<std::size_t, const char*>> rows{
        {0, "40000"}, {1, ".999"},  {2, "125"}, {3, "-1.0"},  {4, ".3"},    {5, "8.080"}, {6, "0.000"},
        {8, ".500"},  {10, "0.00"}, {13, ""},   {14, "10.0"}, {16, "ERR3"}, {17, "0"},    {19, "0.00B"}};
    for (const auto& [i, text] : rows) {
        EXPECT_EQ(row(i), text) << i;
    }
    EXPECT_EQ(data.throttle_percent, 100);
    EXPECT_EQ(forms.frm_mon.ego_lambda_setpoint.text(), ".500");
    EXPECT_EQ(forms.frm_mon.tx_bytes.text(), std::to_string(state.tx_byte_count[0]));

    std::string states;
    for (data.iac_state = 0; data.iac_state <= 7; ++data.iac_state) {
        monitor.refresh_monitor_strings();
        states += row(15) + " ";
    }
    EXPECT_EQ(states, "???? SHTDWN HOME ST_POS OPENING CLOSING CLOSED ???? ");
    data.ignition_timing = -5;
    monitor.refresh_monitor_strings();
    EXPECT_EQ(row(19), "5.00A");
}

TEST_F(MonitorTest, TheMixtureFollowsUnitsSensorAndFault) {
    start();
    main.menuUnitsLambda[1].click();
    main.monitor_button.press();
    state.polling_paused = true;
    data.status_flags = 1;
    data.lambda = 1;
    data.ego_lambda_setpoint = 0.9F;
    monitor.refresh_monitor_strings();
    EXPECT_EQ(row(1) + " " + forms.frm_mon.unit_of_lambda.text(), "14.70 AFR");
    EXPECT_EQ(forms.frm_mon.ego_lambda_setpoint.text() + " " + forms.frm_mon.unit_of_setpoint.text(), "13.23 AFR");
    main.menuUnitsLambda[0].click();
    monitor.refresh_monitor_strings();
    EXPECT_EQ(row(1) + " " + forms.frm_mon.unit_of_lambda.text(), "1.000 AFR") << "the unit changes with activation";
    data.status_flags = 0;
    data.oxygen_percent = 20.9F;
    monitor.refresh_monitor_strings();
    EXPECT_EQ(row(1) + " " + forms.frm_mon.unit_of_lambda.text(), "20.9 %O2");
    data.status_flags = 256;
    monitor.refresh_monitor_strings();
    EXPECT_EQ(row(1), "ERR");
}

TEST_F(MonitorTest, OnlyChangedRowsAreWrittenAndAllMarkedOnesAtTheNextOpening) {
    start_in_monitor();
    EXPECT_EQ(forms.frm_mon.form.caption(), "Real Time Monitor ->COM3");
    EXPECT_EQ(forms.frm_mon.unit_of_setpoint.text(), "Lambda");
    EXPECT_EQ(row(14), "10.0");
    for (platform::Label& label : forms.frm_mon.ECU_Data) {
        label.set_text("stale");
    }
    desktop.run_for(0.2);
    EXPECT_EQ(row(0), "stale") << "the same text is not written again";
    forms.frm_mon.menufileexit.click();
    main.monitor_button.press();
    desktop.run_for(0.2);
    EXPECT_EQ(row(0) + " " + row(12) + " " + row(13), "0 0.000 ");
    EXPECT_EQ(row(14), "stale") << "the mark covers fourteen rows";
}

} // namespace
} // namespace ecu::test
