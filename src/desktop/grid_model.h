// A Grid as Qt's item model: model cell (r - 1, c - 1) is grid cell (r, c), the headers are not part of it. Text is
// the display and edit role, the state colour the background role.
#pragma once

#include "platform/grid.h"

#include <QAbstractTableModel>

namespace ecu::desktop {

class GridModel final : public QAbstractTableModel {
public:
    explicit GridModel(platform::Grid& grid) : grid_(grid) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : grid_.rows(); }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : grid_.columns(); }
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The grid's last announced change.
    void announce_change();

private:
    QString state_of(int row, int column) const;
    QString remark_on(int row, int column) const;
    QString described(int row, int column) const;

    platform::Grid& grid_;
};

} // namespace ecu::desktop
