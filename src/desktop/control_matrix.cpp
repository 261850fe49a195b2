#include "desktop/control_matrix.h"

#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QLabel>
#include <QLineEdit>

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
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
    label->setPalette(palette);
    return label;
}

void ControlMatrix::head(int first, std::string_view text, int span) {
    grid_->addWidget(muted(text), span > 1 ? 0 : 1, first + 1, 1, span, Qt::AlignHCenter | Qt::AlignBottom);
}

void ControlMatrix::heads(int first, std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        head(first++, text);
    }
}

void ControlMatrix::row(std::string_view name) {
    ++row_;
    row_name_ = qt(name);
    row_label_ = new QLabel(row_name_);
    grid_->addWidget(row_label_, row_, 0);
}

void ControlMatrix::row(platform::CheckBox& name) {
    ++row_;
    row_name_ = qt(name.text());
    row_label_ = nullptr;
    grid_->addWidget(window_->make(name), row_, 0);
}

void ControlMatrix::cell(int column, platform::Control& control, std::string_view column_name) {
    const QString spoken = row_name_ + ", " + qt(column_name);
    QWidget* widget = window_->make(control, Caption(spoken.toStdString()));
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("-0000.000")) + 12);
    }
    grid_->addWidget(widget, row_, column + 1, Qt::AlignHCenter | Qt::AlignVCenter);
}

void ControlMatrix::gap_before(int column) { grid_->setColumnMinimumWidth(column, 2 * theme::margin); }

} // namespace ecu::desktop
