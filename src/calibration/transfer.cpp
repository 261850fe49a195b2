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
constexpr int asked_again = 3; // for a cell, when another one's reply came
constexpr float seconds_for_late_replies = 0.1F;
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
    explicit Running(Transfer& transfer) : transfer_(transfer), was_paused_(transfer.use_.state.polling_paused) {
        transfer_.running_ = true;
        transfer_.use_.state.polling_paused = true;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        transfer_.abandon();
        transfer_.use_.state.polling_paused = was_paused_;
        transfer_.running_ = false;
    }

private:
    Transfer& transfer_;
    bool was_paused_;
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
    result = act(path);
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
    TransferResult probe;
    if (direction == Direction::download) {
        send({'R'}, 5, probe);
    } else {
        send({'C'}, 21, probe);
    }
    if (probe.unanswered > 0) {
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
    if (result.unanswered > 0 && accept == Accept::whole_only && growing_->failure().empty()) {
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
    bool scalar_steps = false;
    for (const FileItem& item : file_order) {
        if (item.table != nullptr) {
            for (int i = 0; i < item.table->cells(); ++i) {
                const int address = item.table->base + i;
                if (!send(cell_read_message(address), cell_reply, result)) {
                    ++result.older_lines;
                }
                if (!print(file_line(*item.table, i, use_.image.cell(address)))) {
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
        } else if (const auto* unknown = std::get_if<UnknownLine>(&meaning)) {
            result.unknown_at.push_back(result.lines);
            for (const std::string& shown : unknown->texts) {
                use_.form.update_info.set_text(shown);
            }
        }
    }
    progress.show_at(result.lines);
    progress.show();
    if (result.outcome == TransferResult::Outcome::done && result.unanswered > 0) {
        result.trouble = counted(result.unanswered, "line") + " of " + path +
                         " had no answer: the controller may still hold what it held there.\nCheck the link and "
                         "upload the file again.";
    }
    return result;
}

// A message that no decoder took is lost; the operation goes on with the next one. Returns whether it was answered.
// All cells answer by one code: a request that was answered twice, once late, leaves a reply that the next request
// takes for its own, and all further ones would run one behind. After a wait what is late has come, and the next
// request drains it.
bool Transfer::send(const link::Message& message, int reply, TransferResult& result) {
    bool answered = ask(message, reply);
    for (int again = 0; answered && other_cell_answered(message) && again < asked_again; ++again) {
        use_.ports.wait_seconds(seconds_for_late_replies);
        answered = ask(message, reply);
    }
    answered = answered && !other_cell_answered(message);
    if (!use_.state.demo_mode && !use_.state.comm_aborted) {
        ++result.messages;
    }
    if (!answered) {
        ++result.unanswered;
    }
    return answered;
}

bool Transfer::ask(const link::Message& message, int reply) {
    return use_.comm.send_ecu_message(message, reply) == link::Outcome::accepted;
}

bool Transfer::other_cell_answered(const link::Message& message) const {
    return (message[0] == read_cell || message[0] == write_cell) &&
           use_.image.last_cell() != message[1] + 256 * message[2];
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
