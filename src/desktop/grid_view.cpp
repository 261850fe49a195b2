#include "desktop/grid_view.h"

#include "desktop/grid_delegate.h"
#include "desktop/keys.h"
#include "desktop/qt_text.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

namespace ecu::desktop {

using platform::Property;

GridView::GridView(platform::Grid& grid) : grid_(grid), model_(grid), delegate_(new GridDelegate(*this)) {
    setModel(&model_);
    setItemDelegate(delegate_);
    horizontalHeader()->hide();
    verticalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(8);
    verticalHeader()->setMinimumSectionSize(8);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    setEditTriggers(AnyKeyPressed | EditKeyPressed | DoubleClicked);
    setSelectionMode(ContiguousSelection);
    setTabKeyNavigation(true);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    setCurrentIndex(model_.index(grid.active_row() - 1, grid.active_column() - 1));
}

void GridView::refresh(Property property) {
    if (property == Property::content) {
        model_.announce_change();
        delegate_->cell_may_have_changed();
    } else if (property == Property::value) {
        select_shown_block();
    } else if (property == Property::scale) {
        apply_sizes();
    } else if (property == Property::focus) {
        // The same announcement tells a new active cell and a wish for the keyboard; the latter moves nothing.
        const QModelIndex active = model_.index(grid_.active_row() - 1, grid_.active_column() - 1);
        if (currentIndex() == active) {
            setFocus(Qt::OtherFocusReason);
        } else {
            setCurrentIndex(active);
        }
    }
}

void GridView::select_shown_block() {
    const platform::Grid::Area& block = grid_.shown_block();
    if (block.rows() > 0 && block.columns() > 0) {
        selectionModel()->select({model_.index(block.first_row - 1, block.first_column - 1),
                                  model_.index(block.last_row - 1, block.last_column - 1)},
                                 QItemSelectionModel::ClearAndSelect);
    }
}

platform::Grid::Area GridView::selected_block() const {
    const auto ranges = selectionModel()->selection();
    const QItemSelectionRange block = ranges.isEmpty() ? QItemSelectionRange(currentIndex()) : ranges.first();
    int right = block.right();
    while (right >= block.left() && isColumnHidden(right)) { // columns are shed from the right
        --right;
    }
    return {block.top() + 1, block.left() + 1, block.bottom() + 1, right + 1};
}

// Selecting with Shift or by Ctrl+A chooses a block as dragging the mouse does.
void GridView::report_keyed_block() const {
    const platform::Grid::Area block = selected_block();
    if (grid_.block_chosen && selectionModel()->selection().size() == 1 && block.rows() * block.columns() > 1) {
        grid_.block_chosen(block);
    }
}

// Shift and a click extend the selection from where it began: to the grid that is a press there and a release here.
void GridView::report_extension(const QModelIndex& to) {
    const auto ranges = selectionModel()->selection();
    if (!grid_.mouse_down || ranges.isEmpty()) {
        return;
    }
    const QItemSelectionRange& block = ranges.first();
    grid_.set_mouse_cell((to.row() == block.top() ? block.bottom() : block.top()) + 1,
                         (to.column() == block.left() ? block.right() : block.left()) + 1);
    grid_.mouse_down(platform::MouseButton::left);
}

void GridView::apply_sizes() {
    for (int column = 1; column <= grid_.columns(); ++column) {
        setColumnHidden(column - 1, grid_.column_width(column) == 0);
    }
    for (int row = 1; row <= grid_.rows(); ++row) {
        setRowHidden(row - 1, grid_.row_height(row) == 0);
    }
}

QSize GridView::cell_size() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(QStringLiteral("-00.000")), metrics.height() + 6};
}

QSize GridView::sizeHint() const {
    return {cell_size().width() * grid_.columns() + 2 * frameWidth() + 2,
            cell_size().height() * grid_.rows() + 2 * frameWidth() + 2};
}

QSize GridView::minimumSizeHint() const {
    const QFontMetrics metrics(font());
    return {(metrics.horizontalAdvance(QStringLiteral("0.000")) + 4) * grid_.columns() + 2 * frameWidth() + 2,
            (metrics.height() + 2) * grid_.rows() + 2 * frameWidth() + 2};
}

bool GridView::offer_key(const QKeyEvent& event) {
    platform::KeyPress key = key_of(event);
    const int code = key.code;
    if (code != 0 && grid_.key_down) {
        grid_.key_down(key);
        if (key.code != code) {
            return true;
        }
    }
    const bool character = !event.text().isEmpty() && !key.ctrl;
    if (grid_.key_press && (code == platform::key::enter || character)) {
        key.code = code == platform::key::enter ? code : event.text().front().unicode();
        const int typed = key.code;
        grid_.key_press(key);
        return key.code != typed;
    }
    return false;
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (offer_key(*event)) {
        event->accept();
    } else if (event->matches(QKeySequence::Copy)) {
        copy_block();
    } else if (event->matches(QKeySequence::Paste)) {
        paste_block();
    } else if (event->key() == Qt::Key_Delete) {
        clear_block();
    } else if (event->key() == Qt::Key_Backspace) {
        if (!grid_.locked()) {
            grid_.set_cell_text(grid_.active_row(), grid_.active_column(), "");
        }
    } else if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QTableView::keyPressEvent(event);
        report_keyed_block();
    }
}

bool GridView::editor_key(const QKeyEvent& event, bool typed_over) {
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        return typed_over && event.modifiers() == Qt::NoModifier;
    case Qt::Key_S:
    case Qt::Key_F:
        return event.modifiers().testFlag(Qt::ControlModifier);
    default:
        return false;
    }
}

bool GridView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    typed_over_ = trigger == AnyKeyPressed;
    return QTableView::edit(index, trigger, event);
}

// Qt hands the keyboard on in this way when a widget is hidden. The table would take that for its own Tab: keep the
// keyboard unseen, and move its cell.
bool GridView::focusNextPrevChild(bool next) {
    return isHidden() ? QAbstractScrollArea::focusNextPrevChild(next) : QTableView::focusNextPrevChild(next);
}

void GridView::note_mouse(const QMouseEvent& event) {
    const QModelIndex index = indexAt(event.position().toPoint());
    grid_.set_mouse_cell(index.isValid() ? index.row() + 1 : -1, index.isValid() ? index.column() + 1 : -1);
}

void GridView::mousePressEvent(QMouseEvent* event) {
    note_mouse(*event);
    const auto button = button_of(*event);
    const QModelIndex at = indexAt(event->position().toPoint());
    if (button == platform::MouseButton::left && event->modifiers().testFlag(Qt::ShiftModifier) && at.isValid()) {
        QTableView::mousePressEvent(event);
        report_extension(at);
        return;
    }
    if (grid_.mouse_down && button != platform::MouseButton::none) {
        grid_.mouse_down(button);
    }
    if (button != platform::MouseButton::right) { // the right button acts on the block as it is
        QTableView::mousePressEvent(event);
    }
}

void GridView::mouseReleaseEvent(QMouseEvent* event) {
    note_mouse(*event);
    const auto button = button_of(*event);
    if (grid_.mouse_up && button != platform::MouseButton::none) {
        grid_.mouse_up(button);
    }
    if (button != platform::MouseButton::right) {
        QTableView::mouseReleaseEvent(event);
    }
}

void GridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (current.isValid()) {
        grid_.set_active_cell(current.row() + 1, current.column() + 1);
    }
    viewport()->update();
}

void GridView::copy_block() const {
    if (selectionModel()->selection().isEmpty()) {
        return;
    }
    const platform::Grid::Area block = selected_block();
    QString text;
    for (int row = block.first_row; row <= block.last_row; ++row) {
        for (int column = block.first_column; column <= block.last_column; ++column) {
            text += qt(grid_.cell_text(row, column)) + (column < block.last_column ? '\t' : '\n');
        }
    }
    QApplication::clipboard()->setText(text);
}

void GridView::paste_block() {
    QString text = QApplication::clipboard()->text();
    text.remove('\r');
    if (text.isEmpty() || !isEnabled() || grid_.locked()) {
        return;
    }
    grid_.paste(selected_block(), text.toStdString());
}

void GridView::clear_block() {
    if (grid_.locked() || selectionModel()->selection().isEmpty()) {
        return;
    }
    grid_.begin_batch();
    fill(selected_block(), "");
    grid_.end_batch();
}

void GridView::fill(const platform::Grid::Area& block, const std::string& text) {
    for (int row = block.first_row; row <= block.last_row; ++row) {
        for (int column = block.first_column; column <= block.last_column; ++column) {
            grid_.set_cell_text(row, column, text);
        }
    }
}

} // namespace ecu::desktop
