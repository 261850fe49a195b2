#include "calibration/compare.h"
#include "calibration/file_check.h"
#include "cli/interrupt.h"
#include "cli/json.h"
#include "cli/progress_line.h"
#include "cli/reports.h"
#include "cli/verbs.h"

#include <QJsonArray>

#include <iostream>
#include <unistd.h>

namespace ecu::cli {

namespace {

using calibration::TransferResult;

void insist_on(const TransferResult& result, const Session& session) {
    switch (result.outcome) {
    case TransferResult::Outcome::done:
        break;
    case TransferResult::Outcome::file_failed:
    case TransferResult::Outcome::stopped:
        throw Failure(Status::file, on_one_line(result.trouble));
    case TransferResult::Outcome::other_controller:
        throw Failure(Status::link, on_one_line(result.trouble));
    case TransferResult::Outcome::incomplete:
        throw Failure(Status::link, calibration::counted(static_cast<std::size_t>(result.unanswered), "message") +
                                        " to " + session.controller_name() +
                                        " had no answer, so no file was written. Check the line and do it again");
    case TransferResult::Outcome::demo_mode:
    case TransferResult::Outcome::no_answer:
    case TransferResult::Outcome::cancelled:
        throw Failure(Status::link,
                      session.controller_name() + " does not answer. Check its power and cable and try again");
    }
    if (result.unanswered > 0) {
        throw Failure(Status::link, calibration::counted(static_cast<std::size_t>(result.unanswered), "message") +
                                        " to " + session.controller_name() +
                                        " had no answer. Check the line and do it again");
    }
}

QJsonObject result_object(const Options& options, const TransferResult& result, const Session& session,
                          double seconds) {
    const link::SharedState& state = session.console.state;
    return {{"file", json_text(options.file)},      {"lines", result.lines},
            {"messages", result.messages},          {"seconds", seconds},
            {"bytes_sent", state.tx_byte_count[1]}, {"bytes_received", state.rx_byte_count[1]}};
}

bool agreed_to_upload(const Options& options, const Session& session, std::size_t values) {
    return agreed(
        "Write " + calibration::counted(values, "value") + " of " + options.file + " into " +
            session.controller_name() + "?",
        "an upload replaces values in the controller and nobody can be asked here. Give --yes if you want it");
}

calibration::Snapshot values_of_controller(const Options& options) {
    Session session(options);
    try {
        session.open_link();
        const ProgressLine progress(session);
        std::string text;
        const TransferResult result =
            session.console.transfer.download_lines(controller_word, [&text](std::string_view line) {
                text += line;
                return true;
            });
        insist_on(result, session);
        return calibration::values_of(text);
    } catch (const LinkFailed& failed) {
        throw session.explain(failed);
    }
}

} // namespace

Status run_download(Session& session, const Options& options) {
    session.open_link();
    const double start = monotonic_seconds();
    TransferResult result;
    {
        const ProgressLine progress(session);
        result = session.console.transfer.download_to(options.file, calibration::Transfer::Accept::whole_only);
    }
    insist_on(result, session);
    const double seconds = monotonic_seconds() - start;
    if (options.json) {
        std::cout << json_line(result_object(options, result, session, seconds));
    } else {
        std::cout << result.lines << " lines in " << options.file << "\n";
    }
    return Status::done;
}

Status run_upload(Session& session, const Options& options) {
    // Read once: what is looked through and asked about is what is sent.
    const std::string text = text_of_file(options.file);
    const calibration::Snapshot values = calibration::values_of(text);
    const bool cut = !text.empty() && !text.ends_with('\n');
    if (!values.unreadable.empty() || !values.odd.empty()) {
        // Found before anything is sent, where it still does no harm.
        const bool stops = !values.unreadable.empty() &&
                           (values.odd.empty() || values.unreadable.front().line < values.odd.front().line);
        const calibration::UnreadableLine& line = stops ? values.unreadable.front() : values.odd.front();
        throw Failure(Status::file, options.file + ":" + std::to_string(line.line) + ": " + line.key +
                                        (line.key.empty() ? "" : ": ") + line.text +
                                        ". Correct or remove the line; ecu-cli check names all such lines");
    }
    TransferResult result;
    double seconds = 0;
    if (values.size() > 0 && (options.yes || agreed_to_upload(options, session, values.size()))) {
        session.open_link();
        const double start = monotonic_seconds();
        const ProgressLine progress(session);
        result = session.console.transfer.upload_text(options.file, text);
        insist_on(result, session);
        seconds = monotonic_seconds() - start;
    }
    if (options.json) {
        QJsonObject object = result_object(options, result, session, seconds);
        QJsonArray unknown;
        for (const calibration::UnknownKey& key : values.unknown) {
            unknown.append(QJsonObject{{"line", key.line}, {"key", json_text(key.text)}});
        }
        object["unknown"] = unknown;
        object["cut"] = cut;
        std::cout << json_line(object);
    } else {
        for (const calibration::UnknownKey& key : values.unknown) {
            std::cout << "unknown  " << key.text << " in line " << key.line << ", not sent\n";
        }
        if (cut) {
            std::cout << "cut      " << options.file << " has no line end behind its last line: is it whole?\n";
        }
        if (values.size() == 0) {
            std::cout << options.file << " holds no values: nothing was sent\n";
        } else if (result.messages == 0) {
            std::cout << "Nothing was sent\n";
        } else {
            std::cout << calibration::counted(static_cast<std::size_t>(result.messages), "value") << " of "
                      << options.file << " sent\n";
        }
    }
    return result.messages > 0 ? Status::done : Status::differs;
}

Status run_diff(const Options& options) {
    const bool controller_a = options.file == controller_word;
    const bool controller_b = options.second == controller_word;
    if (controller_a && controller_b) {
        throw Failure(Status::usage, "both sides are the controller. Name a setup file for one of them");
    }
    // The file first: it may fail before any time is spent on the line.
    const std::string& file = controller_a ? options.second : options.file;
    const calibration::Snapshot first = calibration::values_of(text_of_file(file));
    const calibration::Snapshot other = controller_a || controller_b
                                            ? values_of_controller(options)
                                            : calibration::values_of(text_of_file(options.second));
    const calibration::Snapshot& a = controller_a ? other : first;
    const calibration::Snapshot& b = controller_a ? first : other;
    const calibration::Comparison comparison = calibration::compare(a, b);
    std::cout << (options.json ? as_json(comparison, a, b) : as_text(comparison, a, b, options.file, options.second));
    return comparison.same ? Status::done : Status::differs;
}

Status run_check(const Options& options) {
    const calibration::CheckReport report = calibration::check(text_of_file(options.file));
    std::cout << (options.json ? as_json(report) : as_text(report, options.file));
    return report.findings.empty() ? Status::done : Status::differs;
}

} // namespace ecu::cli
