// What an editor walks: each value or table of a window, in the order in which the window adds them. A box and a grid
// are pending by their yellow; what is neither (option groups, check boxes, arrays of phases) tells by itself whether
// it is, and sends itself.
#pragma once

#include "editing/editor_link.h"
#include "editing/status_text.h"

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
    std::function<int()> unread = {};           // values that no reply has filled yet
    std::function<int()> held_back = {};        // of these, what was entered and is not sent before it is read
    std::function<std::int32_t()> value = {};   // what is entered, to be told from what was sent before
    std::function<void()> keep = {};            // around a second read: replies must not take entries away
    std::function<void()> restore = {};
    const calibration::Parameter* row = nullptr; // whose read fills them; null: any read might
};

class EditorItem {
public:
    virtual ~EditorItem() = default;
    virtual Counts counts() const = 0;
    // Before the opening read: not yet read, and with `blank` yellow and empty. Demo mode shows its own text instead.
    virtual void open(bool demo, bool blank) = 0;
    virtual void lock(bool locked) = 0;
    virtual void send(Walk& walk) = 0;
    // Around what an Update ends with: `keep` remembers what is pending and was changed behind the walk, `restore`
    // gives it the yellow again that a shading took.
    virtual void keep_behind() {}
    virtual void restore_behind() {}
    // Around a second read of what is unread: replies must not take away what the user has entered meanwhile.
    virtual void keep_entries() {}
    virtual void restore_entries() {}
    // Whether the reply to a read, or a table's cells from `first` on, would fill what is unread.
    virtual bool wants(const calibration::ReadRequest&) const { return false; }
    virtual bool wants(const calibration::Table&, int, int) const { return false; }
    // The box or grid; null for what is neither.
    virtual const platform::Control* control() const { return nullptr; }
};

// A box that shows a scalar, an element of a vector, or a table's cell.
class BoxItem final : public EditorItem {
public:
    // `after` follows the accepted echo.
    BoxItem(const calibration::Parameter& row, int element, platform::TextBox& box, std::string_view demo,
            AfterEcho after = {})
        : parameter_(&row), index_(element), box_(box), demo_(demo), after_(std::move(after)) {}
    BoxItem(const calibration::Table& row, int index, platform::TextBox& box, std::string_view demo)
        : table_(&row), index_(index), box_(box), demo_(demo) {}
    Counts counts() const override;
    void open(bool demo, bool blank) override;
    void lock(bool locked) override { box_.set_enabled(!locked); }
    void send(Walk& walk) override;
    void keep_entries() override;
    void restore_entries() override;
    bool wants(const calibration::ReadRequest& request) const override;
    bool wants(const calibration::Table& row, int first, int count) const override;
    const platform::Control* control() const override { return &box_; }

    platform::TextBox& box() const { return box_; }
    void note_changed() { not_taken_ = false; }

private:
    const calibration::Parameter* parameter_ = nullptr;
    const calibration::Table* table_ = nullptr;
    int index_;
    platform::TextBox& box_;
    std::string demo_;
    AfterEcho after_;
    bool not_taken_ = false; // its text was sent, or refused, in vain
    bool keeps_ = false;
    std::string kept_;
};

class GridItem final : public EditorItem {
public:
    GridItem(const calibration::Table& row, platform::Grid& grid, std::string_view demo);
    Counts counts() const override;
    void open(bool demo, bool blank) override;
    void lock(bool locked) override { grid_.set_locked(locked); }
    void send(Walk& walk) override;
    void keep_behind() override;
    void restore_behind() override;
    void keep_entries() override;
    void restore_entries() override;
    bool wants(const calibration::Table& row, int first, int count) const override;
    const platform::Control* control() const override { return &grid_; }

    platform::Grid& grid() const { return grid_; }
    const calibration::Table& row() const { return row_; }
    // A cell was written.
    void note_changed(int index) {
        changed_[static_cast<std::size_t>(index)] = true;
        not_taken_[static_cast<std::size_t>(index)] = false;
    }

private:
    const calibration::Table& row_;
    platform::Grid& grid_;
    std::string demo_;
    std::vector<bool> changed_;   // since the walk passed it
    std::vector<bool> not_taken_; // its text was sent, or refused, in vain
    std::vector<int> kept_;
    std::vector<std::pair<int, platform::Grid::Cell>> kept_entries_;
};

class OtherItem final : public EditorItem {
public:
    explicit OtherItem(CustomItem item) : item_(std::move(item)) {}
    Counts counts() const override;
    void open(bool demo, bool) override;
    void lock(bool locked) override;
    void send(Walk& walk) override;
    void keep_entries() override;
    void restore_entries() override;
    bool wants(const calibration::ReadRequest& request) const override {
        return counts().unread > 0 && (item_.row == nullptr || item_.row->read.command == request.command);
    }

private:
    CustomItem item_;
    int not_taken_ = 0; // of the last sending
    std::int32_t sent_ = 0;
};

} // namespace ecu::editing
