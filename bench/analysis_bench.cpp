// A log of a million rows: its opening, and its statistics over a map.
#include "analysis/map_statistics.h"

#include <chrono>
#include <cstdio>
#include <random>

int main() {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](Clock::time_point since) {
        return std::chrono::duration<double>(Clock::now() - since).count();
    };
    std::string text =
        "Time,CPU_T,RPM,A/F,CLT,TPS,MAP,MAT,PW,CORR,IGN,INJ%,IGN%,WDBG,GPO1%,GPO2%,GPO3%,GPO4%,MAP#,WTRG,CTRG,CDBG,"
        "SECS,EFLGS,EGO_SP,SPEED,GEAR,MAP_C,MAP_R,RPM_C,RPM_R,TPS_C,TPS_R,TPS_PCNT,O2_ERRS,WB_TEMP,EGT\r\n"
        "Log Begins on 03-05-2021 10:00:00\r\nLOG_FILE V1.00.02\r\n\r\n";
    std::mt19937 random(7);
    constexpr int rows = 1'000'000;
    text.reserve(std::size_t{rows} * 190);
    for (int i = 0; i < rows; ++i) {
        char row[256];
        const int count = std::snprintf(row, sizeof row,
                                        "10:00:00,%d.%02d,3217,0.99,87,31.3,100.3,23,8.101,1.047,16.25,12.0,4.0,35,0.0,"
                                        "50.2,100.0,12.5,1,60,65535,7,43210,0,"
                                        "1.00,61.31,3,%u,0.%02u,%u,0.%02u,%u,0.%02u,14.06,1AF,780,812.1\r\n",
                                        36000 + i / 100, i % 100, static_cast<unsigned>(random() % 16),
                                        static_cast<unsigned>(random() % 100), static_cast<unsigned>(random() % 16),
                                        static_cast<unsigned>(random() % 100), static_cast<unsigned>(random() % 16),
                                        static_cast<unsigned>(random() % 100));
        text.append(row, static_cast<std::size_t>(count));
    }
    auto start = Clock::now();
    const ecu::analysis::LogTable log = ecu::analysis::parse_log(text);
    const double opened = seconds(start);
    start = Clock::now();
    const auto statistics = ecu::analysis::map_statistics(log, ecu::analysis::Load::pressure, "mixture", {});
    const double counted = seconds(start);
    std::printf("opening a log of a million rows      %.2f s (%zu rows; at most 2)\n", opened, log.rows());
    std::printf("its statistics over the fuel map     %.2f s (%zu used; at most 1)\n", counted, statistics.used);
    std::printf("memory of the columns                %.0f bytes a row (at most 400)\n",
                static_cast<double>(log.columns.size() * sizeof(float)));
    return opened <= 2 && counted <= 1 && log.rows() == rows ? 0 : 1;
}
