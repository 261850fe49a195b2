// Reading logs that are whole, foreign or spoiled, and what they say of a map's cells.
#include "analysis/map_statistics.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

namespace ecu::analysis {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

TEST(LogTable, ReadsOwnLogsRunsAndOtherProgramsTables) {
    LogTable log = parse_log("Time,CPU_T,RPM,O2_ERRS\r\nLog Begins on 03-05-2021 10:00:00\r\nLOG_FILE V1.00.02\r\n\r\n"
                             "10:00:01,36000.50,3217,1AF\r\n10:00:02,36001.50,-0,0\r\n");
    EXPECT_EQ(log.fault + std::to_string(log.fault_count), "0");
    EXPECT_THAT(log.find("RPM")->values, ElementsAre(3217, 0));
    EXPECT_THAT(log.find("Time")->values, ElementsAre(36001, 36002));
    EXPECT_EQ(log.find("MAP"), nullptr);
    log = parse_log("\xEF\xBB\xBF\"Zeit\";\"Drehzahl\";Lambda\ns;U/min;\n0,5;3217;0,98\n1,0;;1,02;\n");
    EXPECT_EQ(log.fault_count, 0U);
    EXPECT_EQ(log.columns[1].unit, "U/min");
    EXPECT_THAT(log.find("Lambda")->values, ElementsAre(0.98F, 1.02F));
    EXPECT_TRUE(std::isnan(log.find("Drehzahl")->values[1]));
    log = parse_log("a\tb\n1.5\t2\n");
    EXPECT_THAT(log.find("a")->values, ElementsAre(1.5F));
}

TEST(LogTable, LeavesOutWhatItCannotReadAndTellsTheLine) {
    std::string text = "CPU_T,RPM\r\n1,100\r\n2\r\n3,100,9\r\nCPU_T,RPM\r\n4,abc\r\n5,500\r\n\r\n";
    text += std::string(300, '\0') + "\r\n6,600\r\n7,7";
    const LogTable log = parse_log(text);
    EXPECT_THAT(log.find("RPM")->values, ElementsAre(100, 500, 600, 7));
    std::vector<std::string> told;
    for (const LogFault& fault : log.faults) {
        told.push_back(fault.text);
    }
    EXPECT_THAT(told, ElementsAre(HasSubstr("Line 3 has 1 values"), HasSubstr("Line 4 has 3 values"),
                                  HasSubstr("Line 5 repeats the titles"), HasSubstr("Line 6 has \"abc\" for RPM"),
                                  HasSubstr("Line 9 holds NUL bytes")));
    for (const char* empty : {"", "\r\n", "a,b\r\n", "a,b"}) {
        EXPECT_NE(parse_log(empty).fault, "") << empty;
    }
    EXPECT_THAT(parse_log(std::string("a\0b,c\n1,2\n", 10)).fault, HasSubstr("no text"));
    EXPECT_THAT(read_log("/no such folder/log.csv").fault, HasSubstr("No such file"));
    std::string many = "a,b\n";
    for (int i = 0; i < 5000; ++i) {
        many += "x,1\n";
    }
    EXPECT_EQ(parse_log(many + "1,2\n").fault_count, 5000U);
    EXPECT_THAT(parse_log(many).faults, SizeIs(100));
}

// A log with what the statistics need, row by row.
struct Log {
    std::string text = "CPU_T,CLT,TPS,PW,A/F,EGO_SP,CORR,MAP_C,MAP_R,RPM_C,RPM_R,TPS_C,TPS_R\n";
    struct Row {
        double time = 0, clt = 90, tps = 20, pw = 3, lambda = 1, target = 1, corr = 1;
        double load = 4, speed = 7; // cell and place in one number
    };
    void add(const Row& row) {
        char line[200];
        std::snprintf(line, sizeof line, "%.2f,%.0f,%.1f,%.3f,%.4f,%.2f,%.4f,%d,%.4f,%d,%.4f,0,0\n", row.time, row.clt,
                      row.tps, row.pw, row.lambda, row.target, row.corr, static_cast<int>(row.load),
                      row.load - std::floor(row.load), static_cast<int>(row.speed), row.speed - std::floor(row.speed));
        text += line;
    }
    MapStatistics statistics(const Filters& filters = {}, const std::string& channel = "mixture") const {
        return map_statistics(parse_log(text), Load::pressure, channel, filters);
    }
};

TEST(MapStatistics, SharesARowAmongTheFourCellsAroundIt) {
    Log log;
    log.add({.time = 1, .lambda = 1.2, .load = 4.25, .speed = 7.5});
    log.add({.time = 2, .lambda = 0.8, .load = 4});
    const MapStatistics statistics = log.statistics({}, "A/F");
    const auto cell = [&](std::size_t load, std::size_t speed) { return statistics.cells[speed * map_side + load]; };
    EXPECT_NEAR(cell(4, 7).weight, 0.375 + 1, 1e-6);
    EXPECT_NEAR(cell(5, 7).weight, 0.125, 1e-6);
    EXPECT_NEAR(cell(5, 8).weight, 0.125, 1e-6);
    EXPECT_NEAR(cell(4, 7).mean, (0.375 * 1.2 + 0.8) / 1.375, 1e-6);
    EXPECT_NEAR(cell(4, 7).low, 0.8, 1e-6);
    EXPECT_NEAR(cell(4, 7).high, 1.2, 1e-6);
    EXPECT_EQ(cell(4, 7).hits, 2);
    EXPECT_EQ(cell(5, 8).hits, 0);
    EXPECT_FALSE(cell(4, 7).correction.has_value()) << "no mixture was asked for";
}

TEST(MapStatistics, CountsWhatEachFilterTakes) {
    Log log;
    log.add({.time = 1});
    log.add({.time = 2, .clt = 60});
    log.add({.time = 3, .tps = 41});
    log.add({.time = 4, .tps = 41, .pw = 0});
    log.add({.time = 5, .tps = 41, .lambda = 2});
    log.add({.time = 6, .tps = 41, .load = 16});
    log.add({.time = 7, .tps = 41, .target = 0});
    log.add({.time = 8, .tps = 41, .load = 15.5, .speed = 15.5}); // the edge: no cell beyond it
    log.add({.time = 86399.99, .tps = 41});
    log.add({.time = 0.01, .tps = 41}); // behind midnight
    const MapStatistics statistics = log.statistics();
    EXPECT_EQ(statistics.taken.cold, 1U);
    EXPECT_EQ(statistics.taken.throttle, 1U);
    EXPECT_EQ(statistics.taken.fuel_cut, 1U);
    EXPECT_EQ(statistics.taken.lambda, 1U);
    EXPECT_EQ(statistics.taken.no_place, 1U);
    EXPECT_EQ(statistics.taken.no_value, 1U);
    EXPECT_EQ(statistics.used, 4U);
    EXPECT_NEAR(statistics.cells[255].weight, 1, 1e-6);
    EXPECT_THAT(map_statistics(parse_log("CPU_T,RPM\n1,2\n"), Load::pressure, "mixture", {}).fault, HasSubstr("MAP_C"));
}

// The engine wants `wanted`, the table holds `table`: the lambda of a row is what the controller's interpolation makes
// of the two, in the digits of a log, with noise. Cells with twenty rows get their factor back within one per cent.
TEST(MapStatistics, FindsTheFactorsByWhichATableWasMadeWrongInOnePass) {
    std::array<double, map_cells> wrong{};
    wrong.fill(1);
    for (const auto& [cell, factor] : {std::pair{5 * 16 + 4, 1.1},
                                       {5 * 16 + 5, 1.1},
                                       {6 * 16 + 4, 0.92},
                                       {9 * 16 + 9, 1.15},
                                       {2 * 16 + 2, 0.9},
                                       {3 * 16 + 12, 1.05}}) {
        wrong[static_cast<std::size_t>(cell)] = factor;
    }
    std::mt19937 random(3);
    std::uniform_real_distribution<> place(0, 14.99);
    std::normal_distribution<> noise(0, 0.01);
    Log log;
    const auto interpolated = [](double load, double speed, auto&& value) {
        const auto l = static_cast<std::size_t>(load);
        const auto s = static_cast<std::size_t>(speed);
        const double u = load - std::floor(load);
        const double r = speed - std::floor(speed);
        return (1 - r) * ((1 - u) * value(s * 16 + l) + u * value(s * 16 + l + 1)) +
               r * ((1 - u) * value((s + 1) * 16 + l) + u * value((s + 1) * 16 + l + 1));
    };
    const auto healthy = [](std::size_t cell) {
        return 0.9 + 0.01 * static_cast<double>(cell / 16) + 0.005 * static_cast<double>(cell % 16);
    };
    for (int i = 0; i < 30000; ++i) {
        const double load = std::round(place(random) * 100) / 100;
        const double speed = std::round(place(random) * 100) / 100;
        const double needed = interpolated(load, speed, healthy);
        const double given = interpolated(load, speed, [&](std::size_t cell) { return healthy(cell) / wrong[cell]; });
        const double correction = i % 2 == 0 ? 1 : 1.03; // the oxygen control at work
        log.add({.time = i * 0.1,
                 .lambda = std::round((0.95 * needed / given / correction + noise(random)) * 128) / 128,
                 .target = 0.95,
                 .corr = correction,
                 .load = load,
                 .speed = speed});
    }
    const MapStatistics statistics = log.statistics();
    int corrected = 0;
    for (std::size_t cell = 0; cell < map_cells; ++cell) {
        if (const auto& correction = statistics.cells[cell].correction) {
            ++corrected;
            EXPECT_NEAR(*correction / wrong[cell], 1, 0.01) << cell;
        }
    }
    EXPECT_GT(corrected, 200);
    const MapStatistics careful = log.statistics({.least_hits = 100'000});
    EXPECT_FALSE(careful.cells[5 * 16 + 4].correction.has_value());
    EXPECT_GT(careful.cells[5 * 16 + 4].hits, 20);
    EXPECT_NEAR(*log.statistics({.most_correction = 0.05F}).cells[9 * 16 + 9].correction, 1.05F, 1e-6);
}

TEST(MapStatistics, TakesTheMixtureOfTheExhaustThatComesLater) {
    Log log;
    for (int i = 0; i < 200;
         ++i) { // the engine moves between two cells each second; the sensor follows half a second behind
        const double time = i * 0.1;
        const bool there = (i / 10) % 2 == 1;
        const bool seen = ((i - 5) / 10) % 2 == 1 && i >= 5;
        log.add({.time = time, .lambda = seen ? 1.1 : 1.0, .load = there ? 9.0 : 4.0});
    }
    const auto correction = [&](float delay, std::size_t load) {
        return *log.statistics({.exhaust_delay = delay}).cells[7 * map_side + load].correction;
    };
    EXPECT_NEAR(correction(0.5F, 9), 1.1, 0.01);
    EXPECT_NEAR(correction(0.5F, 4), 1.0, 0.01);
    EXPECT_NEAR(correction(0, 9), 1.05, 0.02);
}

} // namespace
} // namespace ecu::analysis
