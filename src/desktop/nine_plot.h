// A 9 by 9 map with its axes: each caption stands at the middle of its column or row, for there the cell's value holds.
// A map that has shed its columns but one keeps that one's width. Markers come and go, since several maps share a pair.
#pragma once

#include "desktop/form_window.h"
#include "platform/grid.h"

#include <QPointer>

#include <array>

class QLabel;

namespace ecu::desktop {

class GridView;

class NinePlot final : public QWidget {
public:
    struct Parts {
        platform::Grid& grid;
        const char* name; // "Duty map of GPO 1"
        platform::ControlArray<platform::Label, 9>& x_captions;
        platform::ControlArray<platform::Label, 9>& y_captions;
        platform::Label& x_title;
        platform::Label& y_title;
    };
    NinePlot(FormWindow& window, const Parts& parts);

    QWidget* grid() const;
    // Takes the markers, whose places are shares of the axes, 0 to 1; they come hidden.
    void adopt_markers(QWidget* x, QWidget* y);
    void place_markers(double x_share, double y_share);

    QSize sizeHint() const override { return around(QSize(54, 27) * cells_per_side); }
    QSize minimumSizeHint() const override { return around(QSize(34, 19) * cells_per_side); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int cells_per_side = 9;

    QLabel* caption(FormWindow& window, platform::Label& control, const QString& name, Qt::Alignment alignment);
    int shown_columns() const;
    int line() const { return fontMetrics().height(); }
    int caption_width() const { return fontMetrics().horizontalAdvance(QStringLiteral("-000.0")); }
    QSize around(QSize field) const; // with the room that the axes take
    int column_middle(int column) const { return field_.left() + cell_.width() / 2 + column * cell_.width(); }
    int row_middle(int from_below) const { return field_.bottom() - cell_.height() / 2 - from_below * cell_.height(); }
    void lay_out();
    void place_captions();
    void move_markers();

    GridView* view_;
    std::array<QLabel*, 9> x_captions_{};
    std::array<QLabel*, 9> y_captions_{};
    QLabel* x_title_ = nullptr;
    QLabel* y_title_ = nullptr;
    QPointer<QWidget> x_marker_;
    QPointer<QWidget> y_marker_;
    double x_share_ = 0;
    double y_share_ = 0;
    QSize cell_{1, 1};
    QRect field_; // of the cells
    int laid_out_columns_ = 0;
};

} // namespace ecu::desktop
