#include "desktop/grid_delegate.h"

#include "desktop/grid_view.h"
#include "desktop/keys.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace ecu::desktop {

namespace {

void paint_corner(QPainter& painter, const QRect& cell, bool filled) {
    const int size = std::clamp(cell.height() / 3, 4, 8);
    const QPoint corner = cell.topLeft() + (filled ? QPoint() : QPoint(1, 1));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(filled ? QPen(Qt::NoPen) : QPen(Qt::black, 1.2));
    painter.setBrush(filled ? QBrush(Qt::black) : QBrush(Qt::white));
    painter.drawPolygon(QPolygon({corner, corner + QPoint(size, 0), corner + QPoint(0, size)}));
    painter.restore();
}

} // namespace

void paint_pending_mark(QPainter& painter, const QRect& cell) { paint_corner(painter, cell, true); }

void paint_unconfirmed_mark(QPainter& painter, const QRect& cell) { paint_corner(painter, cell, false); }

GridDelegate::GridDelegate(GridView& view) : QStyledItemDelegate(&view), view_(view) {}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const platform::Grid& grid = view_.grid();
    const int row = index.row() + 1;
    const int column = index.column() + 1;
    const QVariant back = index.data(Qt::BackgroundRole);
    const QColor fill = back.isValid() ? back.value<QBrush>().color() : option.palette.color(QPalette::Base);
    painter->fillRect(option.rect, fill);
    if (grid.cell_unread(row, column)) {
        painter->fillRect(option.rect, theme::hatching());
    }
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    if (option.state.testFlag(QStyle::State_Selected)) {
        QColor veil = option.palette.color(QPalette::Highlight);
        veil.setAlpha(70);
        painter->fillRect(option.rect, veil);
    }
    if (enabled && grid.cell_to_be_sent(row, column) && !grid.locked()) {
        paint_pending_mark(*painter, option.rect);
    } else if (grid.cell_unconfirmed(row, column) && !grid.cell_pending(row, column)) {
        paint_unconfirmed_mark(*painter, option.rect);
    }
    QColor text = index.data(Qt::ForegroundRole).isValid() ? index.data(Qt::ForegroundRole).value<QBrush>().color()
                                                           : theme::text_on(fill);
    text.setAlpha(enabled ? 255 : 160);
    painter->setPen(text);
    const int inset = std::max(3, option.rect.width() / 7);
    const bool emptied = grid.cell_to_be_sent(row, column) && grid.cell_text(row, column).empty();
    painter->drawText(option.rect.adjusted(0, 0, -inset, 0), Qt::AlignRight | Qt::AlignVCenter,
                      emptied ? QStringLiteral("\u2013") : index.data().toString());
    if (row == grid.anchor_row() && column == grid.anchor_column()) {
        painter->setPen(QPen(theme::text_on(fill), 1, Qt::DashLine));
        painter->drawRect(option.rect.adjusted(2, 2, -3, -3));
    }
    if (index == view_.currentIndex()) {
        painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const {
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

// A cell that turned white under its editor was confirmed: that is what Escape goes back to from now on.
void GridDelegate::cell_may_have_changed() {
    if (edit_.editor != nullptr && !edit_.writing &&
        view_.grid().cell_back(edit_.row, edit_.column) == platform::confirmed) {
        keep_for_escape();
    }
}

bool GridDelegate::eventFilter(QObject* watched, QEvent* event) {
    auto* editor = qobject_cast<QLineEdit*>(watched);
    if (editor != nullptr && is_undo_key(*event)) { // the grid's, not the line's
        settle();
        emit closeEditor(editor, NoHint);
        event->ignore();
        return true;
    }
    if (editor == nullptr || event->type() != QEvent::KeyPress) {
        return QStyledItemDelegate::eventFilter(watched, event);
    }
    auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() == Qt::Key_Escape) {
        restore();
        emit closeEditor(editor, RevertModelCache);
        return true;
    }
    if (key.text() == QLatin1String(",")) { // the key of the decimals on many keyboards
        QKeyEvent point(key.type(), Qt::Key_Period, key.modifiers(), QStringLiteral("."), key.isAutoRepeat());
        QCoreApplication::sendEvent(editor, &point);
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

void GridDelegate::keep_for_escape() const {
    edit_.before = view_.grid().cell_state(edit_.row, edit_.column);
    edit_.restorable = false;
}

void GridDelegate::write(const QString& text) const {
    if (!view_.grid().locked()) {
        edit_.typed = edit_.restorable = edit_.writing = true;
        view_.grid().set_cell_text(edit_.row, edit_.column, text.toStdString());
        edit_.writing = false;
    }
}

// The echo of an earlier text may have come over what was typed since.
void GridDelegate::settle() const {
    if (edit_.editor != nullptr && edit_.typed &&
        edit_.editor->text() != qt(view_.grid().cell_text(edit_.row, edit_.column))) {
        write(edit_.editor->text());
    }
}

// Nothing was entered, so what the writing made pending is not.
void GridDelegate::restore() const {
    if (edit_.restorable) {
        view_.grid().restore_cell(edit_.row, edit_.column, edit_.before);
    }
    edit_.editor.clear();
}

} // namespace ecu::desktop
