#include "desktop/grid_view.h"

#include "desktop/keys.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QStyledItemDelegate>

#include <algorithm>

namespace ecu::desktop {

using platform::Property;

void paint_pending_mark(QPainter& painter, const QRect& cell) {
    const int size = std::clamp(cell.height() / 3, 4, 8);
    const QPoint corner = cell.topLeft();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawPolygon(QPolygon({corner, corner + QPoint(size, 0), corner + QPoint(0, size)}));
    painter.restore();
}

// Paints a cell so that its state colour stays to be seen when it is selected, and edits it live.
class GridDelegate final : public QStyledItemDelegate {
public:
    explicit GridDelegate(GridView& view) : QStyledItemDelegate(&view), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QVariant back = index.data(Qt::BackgroundRole);
        const QColor fill = back.isValid() ? back.value<QBrush>().color() : option.palette.color(QPalette::Base);
        painter->fillRect(option.rect, fill);
        const bool enabled = option.state.testFlag(QStyle::State_Enabled);
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        if (selected) {
            QColor veil = option.palette.color(QPalette::Highlight);
            veil.setAlpha(70);
            painter->fillRect(option.rect, veil);
        }
        if (enabled && !view_.grid().locked() && fill == theme::to_qt(platform::pending)) {
            paint_pending_mark(*painter, option.rect);
        }
        QColor text = theme::text_on(fill);
        text.setAlpha(enabled ? 255 : 110);
        painter->setPen(text);
        const int inset = std::max(3, option.rect.width() / 7);
        painter->drawText(option.rect.adjusted(0, 0, -inset, 0), Qt::AlignRight | Qt::AlignVCenter,
                          index.data().toString());
        if (index == view_.currentIndex()) {
            painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
            painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
        }
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override {
        auto* editor = new QLineEdit(parent);
        editor->setFrame(false);
        editor->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        editor->setAccessibleName(view_.accessibleName());
        editor->setPalette(theme::edit_palette(QPalette(), platform::pending, platform::black));
        editor->setText(index.data().toString());
        editor->selectAll();
        edit_ = {.editor = editor, .row = index.row() + 1, .column = index.column() + 1};
        edit_.typed_over = view_.typed_over_;
        keep_for_escape();
        connect(editor, &QLineEdit::textEdited, &view_, [this](const QString& text) { write(text); });
        return editor;
    }
    // The editor has its text from the start, and each key wrote it: a reply that comes meanwhile changes the cell
    // and not what is being typed.
    void setEditorData(QWidget*, const QModelIndex&) const override {}
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override { settle(); }

    // A cell that turned white under its editor was confirmed: that is what Escape goes back to from now on.
    void cell_may_have_changed() {
        if (edit_.editor != nullptr && !edit_.writing &&
            view_.grid().cell_back(edit_.row, edit_.column) == platform::confirmed) {
            keep_for_escape();
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* editor = qobject_cast<QLineEdit*>(watched);
        if (editor != nullptr && event->type() == QEvent::KeyPress) {
            auto& key = static_cast<QKeyEvent&>(*event);
            if (key.key() == Qt::Key_Escape) {
                restore();
                emit closeEditor(editor, RevertModelCache);
                return true;
            }
            if (view_.editor_key(key, edit_.typed_over)) {
                QKeyEvent again(key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat());
                settle();
                emit closeEditor(editor, NoHint);
                QCoreApplication::sendEvent(&view_, &again);
                return true;
            }
            return false; // the line edit's own; Qt's delegate would take Tab and Enter away
        }
        return QStyledItemDelegate::eventFilter(watched, event);
    }

private:
    struct Edit {
        QPointer<QLineEdit> editor = {};
        int row = 1;
        int column = 1;
        bool typed_over = false;
        bool typed = false;
        bool restorable = false; // written since the text below was the cell's
        bool writing = false;
        std::string text = {};
        std::optional<platform::Colour> back = {};
    };

    void keep_for_escape() const {
        edit_.text = view_.grid().cell_text(edit_.row, edit_.column);
        edit_.back = view_.grid().cell_back(edit_.row, edit_.column);
        edit_.restorable = false;
    }
    void write(const QString& text) const {
        if (!view_.grid().locked()) {
            edit_.typed = edit_.restorable = edit_.writing = true;
            view_.grid().set_cell_text(edit_.row, edit_.column, text.toStdString());
            edit_.writing = false;
        }
    }
    // The echo of an earlier text may have come over what was typed since.
    void settle() const {
        if (edit_.editor != nullptr && edit_.typed &&
            edit_.editor->text() != qt(view_.grid().cell_text(edit_.row, edit_.column))) {
            write(edit_.editor->text());
        }
    }
    // Nothing was entered, so what the writing made pending is not.
    void restore() const {
        platform::Grid& grid = view_.grid();
        if (edit_.restorable) {
            grid.set_cell_text(edit_.row, edit_.column, edit_.text);
            grid.set_cell_back(edit_.row, edit_.column, edit_.back);
        }
        edit_.editor.clear();
    }

    GridView& view_;
    mutable Edit edit_; // a view has one editor at most
};

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
    if (text.endsWith('\n')) {
        text.chop(1);
    }
    if (text.isEmpty() || !isEnabled() || grid_.locked()) {
        return;
    }
    const platform::Grid::Area block = selected_block();
    grid_.begin_batch();
    if (!text.contains('\n') && !text.contains('\t')) {
        fill(block, text.trimmed().toStdString());
    } else {
        const QStringList lines = text.split('\n');
        for (int line = 0; line < lines.size() && block.first_row + line <= grid_.rows(); ++line) {
            const QStringList cells = lines[line].split('\t');
            for (int cell = 0; cell < cells.size() && block.first_column + cell <= grid_.columns(); ++cell) {
                if (!isColumnHidden(block.first_column + cell - 1)) {
                    grid_.set_cell_text(block.first_row + line, block.first_column + cell,
                                        cells[cell].trimmed().toStdString());
                }
            }
        }
    }
    grid_.end_batch();
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
