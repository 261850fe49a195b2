#include "desktop/nine_plot.h"

#include "desktop/grid_view.h"
#include "desktop/map_parts.h"
#include "desktop/theme.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace ecu::desktop {

namespace {

constexpr int marker_size = AxisMarker::size;
constexpr int smallest_figures = 9; // pixels
constexpr int largest_figures = 20;

QFont figures_for(QSize cell) {
    QFont font = theme::figure_font(10);
    font.setWeight(QFont::Normal);
    font.setPixelSize(std::clamp(cell.height() * 11 / 20, smallest_figures, largest_figures));
    while (font.pixelSize() > smallest_figures && QFontMetrics(font).horizontalAdvance(QStringLiteral("000.00")) >
                                                      cell.width() - std::max(3, cell.width() / 7)) {
        font.setPixelSize(font.pixelSize() - 1);
    }
    return font;
}

} // namespace

NinePlot::NinePlot(FormWindow& window, const Parts& parts)
    : view_(static_cast<GridView*>(window.make(parts.grid, parts.name))) {
    view_->setParent(this);
    const QString name = QString::fromUtf8(parts.name);
    for (std::size_t i = 0; i < x_captions_.size(); ++i) {
        x_captions_[i] = caption(window, parts.x_captions[i], name + ", column", Qt::AlignHCenter);
        y_captions_[i] = caption(window, parts.y_captions[i], name + ", row", Qt::AlignRight);
    }
    x_title_ = caption(window, parts.x_title, name + ", across", Qt::AlignHCenter);
    y_title_ = caption(window, parts.y_title, name + ", upward", Qt::AlignRight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    QObject::connect(view_->horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
        if (shown_columns() != laid_out_columns_) {
            lay_out();
        }
    });
}

QLabel* NinePlot::caption(FormWindow& window, platform::Label& control, const QString& name, Qt::Alignment alignment) {
    auto* label = static_cast<QLabel*>(window.make(control, Caption(name.toStdString())));
    label->setParent(this);
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

QWidget* NinePlot::grid() const { return view_; }

void NinePlot::adopt_markers(QWidget* x, QWidget* y) {
    x_marker_ = x;
    y_marker_ = y;
    for (QWidget* marker : {x, y}) {
        marker->setParent(this);
    }
    move_markers();
}

void NinePlot::place_markers(double x_share, double y_share) {
    x_share_ = x_share;
    y_share_ = y_share;
    move_markers();
}

QSize NinePlot::around(QSize field) const {
    return field + QSize(caption_width() + marker_size + 6, line() + 2 + marker_size + 2 * line() + 4);
}

int NinePlot::shown_columns() const {
    int shown = 0;
    for (int column = 0; column < cells_per_side; ++column) {
        shown += view_->isColumnHidden(column) ? 0 : 1;
    }
    return std::max(shown, 1);
}

void NinePlot::resizeEvent(QResizeEvent*) { lay_out(); }

void NinePlot::lay_out() {
    laid_out_columns_ = shown_columns();
    const QSize room = size() - around({0, 0});
    cell_ = QSize(std::max(1, room.width() / cells_per_side), std::max(1, room.height() / cells_per_side));
    field_ = QRect(QPoint(caption_width() + marker_size + 3, line() + 2),
                   QSize(cell_.width() * laid_out_columns_, cell_.height() * cells_per_side));
    view_->setFont(figures_for(cell_));
    view_->setGeometry(field_.adjusted(-1, -1, 1, 1));
    place_captions();
    move_markers();
    update();
}

void NinePlot::place_captions() {
    const int height = line();
    const int below = field_.bottom() + marker_size + 2;
    QFont small = font();
    small.setPixelSize(std::max(fontInfo().pixelSize(), smallest_figures));
    while (small.pixelSize() > smallest_figures &&
           QFontMetrics(small).horizontalAdvance(QStringLiteral("000000")) > cell_.width()) {
        small.setPixelSize(small.pixelSize() - 1); // neighbours keep a blank between them
    }
    const int width = std::max(cell_.width(), QFontMetrics(small).horizontalAdvance(QStringLiteral("000000")));
    for (int i = 0; i < cells_per_side; ++i) {
        const auto at = static_cast<std::size_t>(i);
        y_captions_[at]->setGeometry(0, row_middle(i) - height / 2, caption_width(), height);
        x_captions_[at]->setFont(small);
        x_captions_[at]->setGeometry(column_middle(i) - width / 2, below, width, height);
        x_captions_[at]->setVisible(i < laid_out_columns_);
    }
    y_title_->setGeometry(0, 0, caption_width(), height);
    x_title_->setGeometry(field_.left(), below + height, std::max(field_.width(), caption_width()), height);
}

void NinePlot::move_markers() {
    const auto along = [](int from, int to, double share) { return from + static_cast<int>((to - from) * share); };
    if (x_marker_ != nullptr && x_marker_->parent() == this) {
        x_marker_->move(along(column_middle(0), column_middle(cells_per_side - 1), x_share_) - marker_size / 2,
                        field_.bottom() + 2);
        x_marker_->raise();
    }
    if (y_marker_ != nullptr && y_marker_->parent() == this) {
        y_marker_->move(field_.left() - marker_size - 2,
                        along(row_middle(0), row_middle(cells_per_side - 1), y_share_) - marker_size / 2);
        y_marker_->raise();
    }
}

void NinePlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme::muted_text(QPalette()));
    for (int i = 0; i < cells_per_side; ++i) {
        painter.drawLine(field_.left() - 5, row_middle(i), field_.left() - 2, row_middle(i));
        if (i < laid_out_columns_) {
            painter.drawLine(column_middle(i), field_.bottom() + 2, column_middle(i), field_.bottom() + 5);
        }
    }
}

} // namespace ecu::desktop
