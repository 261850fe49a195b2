#include "cli/interrupt.h"
#include "cli/json.h"
#include "cli/verbs.h"
#include "controller/rehearsal.h"
#include "flash/record_check.h"
#include "link/link_doctor.h"

#include <QJsonArray>

#include <iostream>
#include <optional>

namespace ecu::cli {

namespace {

QJsonArray json_texts(const std::vector<std::string>& texts) {
    QJsonArray array;
    for (const std::string& text : texts) {
        array.append(json_text(text));
    }
    return array;
}

std::string as_json(const link::LinkState& link) {
    const link::LinkFigures& seen = link.figures;
    QJsonArray trips;
    for (std::size_t i = 0; i < link::round_trip_classes; ++i) {
        trips.append(QJsonObject{{"time", json_text(link::round_trip_class(i))},
                                 {"messages", static_cast<qint64>(seen.round_trips[i])}});
    }
    QJsonObject retries;
    for (std::size_t i = 0; i < link::retry_kinds; ++i) {
        retries[json_text(link::retry_names.at(i))] = static_cast<qint64>(seen.retries[i]);
    }
    QJsonObject object{{"link", json_text(link.name)},
                       {"answered", static_cast<qint64>(seen.answered)},
                       {"given_up", static_cast<qint64>(seen.given_up)},
                       {"mean_ms", json_number(static_cast<float>(seen.mean_ms()))},
                       {"fastest_ms", json_number(static_cast<float>(seen.fastest_ms))},
                       {"slowest_ms", json_number(static_cast<float>(seen.slowest_ms))},
                       {"beyond_wire_ms", json_number(static_cast<float>(seen.mean_delay_ms()))},
                       {"round_trips", trips},
                       {"retries", retries},
                       {"advice", json_texts(link::advice(link))}};
    if (link.server.empty()) {
        object["device"] = json_text(link.port.device);
        object["present"] = link.port.present;
        object["permitted"] = link.port.permitted;
        object["open_elsewhere"] = json_texts(link.port.holders);
        object["latency_ms"] = link.port.latency_ms ? QJsonValue(*link.port.latency_ms) : QJsonValue();
    } else {
        object["server"] = json_text(link.server);
    }
    return json_line(object);
}

QJsonObject as_json(const flash::RecordReport& checked) {
    QJsonArray faults;
    for (const flash::RecordFault& fault : checked.faults) {
        faults.append(QJsonObject{{"line", static_cast<qint64>(fault.line)}, {"text", json_text(fault.text)}});
    }
    QJsonArray ranges;
    for (const flash::AddressRange& range : checked.ranges) {
        ranges.append(
            QJsonObject{{"first", static_cast<qint64>(range.first)}, {"last", static_cast<qint64>(range.last)}});
    }
    return {{"lines", static_cast<qint64>(checked.lines)},
            {"data_bytes", static_cast<qint64>(checked.data_bytes)},
            {"header", json_text(checked.header)},
            {"ranges", ranges},
            {"findings", static_cast<qint64>(checked.fault_count)},
            {"list", faults}};
}

} // namespace

// The report comes also where the link failed: then it is wanted most.
Status run_link(Session& session, const Options& options) {
    const link::SharedState& state = session.console.state;
    link::LinkDoctor doctor(session.console.comm);
    doctor.look_on();
    link::LinkState link{.name = session.controller_name(), .server = options.remote, .port = {}, .figures = {}};
    if (link.server.empty()) {
        link.port = link::read_port_facts(session.console.comm1->device_of(state.comm_port_number));
    }
    std::optional<Failure> failed;
    try {
        if (options.questions > 0) {
            session.open_link();
        }
        for (int asked = 0; asked < options.questions && !interrupted(); ++asked) {
            session.send(messages::live_block);
        }
    } catch (const Failure& failure) {
        failed = failure;
    } catch (const LinkFailed& failure) {
        failed = session.explain(failure);
    }
    link.figures = doctor.figures();
    std::cout << (options.json ? as_json(link) : link::report(link)) << std::flush;
    if (failed) {
        throw Failure(*failed);
    }
    return link::advice(link).empty() ? Status::done : Status::differs;
}

Status run_flash_check(const Options& options) {
    flash::RecordFile file;
    if (const std::string reason = file.open(options.file); !reason.empty()) {
        throw Failure(Status::file, options.file + " cannot be used: " + reason + ". Name another file");
    }
    const flash::RecordReport checked = flash::check_records(file);
    const flash::Rehearsal rehearsal = flash::rehearse(file, controller::rehearsal_monitor<flash::Monitor>());
    if (options.json) {
        QJsonObject object = as_json(checked);
        object["rehearsed"] = rehearsal.done;
        object["refused_line"] =
            rehearsal.refused_line > 0 ? QJsonValue(static_cast<qint64>(rehearsal.refused_line)) : QJsonValue();
        object["seconds"] = rehearsal.seconds;
        std::cout << json_line(object);
    } else {
        std::cout << flash::report(checked, rehearsal, options.file);
    }
    return checked.fault_count == 0 && rehearsal.done ? Status::done : Status::differs;
}

} // namespace ecu::cli
