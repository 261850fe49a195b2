#include "analysis/map_statistics.h"
#include "cli/json.h"
#include "cli/verbs.h"
#include "platform/display_mask.h"

#include <QJsonArray>

#include <iostream>

namespace ecu::cli {

namespace {

using analysis::map_side;

constexpr std::size_t cell_width = 8;

QJsonObject as_json(const analysis::LogTable& log, const analysis::MapStatistics& statistics, const Options& options) {
    QJsonArray faults;
    for (const analysis::LogFault& fault : log.faults) {
        faults.append(QJsonObject{{"line", static_cast<qint64>(fault.line)}, {"text", json_text(fault.text)}});
    }
    const analysis::Taken& taken = statistics.taken;
    QJsonArray cells;
    for (std::size_t i = 0; i < statistics.cells.size(); ++i) {
        const analysis::CellStatistics& cell = statistics.cells[i];
        if (cell.weight <= 0) {
            continue;
        }
        cells.append(
            QJsonObject{{"load", static_cast<int>(i % map_side)},
                        {"speed", static_cast<int>(i / map_side)},
                        {"element", static_cast<int>(i)},
                        {"hits", cell.hits},
                        {"mean", cell.mean},
                        {"spread", cell.spread},
                        {"low", json_number(cell.low)},
                        {"high", json_number(cell.high)},
                        {"correction", cell.correction ? QJsonValue(json_number(*cell.correction)) : QJsonValue()}});
    }
    const auto number = [](std::size_t n) { return static_cast<qint64>(n); };
    return {{"map", json_text(options.map)},
            {"channel", json_text(options.channel)},
            {"rows", number(log.rows())},
            {"used", number(statistics.used)},
            {"left_out", QJsonObject{{"no_place", number(taken.no_place)},
                                     {"cold", number(taken.cold)},
                                     {"throttle", number(taken.throttle)},
                                     {"fuel_cut", number(taken.fuel_cut)},
                                     {"lambda", number(taken.lambda)},
                                     {"no_value", number(taken.no_value)}}},
            {"unreadable", number(log.fault_count)},
            {"faults", faults},
            {"cells", cells}};
}

// The map as it stands on the screen: load upwards, speed to the right. A cell with too few rows shows its number of
// them in brackets.
void print(const analysis::LogTable& log, const analysis::MapStatistics& statistics, const Options& options) {
    const analysis::Taken& taken = statistics.taken;
    std::cout << log.rows() << " rows, " << statistics.used << " used. Left out: " << taken.cold << " cold, "
              << taken.throttle << " with a moving throttle, " << taken.fuel_cut << " in a fuel cut, " << taken.lambda
              << " beyond the sensor's range, " << taken.no_place << " without a place in the map, " << taken.no_value
              << " without a value.\n"
              << options.channel << " over the cells of " << options.map << ":\n";
    for (std::size_t load = map_side; load-- > 0;) {
        for (std::size_t speed = 0; speed < map_side; ++speed) {
            const analysis::CellStatistics& cell = statistics.cells[speed * map_side + load];
            std::string text = ".";
            if (cell.hits >= options.least_hits) {
                text = platform::masked(cell.correction ? static_cast<double>(*cell.correction) : cell.mean, "0.000");
            } else if (cell.hits > 0) {
                text = "(" + std::to_string(cell.hits) + ")";
            }
            text.insert(0, text.size() < cell_width ? cell_width - text.size() : 1, ' ');
            std::cout << text;
        }
        std::cout << '\n';
    }
    for (const analysis::LogFault& fault : log.faults) {
        std::cerr << fault.text << '\n';
    }
    if (log.fault_count > log.faults.size()) {
        std::cerr << log.fault_count - log.faults.size() << " more lines are left out.\n";
    }
}

} // namespace

Status run_log_stats(const Options& options) {
    const analysis::LogTable log = analysis::read_log(options.file);
    if (!log.fault.empty()) {
        throw Failure(Status::file, options.file + " cannot be used: " + log.fault);
    }
    const bool by_throttle = options.map.starts_with("TPF");
    const analysis::MapStatistics statistics =
        map_statistics(log, by_throttle ? analysis::Load::throttle : analysis::Load::pressure, options.channel,
                       {.coolant_above = options.coolant_above,
                        .exhaust_delay = options.exhaust_delay,
                        .least_hits = options.least_hits});
    if (!statistics.fault.empty()) {
        throw Failure(Status::file, options.file + ": " + statistics.fault + " Name a log of the plotter");
    }
    if (options.json) {
        std::cout << json_line(as_json(log, statistics, options));
    } else {
        print(log, statistics, options);
    }
    return log.fault_count == 0 ? Status::done : Status::differs;
}

} // namespace ecu::cli
