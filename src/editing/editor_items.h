// What an editor walks: each value or table of a window, in the order in which the window adds them. A box and a grid
// are pending by their yellow; what is neither (option groups, check boxes, arrays of phases) tells by itself whether
// it is, and sends itself.
#pragma once

#include "editing/editor_link.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::editing {

struct ItemTexts {
    std::string_view group = {}; // the map or tab that it is counted under
    std::string_view demo = {};  // what it shows in demo mode; empty: what it showed before
    // Where a cell stands in the map, for the user: "265 kPa, 312 rpm". `row` and `column` are the grid's; of boxes the
    // column is the index. Empty: told by the numbers.
    std::function<std::string(int row, int column)> place = {};
};

// How an item asks and tells the editor while it is being sent.
struct Walk {
    EditorLink& link;
    GoOn go_on;                          // false: the values are gone, send no more
    std::function<void(Fate)> note_fate; // of each value
};

// A control, or several, of no box or grid.
struct CustomItem {
    std::function<int()> pending; // values that Update would send
    std::function<void(Walk&)> send;
    std::function<void(bool demo)> open = {};   // the opening, before the reads
    std::function<void(bool locked)> lock = {}; // while the opening read runs
};

class EditorItem {
public:
    virtual ~EditorItem() = default;
    virtual int pending() const = 0;
    // Before the opening read. Blank: yellow and empty, not yet read. Demo mode shows its own text instead.
    virtual void open(bool demo, bool blank) = 0;
    virtual void lock(bool locked) = 0;
    virtual void send(Walk& walk) = 0;
    // Around what an Update ends with: `keep` remembers what is pending and was changed behind the walk, `restore`
    // gives it the yellow again that a shading took.
    virtual void keep_behind() {}
    virtual void restore_behind() {}
};

// A box that shows a scalar, an element of a vector, or a table's cell.
class BoxItem final : public EditorItem {
public:
    BoxItem(const calibration::Parameter& row, int element, platform::TextBox& box, std::string_view demo)
        : parameter_(&row), index_(element), box_(box), demo_(demo) {}
    BoxItem(const calibration::Table& row, int index, platform::TextBox& box, std::string_view demo)
        : table_(&row), index_(index), box_(box), demo_(demo) {}
    int pending() const override { return box_.is_pending() ? 1 : 0; }
    void open(bool demo, bool blank) override;
    void lock(bool locked) override { box_.set_enabled(!locked); }
    void send(Walk& walk) override;

private:
    const calibration::Parameter* parameter_ = nullptr;
    const calibration::Table* table_ = nullptr;
    int index_;
    platform::TextBox& box_;
    std::string demo_;
};

class GridItem final : public EditorItem {
public:
    GridItem(const calibration::Table& row, platform::Grid& grid, std::string_view demo);
    int pending() const override;
    void open(bool demo, bool blank) override;
    void lock(bool locked) override { grid_.set_locked(locked); }
    void send(Walk& walk) override;
    void keep_behind() override;
    void restore_behind() override;

    platform::Grid& grid() const { return grid_; }
    const calibration::Table& row() const { return row_; }
    // A cell was written while a walk runs.
    void note_changed(int index) { changed_[static_cast<std::size_t>(index)] = true; }

private:
    const calibration::Table& row_;
    platform::Grid& grid_;
    std::string demo_;
    std::vector<bool> changed_; // since the walk passed it
    std::vector<int> kept_;
};

class OtherItem final : public EditorItem {
public:
    explicit OtherItem(CustomItem item) : item_(std::move(item)) {}
    int pending() const override { return item_.pending(); }
    void open(bool demo, bool) override;
    void lock(bool locked) override;
    void send(Walk& walk) override;

private:
    CustomItem item_;
};

} // namespace ecu::editing
