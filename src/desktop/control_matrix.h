// A table of controls in a panel: heads above, names at the left, a control in each cell. A cell is spoken of by its
// row and its column.
#pragma once

#include "desktop/form_window.h"

#include <QGridLayout>

namespace ecu::desktop {

class ControlMatrix {
public:
    ControlMatrix(FormWindow& window, Panel panel);

    // Above the columns `first` to `first + span - 1`, counted from 0 behind the row names. Columns spanned by a common
    // head have heads of their own below it.
    void head(int first, std::string_view text, int span = 1);
    void heads(int first, std::initializer_list<std::string_view> texts);
    void row(std::string_view name); // the next row; its cells follow
    void row(platform::CheckBox& name);
    void cell(int column, platform::Control& control, std::string_view column_name);
    void gap_before(int column); // room between groups of columns; before any head or cell, lowest column first

private:
    int place_of(int column) const; // in the grid
    QWidget* muted(std::string_view text);

    FormWindow* window_;
    QGridLayout* grid_;
    int row_ = 1; // below two rows of heads
    QString row_name_;
    std::vector<int> gaps_;
};

} // namespace ecu::desktop
