// The command line of the console: ecu-cli VERB. Standard output has the results, standard error one line a failure.
#include "cli/interrupt.h"
#include "cli/verbs.h"

#include <QCoreApplication>

#include <algorithm>
#include <iostream>

namespace {

using namespace ecu::cli; // NOLINT: this program is nothing else

Status run(const Options& options) {
    if (options.verb == Verb::check) {
        return run_check(options);
    }
    if (options.verb == Verb::diff) {
        return run_diff(options);
    }
    if (options.verb == Verb::compare) {
        return run_compare(options);
    }
    if (options.verb == Verb::journal) {
        return run_journal(options);
    }
    if (options.verb == Verb::restore_point) {
        return run_restore_point(options);
    }
    if (options.verb == Verb::flash_check) {
        return run_flash_check(options);
    }
    if (options.verb == Verb::log_stats) {
        return run_log_stats(options);
    }
    Session session(options);
    try {
        switch (options.verb) {
        case Verb::info:
            return run_info(session, options);
        case Verb::download:
            return run_download(session, options);
        case Verb::upload:
            return run_upload(session, options);
        case Verb::monitor:
            return run_monitor(session, options);
        case Verb::log:
            return run_log(session, options);
        case Verb::send_changes:
            return run_send_changes(session, options);
        case Verb::link:
            return run_link(session, options);
        case Verb::diff:
        case Verb::check:
        case Verb::compare:
        case Verb::restore_point:
        case Verb::journal:
        case Verb::flash_check:
        case Verb::log_stats:
            break;
        }
    } catch (const LinkFailed& failed) {
        throw session.explain(failed);
    }
    return Status::done;
}

int complain(Status status, std::string text) {
    std::ranges::replace(text, '\n', ' ');
    std::cerr << "ecu-cli: " << text << std::endl;
    return static_cast<int>(status);
}

} // namespace

int main(int argc, char* argv[]) {
    try {
        const auto parsed = parse_options(argc, argv);
        if (const auto* shown = std::get_if<Shown>(&parsed)) {
            std::cout << shown->text;
            return 0;
        }
        // Qt's own event loop costs less per message than the one shared with a desktop's programs.
        qputenv("QT_NO_GLIB", "1");
        const QCoreApplication application(argc, argv);
        catch_interrupts();
        const Status status = run(std::get<Options>(parsed));
        std::cout.flush();
        return std::cout ? static_cast<int>(status) : complain(Status::file, "the results could not be written out");
    } catch (const Failure& failure) {
        return complain(failure.status(), failure.what());
    } catch (const Interrupted&) {
        return complain(Status::ended, "ended by the user; what had been sent stays in the controller, and no file was "
                                       "changed");
    } catch (const ProgramEnded& ended) {
        return complain(Status::link, "the console has ended itself with status " + std::to_string(ended.status) +
                                          ". Check the link and try again");
    } catch (const std::exception& fault) {
        return complain(Status::link, std::string("an inner fault: ") + fault.what());
    }
}
