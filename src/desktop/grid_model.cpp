#include "desktop/grid_model.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "platform/leading_number.h"

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
        if (grid_.cell_to_be_sent(row, column) && !platform::is_number(grid_.cell_text(row, column))) {
            return QBrush(theme::wrong_text());
        }
        return back ? QVariant(QBrush(theme::text_on(theme::to_qt(*back)))) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ToolTipRole:
    case Qt::StatusTipRole:
        return state_of(row, column).isEmpty() && remark_on(row, column).isEmpty() ? QVariant()
                                                                                   : QVariant(described(row, column));
    case Qt::AccessibleTextRole:
    case Qt::AccessibleDescriptionRole:
        return described(row, column);
    default:
        return {};
    }
}

// What its marks say.
QString GridModel::state_of(int row, int column) const {
    if (grid_.cell_unread(row, column)) {
        return QStringLiteral("not read");
    }
    if (grid_.cell_to_be_sent(row, column)) {
        return platform::is_number(grid_.cell_text(row, column)) ? QStringLiteral("pending")
                                                                 : QStringLiteral("pending, no number");
    }
    return grid_.cell_unconfirmed(row, column) ? QStringLiteral("not confirmed by the controller") : QString();
}

QString GridModel::remark_on(int row, int column) const {
    return grid_.remark ? qt(grid_.remark(row, column)) : QString();
}

// "0.914, 265 kPa, 312 rpm, pending, was 0.887, +3.0 %"
QString GridModel::described(int row, int column) const {
    QStringList parts{qt(grid_.cell_text(row, column)), grid_.place ? qt(grid_.place(row, column)) : QString(),
                      state_of(row, column), remark_on(row, column)};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
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
    emit dataChanged(first, last, {Qt::DisplayRole, Qt::BackgroundRole, Qt::ForegroundRole, Qt::AccessibleTextRole});
}

} // namespace ecu::desktop
