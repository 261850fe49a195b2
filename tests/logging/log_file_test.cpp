#include "logging/log_file.h"

#include "logging/log_row.h"
#include "support/sim_desktop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/resource.h>

namespace ecu::logging {
namespace {

messages::EcuLiveData running_engine() {
    messages::EcuLiveData live;
    live.engine_rpm_raw = 3217;
    live.engine_rpm = 3100; // filtered, not for the log
    live.lambda = 0.9921875F;
    live.coolant_temp = -7;
    live.throttle_raw_percent = -1.25F; // not limited
    live.manifold_kpa = 100.25F;
    live.air_temp = 23;
    live.injector_pw = 5063 * 1.6e-06F;
    live.ego_correction = 67 / 64.0F;
    live.ignition_timing = -6.25F;
    live.inj_duty[0] = 12;
    live.ign_duty[0] = 4;
    live.wheel_idx_num = 35;
    live.gpo_duty = {0, 50.196079F, 100, 12.549020F};
    live.map_num = 1;
    live.num_trigs = 60;
    live.num_cams = 65535;
    live.cam_idx_num = 7;
    live.cpu_secs = 43210;
    live.err_flgs = 255;
    live.ego_lambda_setpoint = 1;
    live.speed_MPH = 61.3125F;
    live.gear_number = 3;
    live.map_cell = 8;
    live.map_rem = 64;
    live.rpm_cell = 5;
    live.rpm_rem = 127;
    live.tps_cell = 15;
    live.tps_rem = 0;
    live.tps_pcnt = 14.0625F;
    live.status_flags = 0x01AF;
    live.wb_heater_temp = 780;
    live.egt = 812.0625F;
    return live;
}

TEST(LogText, IsByteForByteWhatReadersOfTheFormatExpect) {
    EXPECT_EQ(
        log_header("03-05-2021", "10:00:00"),
        "Time,CPU_T,RPM,A/F,CLT,TPS,MAP,MAT,PW,CORR,IGN\xB0,INJ%,IGN%,WDBG,GPO1%,GPO2%,GPO3%,GPO4%,MAP#,WTRG,CTRG,"
        "CDBG,SECS,EFLGS,EGO_SP,SPEED,GEAR,MAP_C,MAP_R,RPM_C,RPM_R,TPS_C,TPS_R,TPS_PCNT,O2_ERRS,WB_TEMP,EGT\r\n"
        "Log Begins on 03-05-2021 10:00:00\r\n"
        "LOG_FILE V1.00.02\r\n"
        "\r\n");
    EXPECT_EQ(
        log_row(running_engine(), "10:00:00", 36000.5F),
        "10:00:00,36000.50,3217,0.99,-7,-1.3,100.3,23,8.101,1.047,-6.25,12.0,4.0,35,0.0,50.2,100.0,12.5,1,60,65535,"
        "7,43210,255,1.00,61.31,3,8,0.50,5,0.99,15,0.00,14.06,1AF,780,812.1\r\n");
    EXPECT_EQ(
        log_row({}, "00:00:00", 0),
        "00:00:00,0.00,0,0.00,0,0.0,0.0,0,0.000,0.000,0.00,0.0,0.0,0,0.0,0.0,0.0,0.0,0,0,0,0,0,0,0.00,0.00,0,0,0.00,"
        "0,0.00,0,0.00,0.00,0,0,0.0\r\n");
}

TEST(LogFile, HandsEachRowToTheSystemBeforeTheCallReturnsAndReplacesAnOlderFile) {
    test::SimDesktop desktop;
    desktop.write_file("a.csv", "an older and longer log than the new one\r\n");
    LogFile file;
    ASSERT_EQ(file.open(desktop.path("a.csv"), "head\r\n"), "");
    EXPECT_EQ(desktop.read_file("a.csv"), "head\r\n");
    ASSERT_EQ(file.add("1\r\n"), "");
    EXPECT_EQ(desktop.read_file("a.csv"), "head\r\n1\r\n");
    EXPECT_EQ(file.rows(), 1);
}

TEST(LogFile, GivesTheSystemsReasonForANameThatCannotBeOpenedAFullDiskAndAVanishedFolder) {
    test::SimDesktop desktop;
    LogFile file;
    EXPECT_THAT(file.open(desktop.path("missing/a.csv"), "head"), testing::HasSubstr("No such file"));
    EXPECT_THAT(file.open(desktop.folder(), "head"), testing::HasSubstr("directory"));
    EXPECT_THAT(file.open("/dev/full", "head"), testing::HasSubstr("No space left"));
    EXPECT_FALSE(file.is_open());
    std::filesystem::create_directory(desktop.path("stick"));
    ASSERT_EQ(file.open(desktop.path("stick/a.csv"), "head"), "");
    ASSERT_EQ(file.add("1\r\n"), "");
    std::filesystem::remove_all(desktop.path("stick"));
    EXPECT_THAT(file.add("2\r\n"), testing::HasSubstr("no longer there"));
    EXPECT_EQ(file.rows(), 1);
    EXPECT_FALSE(file.is_open());
}

TEST(LogFile, TakesBackARowThatDidNotFit) {
    test::SimDesktop desktop;
    LogFile file;
    ASSERT_EQ(file.open(desktop.path("a.csv"), "head\r\n"), "");
    ASSERT_EQ(file.add("1,2\r\n"), "");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit half_a_row{14, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &half_a_row);
    const std::string reason = file.add("3,4\r\n");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_THAT(reason, testing::HasSubstr("too large"));
    EXPECT_EQ(desktop.read_file("a.csv"), "head\r\n1,2\r\n");
    EXPECT_EQ(file.rows(), 1);
}

} // namespace
} // namespace ecu::logging
