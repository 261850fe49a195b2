// Paints a grid's cell so that its state colour stays to be seen when it is selected, with its marks: a corner for what
// is pending or not confirmed, hatching for what was never read, red for what is no number. And edits it live.
#pragma once

#include "platform/grid.h"

#include <QLineEdit>
#include <QPointer>
#include <QStyledItemDelegate>

namespace ecu::desktop {

class GridView;

// The corner that tells a pending cell apart for eyes that cannot tell its yellow from a shade.
void paint_pending_mark(QPainter& painter, const QRect& cell);
// The same corner, hollow: what the cell shows is not what the controller last confirmed, whatever its colour says.
void paint_unconfirmed_mark(QPainter& painter, const QRect& cell);

class GridDelegate final : public QStyledItemDelegate {
public:
    explicit GridDelegate(GridView& view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // The editor has its text from the start, and each key wrote it: a reply that comes meanwhile changes the cell
    // and not what is being typed.
    void setEditorData(QWidget*, const QModelIndex&) const override {}
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override { settle(); }
    void cell_may_have_changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Edit {
        QPointer<QLineEdit> editor = {};
        int row = 1;
        int column = 1;
        bool typed_over = false;
        bool typed = false;
        bool restorable = false; // written since the state below was the cell's
        bool writing = false;
        platform::Grid::Cell before = {};
    };

    void keep_for_escape() const;
    void write(const QString& text) const;
    void settle() const;
    void restore() const;

    GridView& view_;
    mutable Edit edit_; // a view has one editor at most
};

} // namespace ecu::desktop
