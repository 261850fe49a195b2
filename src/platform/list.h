// Rows of texts under headings, of which one is the current; rows may carry a tick. The rows are set whole, and the
// user chooses and ticks.
#pragma once

#include "platform/control.h"

#include <functional>
#include <string>
#include <vector>

namespace ecu::platform {

class List : public Control {
public:
    struct Row {
        std::vector<std::string> cells; // one a heading
        bool ticked = false;
        bool tickable = true; // where the list has ticks
    };

    List(Form& form, std::string_view name, std::vector<std::string> headings, bool ticks = false)
        : Control(form, name, -1, Kind::list, ""), headings_(std::move(headings)), ticks_(ticks) {}

    const std::vector<std::string>& headings() const { return headings_; }
    void set_heading(std::size_t column, std::string_view text);
    bool has_ticks() const { return ticks_; }
    const std::vector<Row>& rows() const { return rows_; }
    void set_rows(std::vector<Row> rows); // the current row stays the same number, if there is one
    void set_cell(std::size_t row, std::size_t column, std::string_view text);

    int current() const { return current_; } // -1: none
    void choose(int row);                    // as the user does; fires `chosen` when it differs
    void tick(int row, bool ticked);         // as the user does; a row that cannot be ticked stays as it is
    void activate(int row);                  // a double click or Enter

    std::function<void()> chosen;
    std::function<void()> ticks_changed;
    std::function<void(int row)> activated;

private:
    std::vector<std::string> headings_;
    bool ticks_;
    std::vector<Row> rows_;
    int current_ = -1;
};

} // namespace ecu::platform
