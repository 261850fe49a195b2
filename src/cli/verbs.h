// The verbs of ecu-cli. Results go to the output stream, progress and questions to the error stream. What fails is
// thrown: Failure, LinkFailed out of a transaction, Interrupted.
#pragma once

#include "cli/session.h"

namespace ecu::cli {

Status run_info(Session& session, const Options& options);
Status run_download(Session& session, const Options& options);
Status run_upload(Session& session, const Options& options);
Status run_monitor(Session& session, const Options& options);
Status run_link(Session& session, const Options& options);
Status run_log(Session& session, const Options& options);
// With files only these need no session.
Status run_diff(const Options& options);
Status run_check(const Options& options);
Status run_compare(const Options& options);
Status run_journal(const Options& options);
Status run_restore_point(const Options& options);
Status run_send_changes(Session& session, const Options& options);
Status run_flash_check(const Options& options);
Status run_log_stats(const Options& options);

} // namespace ecu::cli
