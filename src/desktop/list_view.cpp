#include "desktop/list_view.h"

#include "desktop/qt_text.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

namespace ecu::desktop {

using platform::Property;

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.rows().size());
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.headings().size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    const auto row = static_cast<std::size_t>(index.row());
    if (!index.isValid() || row >= list_.rows().size()) {
        return {};
    }
    const platform::List::Row& shown = list_.rows()[row];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: // a column may be narrower than its text
        return qt(shown.cells[static_cast<std::size_t>(index.column())]);
    case Qt::CheckStateRole:
        return list_.has_ticks() && index.column() == 0 && shown.tickable
                   ? QVariant(shown.ticked ? Qt::Checked : Qt::Unchecked)
                   : QVariant();
    default:
        return {};
    }
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole) {
        return false;
    }
    list_.tick(index.row(), value.toInt() == Qt::Checked);
    return true;
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        return qt(list_.headings().at(static_cast<std::size_t>(section)));
    }
    return {};
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    flags.setFlag(Qt::ItemIsUserCheckable, list_.has_ticks() && index.column() == 0);
    return flags;
}

void ListModel::announce(Property property) {
    if (property == Property::content) {
        beginResetModel();
        endResetModel();
    } else if (property == Property::scale) {
        emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    } else if (property == Property::checked && rowCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::CheckStateRole});
    }
}

ListView::ListView(platform::List& list) : list_(list), model_(list) {
    setModel(&model_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(true);
    setMinimumSize(220, 90);
    connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& at) { list_.activate(at.row()); });
}

void ListView::refresh(Property property) {
    model_.announce(property);
    if (property == Property::content) {
        resizeColumnsToContents();
    }
    if (property == Property::content || property == Property::value) {
        const QSignalBlocker quiet(selectionModel());
        list_.current() >= 0 ? selectRow(list_.current()) : clearSelection();
        viewport()->update();
    }
}

void ListView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (current.isValid()) {
        list_.choose(current.row());
    }
}

void ListView::keyPressEvent(QKeyEvent* event) {
    const int row = currentIndex().row();
    if (event->key() == Qt::Key_Space && list_.has_ticks() && row >= 0) {
        list_.tick(row, !list_.rows()[static_cast<std::size_t>(row)].ticked);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        list_.activate(row);
    } else if (event->matches(QKeySequence::Copy) && row >= 0) {
        QStringList cells;
        for (const std::string& cell : list_.rows()[static_cast<std::size_t>(row)].cells) {
            cells.append(qt(cell));
        }
        QApplication::clipboard()->setText(cells.join('\t'));
    } else {
        QTableView::keyPressEvent(event);
    }
}

} // namespace ecu::desktop
