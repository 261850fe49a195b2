#include "cli/interrupt.h"
#include "cli/json.h"
#include "cli/live_sample.h"
#include "cli/verbs.h"
#include "logging/log_file.h"
#include "logging/log_row.h"

#include <array>
#include <iostream>

namespace ecu::cli {

namespace {

// The moments of a sample clock: one a period from the start on; those that passed meanwhile are left out.
class SampleClock {
public:
    explicit SampleClock(int interval_ms) : period_(interval_ms / 1000.0), next_(monotonic_seconds()) {}
    void await_next(Session& session) {
        next_ += period_;
        const double now = monotonic_seconds();
        if (next_ < now) {
            next_ = now;
        }
        session.sleep(next_ - now);
    }

private:
    double period_;
    double next_;
};

bool more(const Options& options, long done) {
    return !interrupted() && std::cout.good() && (options.count == 0 || done < options.count);
}

} // namespace

Status run_info(Session& session, const Options& options) {
    session.open_link();
    session.send(messages::firmware_revision);
    session.send(messages::serial_number);
    session.send(messages::capability_word);
    const console::Console& console = session.console;
    const Info info{.controller = session.controller_name(),
                    .firmware = console.forms.frm_about.FW_Rev.text(),
                    .firmware_word = console.image.firmware_revision,
                    .serial_number = console.image.serial_number,
                    .capabilities = console.live_decoder.capabilities().word()};
    std::cout << (options.json ? info_as_json(info) : info_as_text(info));
    return Status::done;
}

Status run_monitor(Session& session, const Options& options) {
    session.open_link();
    if (!options.json) {
        std::cout << monitor_heading();
    }
    SampleClock clock(options.interval_ms);
    for (long samples = 0; more(options, samples); ++samples) {
        if (samples > 0) {
            clock.await_next(session);
            if (interrupted()) {
                break;
            }
        }
        session.send(messages::live_block);
        session.send(messages::live_block_two);
        session.send(messages::live_block_three);
        const std::string time = session.console.ports.clock.time_text();
        const messages::EcuLiveData& live = session.console.live;
        std::cout << (options.json ? monitor_as_json(live, time) : monitor_as_text(live, time)) << std::flush;
    }
    return Status::done;
}

// The messages and their rotation are those of the console's own log.
Status run_log(Session& session, const Options& options) {
    static constexpr std::array rotation{messages::live_block, messages::live_block_two, messages::live_block,
                                         messages::live_block_three};
    session.open_link();
    const platform::Clock& clock = session.console.ports.clock;
    const auto failed = [&](const std::string& reason, std::int32_t rows) {
        return Failure(Status::file, options.file + " cannot be written: " + reason + ". " + std::to_string(rows) +
                                         " rows are in it; make room or name another file");
    };
    logging::LogFile file;
    if (const std::string reason =
            file.open(logging::path_of(".", options.file), logging::log_header(clock.date_text(), clock.time_text()));
        !reason.empty()) {
        throw failed(reason, 0);
    }
    SampleClock samples(options.interval_ms);
    while (more(options, file.rows())) {
        samples.await_next(session);
        if (interrupted()) {
            break;
        }
        try {
            session.send(rotation.at(static_cast<std::size_t>(file.rows()) % rotation.size()));
        } catch (const LinkFailed& link) {
            throw Failure(Status::link, std::string(session.explain(link).what()) + "; " + std::to_string(file.rows()) +
                                            " rows are in " + options.file);
        }
        const float seconds = session.console.ports.now();
        if (const std::string reason = file.add(logging::log_row(session.console.live, clock.time_text(), seconds));
            !reason.empty()) {
            throw failed(reason, file.rows());
        }
    }
    if (options.json) {
        std::cout << json_line({{"file", json_text(options.file)}, {"rows", file.rows()}});
    } else {
        std::cout << file.rows() << " rows in " << options.file << "\n";
    }
    return Status::done;
}

} // namespace ecu::cli
