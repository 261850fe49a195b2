#include "history/points_window.h"

#include "platform/safe_file.h"

namespace ecu::history {

namespace {

constexpr std::string_view by_itself = "restore_point_before_upload";
constexpr std::size_t note_column = 2;

// "2026-11-23_0844.set" of "2026-11-23 08:44:56.12"
std::string dated_name(const std::string& time) {
    return time.substr(0, 10) + "_" + time.substr(11, 2) + time.substr(14, 2) + ".set";
}

} // namespace

PointsWindow::PointsWindow(const Use& use) : use_(use) {
    FrmRestorePoints& form = use_.form;
    form.point_make.clicked = [this] { make(); };
    form.point_stop.clicked = [this] { stop_ = true; };
    form.point_set_note.clicked = [this] { set_note(); };
    form.point_compare.clicked = [this] {
        if (const auto id = chosen(); id && compare_with_controller) {
            compare_with_controller(point_name(*id));
        }
    };
    form.point_restore.clicked = [this] { restore(); };
    form.point_save.clicked = [this] { save(); };
    form.point_remove.clicked = [this] { remove(); };
    form.point_as_a.clicked = [this] {
        if (const auto id = chosen()) {
            use_as(false, point_name(*id));
            refresh();
        }
    };
    form.point_as_b.clicked = [this] {
        if (const auto id = chosen()) {
            use_as(true, point_name(*id));
            refresh();
        }
    };
    form.file_as_a.clicked = [this] { take_file(false); };
    form.file_as_b.clicked = [this] { take_file(true); };
    use_.changes.busy_changed.push_back([this] { show_buttons(); });
    form.points_list.chosen = [this] { choose(); };
    form.points_list.activated = [this](int) {
        if (use_.form.point_restore.enabled()) {
            restore();
        }
    };
    form.points_close.clicked = [this] { use_.form.form.close_requested(); };
    form.form.on_close = [this] {
        stop_ = true;
        use_.form.form.unload();
    };
    form.points_by_themselves.clicked = [this] {
        const bool on = use_.form.points_by_themselves.checked();
        if ((use_.file.setting(by_itself) == "1") != on) {
            const std::string why = use_.file.set_setting(by_itself, on ? "1" : "0");
            say(why.empty() ? "" : "The choice could not be kept: " + why);
        }
    };
}

void PointsWindow::open() {
    use_.form.points_by_themselves.set_checked(use_.file.setting(by_itself) == "1");
    say("");
    refresh();
    use_.form.form.show();
    use_.form.form.raise();
}

void PointsWindow::refresh() {
    std::string failure;
    std::vector<platform::List::Row> rows;
    ids_.clear();
    for (const ListedPoint& listed : list_points(use_.file, failure)) {
        const RestorePoint& point = listed.point;
        const std::string name = point_name(point.id);
        ids_.push_back(point.id);
        rows.push_back({.cells = {name, point.time.substr(0, 16), point.note, firmware_text(point.firmware),
                                  point.serial ? std::to_string(*point.serial) : "",
                                  listed.differs_from_next ? calibration::counted(*listed.differs_from_next, "value")
                                                           : "the newest",
                                  letter_of ? letter_of(name) : ""}});
    }
    use_.form.points_list.set_rows(std::move(rows));
    if (!failure.empty()) {
        say(std::string(history_name) + " cannot be read: " + failure);
    } else if (ids_.empty() && use_.form.points_status.text().empty()) {
        say("There is none yet. Make restore point reads the controller and keeps what it holds");
    }
    use_.form.points_two.set_text(both ? both() : "");
    show_buttons();
}

std::optional<std::int64_t> PointsWindow::chosen() const {
    const int row = use_.form.points_list.current();
    return row >= 0 && row < static_cast<int>(ids_.size()) ? std::optional(ids_[static_cast<std::size_t>(row)])
                                                           : std::nullopt;
}

void PointsWindow::show_buttons() {
    FrmRestorePoints& form = use_.form;
    const bool free = !use_.changes.busy();
    form.point_make.set_enabled(free);
    form.point_stop.set_enabled(reading_);
    for (platform::Button* button : {&form.point_set_note, &form.point_compare, &form.point_restore, &form.point_save,
                                     &form.point_remove, &form.point_as_a, &form.point_as_b}) {
        button->set_enabled(free && chosen().has_value());
    }
}

void PointsWindow::choose() {
    if (chosen()) {
        use_.form.point_note.set_text(
            use_.form.points_list.rows()[static_cast<std::size_t>(use_.form.points_list.current())].cells[note_column]);
    }
    show_buttons();
}

bool PointsWindow::keep_one(std::string_view note) {
    if (reading_) {
        return false;
    }
    stop_ = false;
    reading_ = true;
    const auto copy = use_.changes.read(use_.form.points_status, stop_);
    reading_ = false;
    show_buttons();
    return copy && keep_copy(*copy, note);
}

bool PointsWindow::keep_copy(const ControllerCopy& copy, std::string_view note) {
    std::int64_t id = 0;
    const std::string why = keep(use_.file, copy, note, id);
    say(why.empty() ? "Restore point " + point_name(id) + " holds " + calibration::counted(copy.values.size(), "value")
                    : "The restore point could not be kept: " + why + ". Make room or make the folder writable");
    refresh();
    return why.empty();
}

// The note of the chosen one, which stands there to be changed, is none for another.
void PointsWindow::make() {
    const std::string note = use_.form.point_note.text();
    const bool of_chosen =
        chosen() &&
        note ==
            use_.form.points_list.rows()[static_cast<std::size_t>(use_.form.points_list.current())].cells[note_column];
    keep_one(of_chosen ? "" : note);
}

bool PointsWindow::before(std::string_view what) {
    return use_.file.setting(by_itself) != "1" || keep_one("Before " + std::string(what)) || goes_on_without();
}

bool PointsWindow::keep_before(const ControllerCopy& copy, std::string_view what) {
    return use_.file.setting(by_itself) != "1" || keep_copy(copy, "Before " + std::string(what)) || goes_on_without();
}

bool PointsWindow::goes_on_without() const {
    return use_.ports.dialogs.message_box(
               {.text = "No restore point was made: " + use_.form.points_status.text() + ".\nGo on without it?",
                .buttons = platform::Buttons::yes_no,
                .icon = platform::Icon::warning,
                .preset = platform::Answer::no}) == platform::Answer::yes;
}

void PointsWindow::take_file(bool b) {
    const std::string path = use_.ports.dialogs.open_file({.title = b ? "Calibration B" : "Calibration A",
                                                           .default_extension = "set",
                                                           .filter = "Setup Files (*.set)|",
                                                           .initial_name = "*.SET"});
    if (calibration::Transfer::names_no_file(path)) {
        return;
    }
    const Side side =
        side_of_file(use_.ports.folder / std::filesystem::path(std::u8string(path.begin(), path.end())), path);
    if (!side.failure.empty()) {
        say(path + " cannot be used: " + side.failure + ". Choose another file");
        return;
    }
    use_as(b, path);
    refresh();
}

void PointsWindow::restore() {
    if (const auto id = chosen()) {
        const Side side = side_of_point(use_.file, *id);
        if (!side.failure.empty()) {
            say(side.name + " cannot be used: " + side.failure);
            return;
        }
        use_.changes.show_differences_to(side, "Restore " + side.name);
    }
}

void PointsWindow::save() {
    const auto id = chosen();
    std::string failure;
    const auto point = id ? use_.file.point(*id, failure) : std::nullopt;
    if (!point) {
        return;
    }
    const std::string path = use_.ports.dialogs.save_file({.title = "Save restore point",
                                                           .default_extension = "set",
                                                           .filter = "Setup Files (*.set)|",
                                                           .initial_name = dated_name(point->time)});
    if (!calibration::Transfer::names_no_file(path)) {
        const std::string why = platform::replace_file(
            use_.ports.folder / std::filesystem::path(std::u8string(path.begin(), path.end())), point->setup);
        say(why.empty() ? point_name(*id) + " is in " + path
                        : path + " could not be written: " + why + ". Choose another folder or name");
    }
}

void PointsWindow::remove() {
    const auto id = chosen();
    if (id && use_.ports.dialogs.message_box({.text = "Forget restore point " + point_name(*id) +
                                                      "? It cannot be brought back; Save as file keeps a copy.",
                                              .buttons = platform::Buttons::yes_no,
                                              .icon = platform::Icon::question,
                                              .preset = platform::Answer::no}) == platform::Answer::yes) {
        const std::string why = use_.file.remove_point(*id);
        say(why.empty() ? point_name(*id) + " is forgotten" : "It could not be removed: " + why);
        refresh();
    }
}

void PointsWindow::set_note() {
    if (const auto id = chosen()) {
        const std::string why = use_.file.set_note(*id, use_.form.point_note.text());
        say(why.empty() ? "" : "The note could not be kept: " + why);
        refresh();
    }
}

} // namespace ecu::history
