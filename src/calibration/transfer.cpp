#include "calibration/transfer.h"

#include "calibration/setup_file.h"

#include <algorithm>

namespace ecu::calibration {

namespace {

constexpr std::string_view initial_name = "*.SET";
constexpr std::string_view demo_refusal = "This program is running in demo mode, so this feature cannot be executed.";
constexpr std::string_view silence_refusal =
    "The device controller is not communicating, so this feature cannot be executed.";
constexpr std::string_view first_scalar_of_progress = "IAC_CLOS";
constexpr int download_steps = 2150; // what the bar of a download ends at, about
constexpr float bar_at_start = 30;
constexpr std::size_t lines_named = 12;       // in the result's one line
constexpr float seconds_between_looks = 0.1F; // of the progress: seen moving, and no burden to the wire

platform::FileDialog file_dialog(std::string title) {
    return {.title = std::move(title),
            .default_extension = "set",
            .filter = "Setup Files (*.set)|",
            .initial_name = std::string(initial_name)};
}

// What a vector's lines count for in the bar; an estimate.
int estimated_steps(const Parameter& row) {
    if (row.count == 16) {
        return 11;
    }
    if (row.count == 8) {
        return 8;
    }
    return row.key.starts_with("BO") ? 4 : 3;
}

std::filesystem::path path_from_text(const std::string& text) { return {std::u8string(text.begin(), text.end())}; }

std::string counted(int count, std::string_view what) {
    return calibration::counted(static_cast<std::size_t>(count), what);
}

// "2,126"
std::string grouped(int number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;) {
        text.insert(at -= 3, ",");
    }
    return text;
}

// ", 2 unknown: 20, 30"
std::string named_lines(const std::vector<int>& lines, std::string_view what) {
    if (lines.empty()) {
        return {};
    }
    std::string text = ", " + grouped(static_cast<int>(lines.size())) + " " + std::string(what) + ": ";
    for (std::size_t i = 0; i < std::min(lines.size(), lines_named); ++i) {
        text += (i > 0 ? ", " : "") + std::to_string(lines[i]);
    }
    return text + (lines.size() > lines_named ? ", ..." : "");
}

std::string lines_text(int lines) { return grouped(lines) + (lines == 1 ? " line" : " lines"); }

std::string stop_text(const std::string& path, const TransferResult& so_far, const LineStop& stop) {
    std::string text = "The upload of " + path + " has stopped at line " + std::to_string(so_far.lines + 1);
    if (!stop.key.empty()) {
        text += ", " + stop.key;
    }
    if (!stop.value.empty()) {
        text += " = " + stop.value;
    }
    return text + ": " + stop.reason + ".\n" + counted(so_far.messages, "line") + " had been sent before it and " +
           (so_far.messages == 1 ? "stays" : "stay") + " in the controller. " + stop.remedy +
           " and upload the file again.";
}

} // namespace

// For the time of its life no second transfer begins and the scheduler stays out.
class Transfer::Running {
public:
    explicit Running(Transfer& transfer) : transfer_(transfer), pause_(transfer.use_.state) {
        transfer_.running_ = true;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        transfer_.abandon();
        transfer_.controller_.reset();
        transfer_.running_ = false;
    }

private:
    Transfer& transfer_;
    link::Pause pause_;
};

// The wait form in front of the disabled main form, and how far the operation has got.
class Transfer::Progress {
public:
    Progress(const Use& use, const std::string& caption) : use_(use) {
        use_.main_form.set_hourglass(true);
        use_.form.percent_bar.set_width(bar_at_start);
        use_.form.form.set_caption(caption);
        use_.form.form.show();
        use_.ports.waiting.process_events();
        use_.main_form.set_enabled(false);
        use_.ports.waiting.process_events();
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() {
        use_.main_form.set_enabled(true);
        use_.main_form.set_hourglass(false);
        use_.form.form.hide();
    }

    void set_total(int total) { total_ = total; }
    void add(int steps) { done_ += steps; }
    void step() { show_at(done_ + 1); }
    void show_at(int done) {
        done_ = done;
        if (!last_look_ || use_.ports.elapsed_since(*last_look_) >= seconds_between_looks) {
            show();
        }
    }
    void show() {
        last_look_ = use_.ports.now();
        use_.form.tx_bytes.set_text(std::to_string(use_.state.tx_byte_count[1]));
        use_.form.rx_bytes.set_text(std::to_string(use_.state.rx_byte_count[1]));
        if (total_ > 0) {
            use_.form.percent_bar.set_width(use_.form.percent_track.width() * static_cast<float>(done_) /
                                            static_cast<float>(total_));
        }
    }

private:
    const Use& use_;
    int done_ = 0;
    int total_ = 0;
    std::optional<float> last_look_;
};

void Transfer::menufilesave_Click() {
    run(
        Direction::download, [this] { return use_.ports.dialogs.save_file(file_dialog("Download and save")); },
        [this](const std::string& path) { return download(path, Accept::older_values); });
}

void Transfer::menufileopen_Click() {
    run(
        Direction::upload, [this] { return use_.ports.dialogs.open_file(file_dialog("Open and upload")); },
        [this](const std::string& path) { return upload(path); });
}

TransferResult Transfer::download_to(const std::string& file, Accept accept) {
    return run(
        Direction::download, [&] { return file; }, [&](const std::string& path) { return download(path, accept); });
}

TransferResult Transfer::upload_from(const std::string& file) {
    return run(
        Direction::upload, [&] { return file; }, [&](const std::string& path) { return upload(path); });
}

TransferResult Transfer::upload_text(const std::string& name, std::string_view text) {
    return run(
        Direction::upload, [&] { return name; },
        [&](const std::string& path) {
            Progress progress(use_, "ECU<-" + path);
            close_all_files();
            return send_lines(path, text, progress);
        });
}

TransferResult Transfer::download_lines(const std::string& name, const Sink& sink) {
    return run(
        Direction::download, [&] { return name; },
        [&](const std::string& path) {
            TransferResult result;
            result.outcome = TransferResult::Outcome::done;
            Progress progress(use_, "ECU->" + path);
            write_lines(sink, progress, result);
            other_controller("The download has stopped", result);
            return result;
        });
}

TransferResult Transfer::send_sequence(const std::string& name, const Sequence& sequence) {
    return run(
        Direction::upload, [&] { return name; },
        [&](const std::string& path) {
            TransferResult result;
            result.outcome = TransferResult::Outcome::done;
            Progress progress(use_, "ECU<-" + path);
            progress.set_total(static_cast<int>(sequence.count));
            if (std::string refusal = sequence.begin(); !refusal.empty()) {
                result.outcome = TransferResult::Outcome::other_controller;
                result.trouble = std::move(refusal);
                return result;
            }
            for (std::size_t i = 0; i < sequence.count; ++i) {
                progress.show_at(result.lines);
                const auto [message, reply] = sequence.message(i);
                const bool answered = send(message, reply, result);
                const bool on = sequence.ended(i, answered);
                if (controller_->lost() || !on) {
                    break;
                }
                ++result.lines;
            }
            progress.show_at(result.lines);
            progress.show();
            other_controller("The sending has stopped", result);
            return result;
        });
}

bool Transfer::names_no_file(const std::string& path) {
    return path.empty() || path_from_text(path).filename() == initial_name;
}

TransferResult Transfer::run(Direction direction, const std::function<std::string()>& choose_path, const Action& act) {
    TransferResult result;
    if (running_) {
        return result;
    }
    const Running running(*this);
    if ((result.outcome = start(direction)) != TransferResult::Outcome::done) {
        return result;
    }
    const std::string path = choose_path();
    if (names_no_file(path)) {
        result.outcome = TransferResult::Outcome::cancelled;
        return result;
    }
    // Unplugged while the tuner chose: nothing of the transfer has gone out, so it begins with who is there now.
    if (use_.comm.port_gone() && (result.outcome = start(direction)) != TransferResult::Outcome::done) {
        return result;
    }
    result = act(path);
    if (tell_result) {
        tell_result(result_text(direction, path, result));
    }
    use_.ports.waiting.process_events();
    if (!result.trouble.empty()) {
        use_.ports.dialogs.message_box({.text = result.trouble, .icon = platform::Icon::warning});
    }
    return result;
}

TransferResult::Outcome Transfer::start(Direction direction) {
    if (use_.state.demo_mode) {
        use_.ports.dialogs.say(demo_refusal);
        return TransferResult::Outcome::demo_mode;
    }
    use_.state.tx_byte_count[1] = 0;
    use_.state.rx_byte_count[1] = 0;
    use_.link_selection.open_comm_link();
    controller_.emplace(use_.comm, use_.state);
    TransferResult probe;
    if (direction == Direction::download) {
        send({'R'}, 5, probe);
    } else {
        send({'C'}, 21, probe);
    }
    if (probe.unanswered > 0 || controller_->lost()) {
        use_.ports.dialogs.say(silence_refusal);
        return TransferResult::Outcome::no_answer;
    }
    return TransferResult::Outcome::done;
}

TransferResult Transfer::download(const std::string& path, Accept accept) {
    TransferResult result;
    Progress progress(use_, "ECU->" + path);
    close_all_files();
    growing_.emplace(full_path(path));
    write_lines([&](std::string_view line) { return growing_->write(line); }, progress, result);
    if (other_controller("The download into " + path + " has stopped", result)) {
        result.trouble += "\nIf there was a file of that name before, it is unchanged. Check which controller is "
                          "connected, and download again.";
    } else if (result.unanswered > 0 && accept == Accept::whole_only && growing_->failure().empty()) {
        result.outcome = TransferResult::Outcome::incomplete;
    } else if (growing_->commit()) {
        result.outcome = TransferResult::Outcome::done;
        if (result.older_lines > 0) {
            result.trouble = counted(result.older_lines, "line") + " of " + path +
                             (result.older_lines == 1 ? " holds an older value" : " hold older values") +
                             ": the controller did not answer there.\nCheck the link and download again.";
        }
    } else {
        result.outcome = TransferResult::Outcome::file_failed;
        result.trouble = "The calibration could not be saved as " + path + ": " + growing_->failure() +
                         ".\nIf there was a file of that name before, it is unchanged. Make room or make the folder "
                         "writable, or choose another folder or name, and download again.";
    }
    growing_.reset();
    return result;
}

void Transfer::write_lines(const Sink& sink, Progress& progress, TransferResult& result) {
    progress.set_total(download_steps);
    const auto print = [&](std::string_view line) {
        ++result.lines;
        return sink(line);
    };
    for (const std::string& line : header_lines(use_.console_version, use_.image.firmware_revision)) {
        if (!print(line)) {
            return;
        }
    }
    const std::vector<std::uint8_t> silent = read_batch(progress, result);
    if (controller_->lost()) {
        return;
    }
    bool scalar_steps = false;
    for (const FileItem& item : file_order) {
        if (item.table != nullptr) {
            for (int i = 0; i < item.table->cells(); ++i) {
                const int address = item.table->base + i;
                if (!send(cell_read_message(address), cell_reply, result)) {
                    ++result.older_lines;
                }
                if (controller_->lost() || !print(file_line(*item.table, i, use_.image.cell(address)))) {
                    return;
                }
                progress.step();
            }
            continue;
        }
        const Parameter& row = *item.parameter;
        const bool answered = row.file == FileForm::element
                                  ? send(read_message(read_request(row)), row.read.reply, result)
                                  : std::ranges::find(silent, row.read.command) == silent.end();
        if (!answered) {
            result.older_lines += row.count;
        }
        if (controller_->lost()) {
            return;
        }
        for (int i = 0; i < row.count; ++i) {
            if (!print(file_line(row, i, use_.image.raw(row, i)))) {
                return;
            }
        }
        if (row.is_vector() && row.file != FileForm::element) {
            progress.add(estimated_steps(row));
        }
        scalar_steps = scalar_steps || row.key == first_scalar_of_progress;
        if (row.is_vector() || scalar_steps) {
            progress.step();
        }
    }
    progress.show();
}

// Returns the commands that had no answer.
std::vector<std::uint8_t> Transfer::read_batch(Progress& progress, TransferResult& result) {
    std::vector<std::uint8_t> silent;
    for (const ReadRequest& request : download_batch) {
        std::erase(silent, request.command);
        if (!send(read_message(request), request.reply, result)) {
            silent.push_back(request.command);
        }
        if (&request != &download_batch.back()) {
            progress.step();
        }
    }
    return silent;
}

TransferResult Transfer::upload(const std::string& path) {
    TransferResult result;
    Progress progress(use_, "ECU<-" + path);
    close_all_files();
    const FileText file = read_whole_file(full_path(path));
    if (!file.failure.empty()) {
        result.outcome = TransferResult::Outcome::file_failed;
        result.trouble = "The setup file " + path + " could not be read: " + file.failure +
                         ".\nNothing was sent to the controller. Choose another file, or make this one readable, and "
                         "upload again.";
        return result;
    }
    return send_lines(path, file.text, progress);
}

TransferResult Transfer::send_lines(const std::string& path, std::string_view text, Progress& progress) {
    TransferResult result;
    const std::vector<std::string> lines = split_lines(text);
    progress.set_total(static_cast<int>(lines.size()));
    result.outcome = TransferResult::Outcome::done;
    for (const std::string& line : lines) {
        progress.show_at(result.lines);
        const LineMeaning meaning = read_line(line);
        if (const auto* stop = std::get_if<LineStop>(&meaning)) {
            result.outcome = TransferResult::Outcome::stopped;
            result.trouble = stop_text(path, result, *stop);
            break;
        }
        ++result.lines;
        if (const auto* known = std::get_if<LineMessage>(&meaning)) {
            send(known->message, known->reply, result);
            if (controller_->lost()) {
                --result.lines;
                break;
            }
            if (!known->number) {
                result.odd_at.push_back(result.lines);
            }
        } else if (const auto* unknown = std::get_if<UnknownLine>(&meaning)) {
            result.unknown_at.push_back(result.lines);
            for (const std::string& shown : unknown->texts) {
                use_.form.update_info.set_text(shown);
            }
        }
    }
    progress.show_at(result.lines);
    progress.show();
    if (other_controller("The upload of " + path + " has stopped at line " + std::to_string(result.lines + 1),
                         result)) {
        result.trouble += "\n" + counted(result.messages, "line") +
                          " had been sent before it. Check which controller is connected, and upload the file again.";
    } else if (result.outcome == TransferResult::Outcome::done && result.unanswered > 0) {
        result.trouble = counted(result.unanswered, "line") + " of " + path +
                         " had no answer: the controller may still hold what it held there.\nCheck the link and "
                         "upload the file again.";
    }
    return result;
}

// A message that no decoder took is lost; the operation goes on with the next one. Returns whether it was answered.
bool Transfer::send(const link::Message& message, int reply, TransferResult& result) {
    const bool answered = controller_->send(message, reply) == link::Outcome::accepted;
    if (controller_->lost()) {
        return false; // and the transfer is over
    }
    if (!use_.state.demo_mode && !use_.state.comm_aborted) {
        ++result.messages;
    }
    if (!answered) {
        ++result.unanswered;
    }
    return answered;
}

bool Transfer::other_controller(const std::string& what, TransferResult& result) const {
    if (controller_->lost()) {
        result.outcome = TransferResult::Outcome::other_controller;
        result.trouble = what + ": " + controller_->trouble() + ".";
    }
    return controller_->lost();
}

std::string Transfer::result_text(Direction direction, const std::string& path, const TransferResult& result) {
    const std::u8string name = path_from_text(path).filename().u8string();
    const std::string text = std::string(name.begin(), name.end()) + ": ";
    const bool upload = direction == Direction::upload;
    const std::string odd =
        named_lines(result.unknown_at, "unknown") + named_lines(result.odd_at, "with no clean number");
    switch (result.outcome) {
    case TransferResult::Outcome::done:
        if (!upload) {
            return text + lines_text(result.lines) + " saved" +
                   (result.older_lines > 0 ? ", " + grouped(result.older_lines) + " with older values" : "");
        }
        return text + lines_text(result.lines) + " sent" + odd +
               (result.unanswered > 0 ? ", " + grouped(result.unanswered) + " without an answer" : "");
    case TransferResult::Outcome::stopped:
    case TransferResult::Outcome::other_controller:
        return text + (upload ? "stopped after " + lines_text(result.lines) + odd : "stopped, nothing saved");
    case TransferResult::Outcome::file_failed:
        return text + (upload ? "could not be read, nothing sent" : "could not be saved");
    case TransferResult::Outcome::incomplete:
        return text + "not saved, " + grouped(result.unanswered) + " messages had no answer";
    case TransferResult::Outcome::demo_mode:
    case TransferResult::Outcome::no_answer:
    case TransferResult::Outcome::cancelled:
        break;
    }
    return {};
}

void Transfer::close_all_files() const {
    if (close_files) {
        close_files();
    }
}

std::filesystem::path Transfer::full_path(const std::string& path) const {
    return use_.ports.folder / path_from_text(path);
}

} // namespace ecu::calibration
