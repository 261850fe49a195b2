// The window that compares two calibrations: setup file, restore point or controller on each side, the differences as
// difference.h has them, filters, maps in grids, reports, and the way to the changes' window for what is ticked.
#pragma once

#include "history/changes_window.h"
#include "history/frm_compare.h"

#include <array>
#include <set>

namespace ecu::history {

class CompareWindow {
public:
    struct Use {
        const platform::Ports& ports;
        HistoryFile& file;
        const calibration::Scales& units;
        ChangesWindow& changes;
        FrmCompare& form;
    };
    explicit CompareWindow(const Use& use);

    void open();
    // A restore point as side A and the controller as side B.
    void open_with_controller(const std::string& point);

private:
    enum SideIndex : std::uint8_t { side_a, side_b };

    void wire();
    void take_file(std::size_t side);
    void take_point(std::size_t side, const std::string& number);
    void take_controller(std::size_t side);
    void take(std::size_t side, Side taken);
    void swap();
    void compare();
    void show_groups();
    void show_list();
    void show_map();
    void show_buttons();
    void show_summary();
    void tick_shown();
    bool shows_odd_lines() const;
    const Difference* chosen() const;
    void note_sent(const std::vector<ChangeLine>& lines);
    DifferenceFilter filter() const;
    std::vector<Difference> listed() const;
    ReportNames names() const;
    void save(const std::string& title, const std::string& extension, const std::string& filter,
              const std::string& text);
    void send();
    void say(const std::string& text) { use_.form.compare_status.set_text(text); }

    Use use_;
    std::array<std::optional<Side>, 2> sides_;
    calibration::Comparison comparison_;
    std::vector<Difference> all_;
    std::vector<std::size_t> shown_; // of all_; behind these stand the odd lines
    std::vector<OddLine> odd_;
    std::set<std::size_t> ticked_; // of all_, whatever is shown
    std::vector<std::string> groups_;
    bool stop_ = false;
    bool reading_ = false;
};

} // namespace ecu::history
