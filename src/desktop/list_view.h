// A List on the screen: columns as wide as their texts, Space ticks, Enter or a double click acts on the row, Ctrl+C
// carries the current row as tab-separated text.
#pragma once

#include "platform/list.h"

#include <QAbstractTableModel>
#include <QTableView>

namespace ecu::desktop {

class ListModel final : public QAbstractTableModel {
public:
    explicit ListModel(platform::List& list) : list_(list) {}
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    void announce(platform::Property property);

private:
    platform::List& list_;
};

class ListView final : public QTableView {
public:
    explicit ListView(platform::List& list);
    void refresh(platform::Property property);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool focusNextPrevChild(bool next) override { return QAbstractScrollArea::focusNextPrevChild(next); }

private:
    platform::List& list_;
    ListModel model_;
};

} // namespace ecu::desktop
