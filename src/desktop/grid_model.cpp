#include "desktop/grid_model.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QBrush>

namespace ecu::desktop {

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const int row = index.row() + 1;
    const int column = index.column() + 1;
    const auto back = grid_.cell_back(row, column);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return qt(grid_.cell_text(row, column));
    case Qt::BackgroundRole:
        return back ? QVariant(QBrush(theme::to_qt(*back))) : QVariant();
    case Qt::ForegroundRole:
        return back ? QVariant(QBrush(theme::text_on(theme::to_qt(*back)))) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    default:
        return {};
    }
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !index.isValid()) {
        return false;
    }
    grid_.set_cell_text(index.row() + 1, index.column() + 1, value.toString().toStdString());
    return true;
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return grid_.locked() ? shown : shown | Qt::ItemIsEditable;
}

void GridModel::announce_change() {
    const platform::Grid::Area& area = grid_.changed_area();
    const QModelIndex first = index(area.first_row - 1, area.first_column - 1);
    const QModelIndex last = index(area.last_row - 1, area.last_column - 1);
    emit dataChanged(first, last, {Qt::DisplayRole, Qt::BackgroundRole});
}

} // namespace ecu::desktop
