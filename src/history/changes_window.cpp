#include "history/changes_window.h"

#include <algorithm>

namespace ecu::history {

namespace {

constexpr int lines_between_looks = 20; // of the progress

std::string state_text(const ChangeLine& line) {
    switch (line.state) {
    case LineState::waiting:
        return "";
    case LineState::sent:
        return "sent, verified";
    case LineState::otherwise:
        return "taken as " + std::to_string(line.stored.value_or(0));
    case LineState::no_answer:
        return "no answer: not known";
    case LineState::unfit:
        return "fits no message, is not sent";
    }
    return "";
}

std::string raw_text(const ChangeLine& line) {
    return (line.from ? std::to_string(*line.from) : "?") + " -> " + std::to_string(line.to);
}

std::string file_name(const std::string& path) {
    const std::u8string name = std::filesystem::path(std::u8string(path.begin(), path.end())).filename().u8string();
    return {name.begin(), name.end()};
}

} // namespace

class ChangesWindow::Busy {
public:
    explicit Busy(ChangesWindow& window) : window_(window) { set(true); }
    ~Busy() { set(false); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    void set(bool busy) {
        window_.busy_ = busy;
        window_.show_state();
        for (const auto& changed : window_.busy_changed) {
            changed();
        }
    }
    ChangesWindow& window_;
};

ChangesWindow::ChangesWindow(const Use& use) : use_(use) {
    FrmChanges& form = use_.form;
    form.changes_send.clicked = [this] { send(); };
    form.changes_stop.clicked = [this] { stop_ = true; };
    form.changes_tick_all.clicked = [this] { tick_all(true); };
    form.changes_tick_none.clicked = [this] { tick_all(false); };
    form.changes_close.clicked = [this] { use_.form.form.close_requested(); };
    form.changes_list.ticks_changed = [this] { show_state(); };
    form.form.on_close = [this] {
        stop_ = true;
        use_.form.form.unload();
    };
    show_state();
}

std::string ChangesWindow::refusal() const {
    if (busy_) {
        return "The controller is being read or written already";
    }
    return use_.state.current_view != link::View::none ? "Close the open view first: it talks to the controller" : "";
}

std::optional<ControllerCopy> ChangesWindow::read(platform::Label& status, const bool& stop) {
    if (const std::string why = refusal(); !why.empty()) {
        status.set_text(why);
        return std::nullopt;
    }
    status.set_text("Reading the controller...");
    ReadResult result;
    {
        const Busy busy(*this);
        result = use_.sender.read([&](int done, int all) {
            if (done % lines_between_looks == 0) {
                status.set_text("Reading the controller, " + std::to_string(done) + " of " + std::to_string(all) +
                                " lines");
            }
            return !stop;
        });
    }
    if (!result.copy) {
        status.set_text(result.trouble.empty() ? "Stopped: the controller was not read to the end" : result.trouble);
    } else {
        status.set_text("The controller was read at " + result.copy->time.substr(11, 8));
    }
    return std::move(result.copy);
}

void ChangesWindow::choose_file_and_show() {
    if (const std::string why = refusal(); !why.empty()) {
        use_.ports.dialogs.say(why + ".");
        return;
    }
    const std::string path = use_.ports.dialogs.open_file({.title = "Upload changes of",
                                                           .default_extension = "set",
                                                           .filter = "Setup Files (*.set)|",
                                                           .initial_name = "*.SET"});
    if (calibration::Transfer::names_no_file(path)) {
        return;
    }
    const Side side = side_of_file(use_.ports.folder / std::filesystem::path(std::u8string(path.begin(), path.end())),
                                   file_name(path));
    if (!side.failure.empty()) {
        use_.ports.dialogs.message_box({.text = "The setup file " + path + " cannot be used: " + side.failure +
                                                ".\nNothing was sent to the controller. Choose another file.",
                                        .icon = platform::Icon::warning});
        return;
    }
    show_differences_to(side, "Upload changes of " + side.name);
}

void ChangesWindow::show_differences_to(const Side& side, const std::string& title, Ended ended) {
    if (const std::string why = refusal(); !why.empty()) {
        use_.ports.dialogs.say(why + ".");
        return;
    }
    offer_ = {.title = title,
              .from = title,
              .identity = {},
              .now_scales = {},
              .wanted_scales = {},
              .lines = {},
              .writes = 0,
              .when_empty = {}};
    stop_ = false;
    show_lines();
    use_.form.form.set_caption(title);
    use_.form.form.show();
    use_.form.form.raise();
    auto copy = read(use_.form.changes_status, stop_);
    if (!copy) {
        return;
    }
    std::string odd;
    if (const std::size_t lines = side.values.unknown.size() + side.values.unreadable.size(); lines > 0) {
        odd = calibration::counted(lines, "line") + " of " + side.name + " that no row knows or no message carries";
    }
    const link::ControllerIdentity identity = copy->identity;
    const calibration::Scales scales = copy->values.scales();
    const std::uint64_t writes = copy->writes;
    std::vector<ChangeLine> lines = changes_to(side.values, copy->values);
    show({.title = title,
          .from = title,
          .identity = identity,
          .now_scales = scales,
          .wanted_scales = side.values.scales(),
          .lines = std::move(lines),
          .writes = writes,
          .when_empty = "The controller holds every value of " + side.name + (odd.empty() ? "" : "; not sent: " + odd),
          .ended = std::move(ended),
          .copy = std::move(copy)});
    if (!odd.empty()) {
        use_.form.changes_source.set_text(use_.form.changes_source.text() + ". Not among them: " + odd);
    }
}

void ChangesWindow::show_items(Items items) {
    std::string why = refusal();
    if (why.empty()) {
        std::vector<calibration::FileKey> keys;
        for (const calibration::FileKey& key : calibration::Snapshot::all_keys()) {
            if (items.wanted.find(key)) {
                keys.push_back(key);
            }
        }
        ReadResult read;
        {
            const Busy busy(*this);
            read = use_.sender.read_items(keys);
        }
        why = read.trouble;
        if (read.copy && items.serial && read.copy->identity.serial != items.serial) {
            why = "These values are of the controller of serial number " + std::to_string(*items.serial) +
                  ", which is not the one that answers";
        } else if (read.copy) {
            show({.title = items.title,
                  .from = items.title,
                  .identity = read.copy->identity,
                  .now_scales = read.copy->values.scales(),
                  .wanted_scales = read.copy->values.scales(),
                  .lines = changes_to(items.wanted, read.copy->values),
                  .writes = read.copy->writes,
                  .when_empty = "The controller holds these values already",
                  .ended = std::move(items.ended)});
            return;
        }
    }
    use_.ports.dialogs.say(why + ".");
}

void ChangesWindow::show(Offer offer) {
    if (busy_) {
        return;
    }
    stop_ = false;
    offer_ = std::move(offer);
    for (calibration::Scales* scales : {&offer_.now_scales, &offer_.wanted_scales}) {
        scales->lambda_scale = use_.units.lambda_scale;
        scales->shows_lambda = use_.units.shows_lambda;
    }
    use_.form.form.set_caption(offer_.title);
    const std::string serial =
        offer_.identity.serial ? "controller " + std::to_string(*offer_.identity.serial) : "the controller";
    use_.form.changes_source.set_text(calibration::counted(offer_.lines.size(), "value") + " to be written into " +
                                      serial + "; nothing is sent before Send");
    use_.form.changes_status.set_text(!offer_.lines.empty() ? "Untick what is to stay as it is, then press Send ticked"
                                      : offer_.when_empty.empty() ? "Nothing differs"
                                                                  : offer_.when_empty);
    show_lines();
    use_.form.form.show();
    use_.form.form.raise();
    if (offer_.lines.empty() && offer_.ended) {
        offer_.ended({}, {});
    }
}

void ChangesWindow::show_lines() {
    std::vector<platform::List::Row> rows;
    for (const ChangeLine& line : offer_.lines) {
        const Difference one = difference(line.key, line.from, line.to, offer_.now_scales, offer_.wanted_scales);
        rows.push_back({.cells = {one.item, one.place, one.group, line.from ? one.a : "not known", one.b, one.unit,
                                  one.change, rate_text(one.rate), raw_text(line), state_text(line)},
                        .ticked = line.ticked,
                        .tickable = line.state != LineState::unfit});
    }
    use_.form.changes_list.set_rows(std::move(rows));
    show_state();
}

std::size_t ChangesWindow::ticked() const {
    std::size_t count = 0;
    const auto& rows = use_.form.changes_list.rows();
    for (std::size_t i = 0; i < std::min(rows.size(), offer_.lines.size()); ++i) {
        const bool open = offer_.lines[i].state != LineState::sent && offer_.lines[i].state != LineState::unfit;
        count += rows[i].ticked && open ? 1 : 0;
    }
    return count;
}

void ChangesWindow::show_state() {
    FrmChanges& form = use_.form;
    const std::size_t count = ticked();
    form.changes_send.set_enabled(!busy_ && count > 0);
    form.changes_send.set_text(count > 0 ? "&Send " + std::to_string(count) + " ticked" : "&Send ticked");
    form.changes_stop.set_enabled(busy_);
    form.changes_tick_all.set_enabled(!busy_ && !offer_.lines.empty());
    form.changes_tick_none.set_enabled(!busy_ && !offer_.lines.empty());
}

void ChangesWindow::tick_all(bool ticked) {
    std::vector<platform::List::Row> rows = use_.form.changes_list.rows();
    for (platform::List::Row& row : rows) {
        row.ticked = ticked && row.tickable;
    }
    use_.form.changes_list.set_rows(std::move(rows));
    show_state();
}

void ChangesWindow::send() {
    if (const std::string why = refusal(); !why.empty()) {
        use_.form.changes_status.set_text(why);
        return;
    }
    for (std::size_t i = 0; i < offer_.lines.size(); ++i) {
        offer_.lines[i].ticked = use_.form.changes_list.rows().at(i).ticked;
    }
    if (offer_.writes != use_.sender.writes()) {
        use_.form.changes_status.set_text(
            "Something else was written since these values were read, so nothing was sent. Look through them anew");
        return;
    }
    if (!kept_before()) {
        use_.form.changes_status.set_text("Nothing was sent: the restore point could not be made");
        return;
    }
    stop_ = false;
    SendResult result;
    {
        const Busy busy(*this);
        result = use_.sender.send(offer_.lines, offer_.identity, offer_.from, [this](int done, int all) {
            use_.form.changes_status.set_text("Sending, " + std::to_string(done) + " of " + std::to_string(all));
            return !stop_;
        });
    }
    offer_.writes = use_.sender.writes();
    show_result(result);
}

SendResult ChangesWindow::send_at_once(std::vector<ChangeLine>& lines, const link::ControllerIdentity& to,
                                       const std::string& from) {
    const Busy busy(*this);
    return use_.sender.send(lines, to, from);
}

// Once for an offer: what it goes on with behind a lost link is the same upload.
bool ChangesWindow::kept_before() {
    if (!offer_.copy || !before_sending) {
        return true;
    }
    const bool kept = before_sending(*offer_.copy, offer_.title);
    if (kept) {
        offer_.copy.reset();
    }
    return kept;
}

// A window that was closed meanwhile shows nothing, so what was left in the middle is said.
void ChangesWindow::show_result(const SendResult& result) {
    show_lines();
    use_.form.changes_status.set_text(result_text(result));
    if (!use_.form.form.visible() && !result.complete()) {
        use_.ports.dialogs.message_box(
            {.text = offer_.title + ": " + result_text(result) + ".", .icon = platform::Icon::warning});
    }
    if (offer_.ended) {
        const Ended ended = offer_.ended; // it may bring the next offer
        const std::vector<ChangeLine> lines = offer_.lines;
        ended(result, lines);
    }
}

} // namespace ecu::history
