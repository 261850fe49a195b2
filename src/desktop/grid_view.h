// A Grid on the screen, edited in place like a spreadsheet: typing replaces, F2 or a double click edits, Escape
// restores what was typed over, Tab, Enter and the arrows move, Delete and Backspace empty, Ctrl+C and Ctrl+V carry a
// block as tab-separated text. What is typed goes to the cell with each key, so that no edit is lost to a menu or
// button. The grid's own handlers hear of every key and mouse button first; a key that they change is theirs alone.
#pragma once

#include "desktop/grid_model.h"

#include <QTableView>

namespace ecu::desktop {

class GridDelegate;

class GridView final : public QTableView {
public:
    explicit GridView(platform::Grid& grid);
    platform::Grid& grid() const { return grid_; }
    void refresh(platform::Property property);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void copy_block() const;
    // From the selection's top left, a single copied cell into all of it, by the grid's own rules of pasting.
    void paste_block();
    void clear_block();
    // A key in a cell's editor: true when it ends the edit and acts on the grid instead.
    bool editor_key(const QKeyEvent& event, bool typed_over);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void select_shown_block();
    void report_keyed_block() const;
    // What is selected of the columns that show: nobody means to change a cell that he cannot see.
    platform::Grid::Area selected_block() const;
    void fill(const platform::Grid::Area& block, const std::string& text);
    void report_extension(const QModelIndex& to);
    void note_mouse(const QMouseEvent& event);
    void apply_sizes();
    QSize cell_size() const;
    bool offer_key(const QKeyEvent& event); // true when the grid's handlers took it

    platform::Grid& grid_;
    GridModel model_;
    GridDelegate* delegate_;
    bool typed_over_ = false;
    friend class GridDelegate;
};

} // namespace ecu::desktop
