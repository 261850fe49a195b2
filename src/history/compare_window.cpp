#include "history/compare_window.h"

#include "calibration/encoding.h"
#include "platform/leading_number.h"
#include "platform/safe_file.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace ecu::history {

namespace {

constexpr std::size_t first_raw_column = 8;
constexpr const char* odd_group = "Odd lines"; // of unknown keys, and unreadable ones
constexpr int map_column_width = 46;
constexpr int map_row_height = 20;

std::filesystem::path path_of(const std::string& text) { return {std::u8string(text.begin(), text.end())}; }

std::string file_name(const std::string& path) {
    const std::u8string name = path_of(path).filename().u8string();
    return {name.begin(), name.end()};
}

// Red above zero and blue below it, the stronger the farther; none where nothing differs.
std::optional<platform::Colour> around_zero(double part) {
    const auto faded = static_cast<std::uint8_t>(255 - std::lround(175 * std::min(1.0, std::abs(part))));
    if (part == 0) {
        return std::nullopt;
    }
    return part > 0 ? platform::Colour{255, faded, faded} : platform::Colour{faded, faded, 255};
}

} // namespace

CompareWindow::CompareWindow(const Use& use) : use_(use) {
    wire();
    use_.changes.busy_changed.push_back([this] { show_buttons(); });
    show_buttons();
}

void CompareWindow::wire() {
    FrmCompare& form = use_.form;
    for (std::size_t side : {0U, 1U}) {
        form.side_file[side].clicked = [this, side] { take_file(side); };
        form.side_point[side].clicked = [this, side] { take_point(side, use_.form.side_point_number[side].text()); };
        form.side_controller[side].clicked = [this, side] { take_controller(side); };
    }
    form.compare_swap.clicked = [this] { swap(); };
    form.compare_stop.clicked = [this] { stop_ = true; };
    form.compare_text.changed = [this] { show_list(); };
    form.compare_rate.changed = [this] { show_list(); };
    form.compare_raw.clicked = [this] { show_list(); };
    form.compare_groups.chosen = [this] { show_list(); };
    form.compare_list.chosen = [this] { show_map(); };
    form.compare_list.ticks_changed = [this] {
        const auto& rows = use_.form.compare_list.rows();
        for (std::size_t i = 0; i < shown_.size(); ++i) {
            rows[i].ticked ? (void)ticked_.insert(shown_[i]) : (void)ticked_.erase(shown_[i]);
        }
        show_buttons();
    };
    form.compare_tick_shown.clicked = [this] { tick_shown(); };
    form.compare_tick_none.clicked = [this] {
        ticked_.clear();
        show_list();
    };
    form.compare_copy.clicked = [this] {
        if (use_.form.to_clipboard) {
            use_.form.to_clipboard(as_text(listed(), comparison_, names(), use_.form.compare_raw.checked()));
            say("On the clipboard: " + calibration::counted(shown_.size(), "line"));
        }
    };
    form.compare_csv.clicked = [this] {
        save("Export differences", "csv", "Comma separated (*.csv)|", as_csv(listed(), comparison_, names()));
    };
    form.compare_page.clicked = [this] {
        save("Printable page", "html", "Pages (*.html)|",
             as_page(listed(), comparison_, names(), time_stamp(use_.ports.clock).substr(0, 16)));
    };
    form.compare_send.clicked = [this] { send(); };
    form.compare_close.clicked = [this] { use_.form.form.close_requested(); };
    form.form.on_close = [this] {
        stop_ = true;
        use_.form.form.unload();
    };
}

void CompareWindow::open() {
    show_buttons();
    use_.form.form.show();
    use_.form.form.raise();
}

void CompareWindow::open_with_controller(const std::string& point) {
    open();
    take_point(side_a, point);
    take_controller(side_b);
}

void CompareWindow::take_file(std::size_t side) {
    const std::string path = use_.ports.dialogs.open_file({.title = side == side_a ? "Side A" : "Side B",
                                                           .default_extension = "set",
                                                           .filter = "Setup Files (*.set)|",
                                                           .initial_name = "*.SET"});
    if (!calibration::Transfer::names_no_file(path)) {
        take(side, side_of_file(use_.ports.folder / path_of(path), file_name(path)));
    }
}

void CompareWindow::take_point(std::size_t side, const std::string& number) {
    std::string failure;
    const std::vector<RestorePoint> points = use_.file.points(failure);
    if (!failure.empty() || points.empty()) {
        say(failure.empty() ? "There is no restore point yet: Tools > Restore point makes one"
                            : std::string(history_name) + " cannot be read: " + failure);
        return;
    }
    const auto named = point_of_name(number.starts_with('@') ? number : "@" + number);
    if (!named && !number.empty()) {
        say(number + " is no number of a restore point");
        return;
    }
    take(side, side_of_point(use_.file, named.value_or(points.back().id)));
}

void CompareWindow::take_controller(std::size_t side) {
    if (const std::string why = use_.changes.refusal(); !why.empty()) {
        say(why);
        return;
    }
    stop_ = false;
    reading_ = true;
    const auto copy = use_.changes.read(use_.form.compare_status, stop_);
    reading_ = false;
    if (copy) {
        take(side, side_of_copy(*copy));
        say("The controller was read at " + copy->time.substr(11, 8));
    }
    show_buttons();
}

void CompareWindow::take(std::size_t side, Side taken) {
    if (!taken.failure.empty()) {
        say(taken.name + " cannot be used: " + taken.failure);
        return;
    }
    use_.form.side_name[side].set_text(taken.name + ", " + calibration::counted(taken.values.size(), "value"));
    sides_[side] = std::move(taken);
    compare();
}

void CompareWindow::swap() {
    std::swap(sides_[side_a], sides_[side_b]);
    const std::string a = use_.form.side_name[0].text();
    use_.form.side_name[0].set_text(use_.form.side_name[1].text());
    use_.form.side_name[1].set_text(a);
    compare();
}

void CompareWindow::compare() {
    ticked_.clear();
    all_.clear();
    comparison_ = {};
    if (sides_[side_a] && sides_[side_b]) {
        comparison_ = calibration::compare(sides_[side_a]->values, sides_[side_b]->values);
        all_ = differences(comparison_, sides_[side_a]->values, sides_[side_b]->values, use_.units);
        say("");
    }
    odd_ = odd_lines(comparison_, names());
    show_groups();
    show_list();
}

ReportNames CompareWindow::names() const {
    ReportNames names{sides_[side_a] ? sides_[side_a]->name : "A", sides_[side_b] ? sides_[side_b]->name : "B"};
    if (names.a == names.b) {
        names.a += " (A)";
        names.b += " (B)";
    }
    return names;
}

void CompareWindow::show_groups() {
    groups_ = {""};
    std::map<std::string, std::size_t> counts;
    for (const Difference& one : all_) {
        if (counts[one.group]++ == 0) {
            groups_.push_back(one.group);
        }
    }
    if (!odd_.empty()) {
        groups_.emplace_back(odd_group);
        counts[odd_group] = odd_.size();
    }
    std::vector<platform::List::Row> rows;
    for (const std::string& group : groups_) {
        rows.push_back({.cells = {group.empty() ? "All" : group,
                                  std::to_string(group.empty() ? all_.size() + odd_.size() : counts[group])}});
    }
    use_.form.compare_groups.set_rows(std::move(rows));
}

DifferenceFilter CompareWindow::filter() const {
    const int group = use_.form.compare_groups.current();
    return {.group =
                group > 0 && group < static_cast<int>(groups_.size()) ? groups_[static_cast<std::size_t>(group)] : "",
            .text = use_.form.compare_text.text(),
            .rate = platform::leading_number(use_.form.compare_rate.text())};
}

std::vector<Difference> CompareWindow::listed() const {
    std::vector<Difference> list;
    for (const std::size_t i : shown_) {
        list.push_back(all_[i]);
    }
    return list;
}

void CompareWindow::show_list() {
    const DifferenceFilter wanted = filter();
    const bool raw = use_.form.compare_raw.checked();
    const auto raw_text = [raw](const std::optional<std::int32_t>& number) {
        return raw && number ? std::to_string(*number) : std::string();
    };
    std::vector<platform::List::Row> rows;
    shown_.clear();
    for (std::size_t i = 0; i < all_.size(); ++i) {
        const Difference& one = all_[i];
        if (wanted.passes(one)) {
            shown_.push_back(i);
            rows.push_back(
                {.cells = {one.item, one.place, one.a_raw ? one.a : "missing", one.b_raw ? one.b : "missing", one.unit,
                           one.change, rate_text(one.rate), one.group, raw_text(one.a_raw), raw_text(one.b_raw)},
                 .ticked = ticked_.contains(i),
                 .tickable = one.b_raw.has_value()});
        }
    }
    for (std::size_t i = 0; shows_odd_lines() && i < odd_.size(); ++i) {
        const bool in_a = odd_[i].side == names().a;
        rows.push_back({.cells = {odd_[i].text, "", in_a ? "not compared" : "", in_a ? "" : "not compared", "", "", "",
                                  odd_group, "", ""},
                        .ticked = false,
                        .tickable = false});
    }
    use_.form.compare_list.set_heading(first_raw_column, raw ? "Raw A" : "");
    use_.form.compare_list.set_heading(first_raw_column + 1, raw ? "Raw B" : "");
    use_.form.compare_list.set_rows(std::move(rows));
    show_map();
    show_buttons();
}

// They have no group nor rate of their own.
bool CompareWindow::shows_odd_lines() const {
    const DifferenceFilter wanted = filter();
    return wanted.text.empty() && (wanted.group.empty() || wanted.group == odd_group);
}

const Difference* CompareWindow::chosen() const {
    const int current = use_.form.compare_list.current();
    return current >= 0 && current < static_cast<int>(shown_.size()) ? &all_[shown_[static_cast<std::size_t>(current)]]
                                                                     : nullptr;
}

void CompareWindow::tick_shown() {
    for (const std::size_t i : shown_) {
        if (all_[i].b_raw) {
            ticked_.insert(i);
        }
    }
    show_list();
}

void CompareWindow::show_summary() {
    std::string text = "Choose what stands on each side";
    if (sides_[side_a] && sides_[side_b]) {
        text = summary(comparison_, names().a, names().b);
        if (shown_.size() < all_.size()) {
            text += "; " + std::to_string(shown_.size()) + " listed";
        }
        if (!ticked_.empty()) {
            text += "; " + std::to_string(ticked_.size()) + " ticked";
        }
    }
    use_.form.compare_summary.set_text(text);
}

void CompareWindow::show_map() {
    FrmCompare& form = use_.form;
    const Difference* one = chosen();
    const calibration::Table* table = one != nullptr ? one->key.table : nullptr;
    const bool map = table != nullptr && table->shape != calibration::TableShape::nine_boxes;
    for (platform::Label& name : form.map_name) {
        name.set_text(map ? item_of({.table = table}) + (unit_of({.table = table}).empty() ? "" : ", ") +
                                unit_of({.table = table})
                          : "Choose a line of a map among the differences to see it here");
    }
    const int size = !map ? 0 : table->shape == calibration::TableShape::grid_16 ? 16 : 9;
    for (platform::Grid* grid : {&form.map_a, &form.map_b, &form.map_difference}) {
        grid->begin_batch();
        for (int i = 1; i <= 16; ++i) {
            grid->set_column_width(i, i <= size ? map_column_width : 0);
            grid->set_row_height(i, i <= size ? map_row_height : 0);
        }
    }
    double largest = 0;
    std::vector<std::optional<double>> change(map ? static_cast<std::size_t>(table->cells()) : 0);
    const auto scales = [&](std::size_t side) {
        calibration::Scales own = sides_[side]->values.scales();
        own.lambda_scale = use_.units.lambda_scale;
        own.shows_lambda = use_.units.shows_lambda;
        return own;
    };
    for (int i = 0; map && i < table->cells(); ++i) {
        const calibration::FileKey key{.table = table, .index = i};
        const int row = calibration::map_row(*table, i);
        const int column = calibration::map_col(*table, i);
        const auto a = sides_[side_a]->values.find(key);
        const auto b = sides_[side_b]->values.find(key);
        form.map_a.confirm_cell(row, column, a ? value_text(key, a->raw, scales(side_a)) : "");
        form.map_b.confirm_cell(row, column, b ? value_text(key, b->raw, scales(side_b)) : "");
        const bool differs = a && b && a->raw != b->raw;
        if (a && b) {
            change[static_cast<std::size_t>(i)] = calibration::shown_value(table->shown, b->raw, scales(side_b)) -
                                                  calibration::shown_value(table->shown, a->raw, scales(side_a));
            largest = std::max(largest, std::abs(*change[static_cast<std::size_t>(i)]));
        }
        form.map_difference.confirm_cell(
            row, column, differs ? difference(key, a->raw, b->raw, scales(side_a), scales(side_b)).change : "");
    }
    for (int i = 0; map && i < table->cells(); ++i) {
        const int row = calibration::map_row(*table, i);
        const int column = calibration::map_col(*table, i);
        const double part = largest > 0 ? change[static_cast<std::size_t>(i)].value_or(0) / largest : 0;
        for (platform::Grid* grid : {&form.map_a, &form.map_b, &form.map_difference}) {
            grid->set_cell_back(row, column, around_zero(part));
        }
    }
    for (platform::Grid* grid : {&form.map_a, &form.map_b, &form.map_difference}) {
        if (map) {
            grid->set_active_cell(calibration::map_row(*table, one->key.index),
                                  calibration::map_col(*table, one->key.index));
        }
        grid->end_batch();
    }
}

void CompareWindow::show_buttons() {
    FrmCompare& form = use_.form;
    const bool free = !use_.changes.busy();
    const bool both = sides_[side_a] && sides_[side_b];
    for (std::size_t side : {0U, 1U}) {
        form.side_file[side].set_enabled(free);
        form.side_point[side].set_enabled(free);
        form.side_controller[side].set_enabled(free);
    }
    form.compare_stop.set_enabled(reading_);
    form.compare_tick_shown.set_enabled(both && !shown_.empty());
    form.compare_tick_none.set_enabled(!ticked_.empty());
    form.compare_swap.set_enabled(free && both);
    form.compare_copy.set_enabled(both);
    form.compare_csv.set_enabled(both);
    form.compare_page.set_enabled(both);
    form.compare_send.set_enabled(free && both && !ticked_.empty());
    form.compare_send.set_text(ticked_.empty() ? "&Send ticked of B..."
                                               : "&Send " + std::to_string(ticked_.size()) + " of B...");
    show_summary();
}

void CompareWindow::save(const std::string& title, const std::string& extension, const std::string& filter,
                         const std::string& text) {
    const std::string path = use_.ports.dialogs.save_file(
        {.title = title, .default_extension = extension, .filter = filter, .initial_name = "differences." + extension});
    if (!path.empty()) {
        const std::string why = platform::replace_file(use_.ports.folder / path_of(path), text);
        say(why.empty() ? file_name(path) + " holds " + calibration::counted(shown_.size(), "line")
                        : path + " could not be written: " + why + ". Choose another folder or name");
    }
}

// Against what the controller holds now: the ticked items are read for it.
void CompareWindow::send() {
    calibration::Snapshot wanted;
    for (const std::size_t i : ticked_) {
        wanted.put(all_[i].key, {.raw = *all_[i].b_raw});
    }
    use_.changes.show_items(
        {.title = "Send " + calibration::counted(ticked_.size(), "value") + " of " + names().b,
         .wanted = wanted,
         .ended = [this](const SendResult&, const std::vector<ChangeLine>& lines) { note_sent(lines); }});
}

// A side that is the controller holds now what its echoes brought.
void CompareWindow::note_sent(const std::vector<ChangeLine>& lines) {
    bool any = false;
    for (auto& side : sides_) {
        if (side && side->identity && side->identity->serial == use_.changes.offered_to().serial) {
            for (const ChangeLine& line : lines) {
                if (line.stored) {
                    side->values.put(line.key, {.raw = *line.stored});
                    any = true;
                }
            }
        }
    }
    if (any) {
        compare();
    }
}

} // namespace ecu::history
