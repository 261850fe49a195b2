#include "cli/live_sample.h"

#include "cli/json.h"
#include "messages/live_fields.h"

#include <QJsonArray>

#include <array>
#include <string_view>

namespace ecu::cli {

namespace {

using messages::EcuLiveData;

namespace live_of = messages::live;

// A field under a short heading; the mixture has a text of its own, which tells what the sensor reads.
struct Column {
    std::string_view heading;
    int width;
    const messages::LiveField& field;
};

constexpr std::array<Column, 13> columns{{
    {"RPM", 6, live_of::engine_rpm},
    {"LAMBDA", 8, live_of::lambda},
    {"CLT", 5, live_of::coolant_temp},
    {"TPS%", 7, live_of::throttle_percent},
    {"MAP", 7, live_of::manifold_kpa},
    {"MAT", 5, live_of::air_temp},
    {"PW", 8, live_of::injector_pw},
    {"CORR", 7, live_of::ego_correction},
    {"IGN", 8, live_of::ignition_timing},
    {"VOLTS", 7, live_of::battery_volts},
    {"SPEED", 8, live_of::speed_MPH},
    {"GEAR", 5, live_of::gear_number},
    {"ERRS", 5, live_of::err_flgs},
}};

std::string mixture(const EcuLiveData& live) {
    if (live.sensor_fault()) {
        return "ERR";
    }
    return live.sensor_reads_lambda() ? live_of::lambda.text(live) : live_of::oxygen_percent.text(live) + "%O2";
}

std::string text_of(const Column& column, const EcuLiveData& live) {
    return &column.field == &live_of::lambda ? mixture(live) : column.field.text(live);
}
constexpr std::size_t time_width = 8;

std::string right(std::string_view text, int width) {
    const auto room = static_cast<std::size_t>(width);
    return std::string(text.size() < room ? room - text.size() : 1, ' ') + std::string(text);
}

template <typename Range> QJsonArray array_of(const Range& values, std::size_t count) {
    QJsonArray array;
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (std::is_floating_point_v<typename Range::value_type>) {
            array.append(json_number(values[i]));
        } else {
            array.append(static_cast<int>(values[i]));
        }
    }
    return array;
}

constexpr std::size_t channels = 8; // of the sixteen that the record has room for

} // namespace

std::string info_as_text(const Info& info) {
    const unsigned word = info.capabilities;
    const auto yes_no = [word](unsigned bit) { return (word & bit) != 0 ? "yes\n" : "no\n"; };
    std::string outputs;
    for (const auto& [bit, name] : {std::pair{1U << 11, "1"}, {1U << 12, " 2"}, {1U << 13, " 3 4"}}) {
        outputs += (word & bit) != 0 ? name : "";
    }
    return "controller        " + info.controller + "\nfirmware          " + info.firmware + "\nserial number     " +
           std::to_string(info.serial_number) + "\ninjector drivers  " + std::to_string(word & 15U) +
           "\nignition drivers  " + std::to_string(word >> 4 & 15U) + "\nidle control      " + yes_no(1U << 8) +
           "fuel control      " + yes_no(1U << 9) + "ignition control  " + yes_no(1U << 10) + "output drivers    " +
           outputs + "\n";
}

std::string info_as_json(const Info& info) {
    const int word = info.capabilities;
    return json_line({{"controller", json_text(info.controller)},
                      {"firmware", json_text(info.firmware)},
                      {"firmware_word", info.firmware_word},
                      {"serial_number", static_cast<qint64>(info.serial_number)},
                      {"capabilities", word},
                      {"injector_drivers", word & 15},
                      {"ignition_drivers", word >> 4 & 15},
                      {"idle_control", (word & 1 << 8) != 0},
                      {"fuel_control", (word & 1 << 9) != 0},
                      {"ignition_control", (word & 1 << 10) != 0},
                      {"output_drivers", QJsonArray{(word & 1 << 11) != 0, (word & 1 << 12) != 0, (word & 1 << 13) != 0,
                                                    (word & 1 << 13) != 0}}});
}

std::string monitor_heading() {
    std::string text = "TIME" + std::string(time_width - 4, ' ');
    for (const Column& column : columns) {
        text += right(column.heading, column.width);
    }
    return text + "\n";
}

std::string monitor_as_text(const EcuLiveData& live, const std::string& time) {
    std::string text = time;
    for (const Column& column : columns) {
        text += right(text_of(column, live), column.width);
    }
    return text + "\n";
}

std::string monitor_as_json(const EcuLiveData& live, const std::string& time) {
    QJsonObject object{{"time", json_text(time)}, {"sensor_fault", live.sensor_fault()}};
    for (const messages::LiveField& field : messages::live_fields) {
        object.insert(json_text(field.key), json_number(field.value(live)));
    }
    // What the sensor does not read is told as nothing, not as the stand-in that the record holds.
    object.insert(live.sensor_reads_lambda() ? "oxygen_percent" : "lambda", QJsonValue());
    object.insert("gpo_duty", array_of(live.gpo_duty, live.gpo_duty.size()));
    object.insert("inj_pw_ms", array_of(live.inj_pw, channels));
    object.insert("ign_dwell_ms", array_of(live.ign_dwell, channels));
    object.insert("inj_duty", array_of(live.inj_duty, channels));
    object.insert("ign_duty", array_of(live.ign_duty, channels));
    return json_line(object);
}

} // namespace ecu::cli
