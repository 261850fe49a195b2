#include "desktop/control_matrix.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace ecu::desktop {

ControlMatrix::ControlMatrix(FormWindow& window, Panel panel) : window_(&window) {
    auto* holder = new QWidget;
    grid_ = new QGridLayout(holder);
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(theme::gap);
    grid_->setVerticalSpacing(2);
    panel.add(holder);
}

QWidget* ControlMatrix::muted(std::string_view text) {
    auto* label = new QLabel(qt(text));
    theme::mute(*label);
    return label;
}

void ControlMatrix::head(int first, std::string_view text, int span) {
    QWidget* label = muted(text);
    static_cast<QLabel*>(label)->setAlignment(first < 0 ? Qt::AlignLeft : Qt::AlignHCenter);
    grid_->addWidget(label, span > 1 ? 0 : 1, place_of(first), 1, span,
                     (first < 0 ? Qt::AlignLeft : Qt::AlignHCenter) | Qt::AlignBottom);
}

void ControlMatrix::heads(int first, std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        head(first++, text);
    }
}

void ControlMatrix::row(std::string_view name) {
    ++row_;
    row_name_ = qt(name);
    grid_->addWidget(new QLabel(row_name_), row_, 0);
}

void ControlMatrix::row(platform::CheckBox& name) {
    ++row_;
    row_name_ = qt(name.text());
    grid_->addWidget(window_->make(name), row_, 0);
}

void ControlMatrix::cell(int column, platform::Control& control, std::string_view column_name) {
    const QString spoken = row_name_ + ", " + qt(column_name);
    QWidget* widget = window_->make(control, Caption(spoken.toStdString()));
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("-0000.000")) + 12);
    }
    grid_->addWidget(widget, row_, place_of(column), Qt::AlignHCenter | Qt::AlignVCenter);
}

int ControlMatrix::place_of(int column) const {
    const auto before = std::ranges::count_if(gaps_, [column](int gap) { return gap <= column; });
    return column + 1 + static_cast<int>(before);
}

void ControlMatrix::gap_before(int column) {
    grid_->setColumnMinimumWidth(place_of(column), theme::margin);
    gaps_.push_back(column);
}

} // namespace ecu::desktop
