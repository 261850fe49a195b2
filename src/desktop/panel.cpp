#include "desktop/panel.h"

#include "desktop/figure_label.h"
#include "desktop/form_window.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

#include <algorithm>

namespace ecu::desktop {

using platform::Control;

namespace {

QFont title_font(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}

QWidget* in_a_line(const std::vector<QWidget*>& widgets, bool stretch_at_end) {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    for (QWidget* widget : widgets) {
        layout->addWidget(widget);
    }
    if (stretch_at_end) {
        layout->addStretch(1);
    }
    return line;
}

} // namespace

QString Caption::text() const { return label_ != nullptr ? qt(label_->text()) : text_; }

PanelBox::PanelBox(const QString& title, QWidget* parent) : QGroupBox(title, parent) {}

void PanelBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::panel_edge(QPalette()), 1));
    painter.setBrush(theme::panel_fill(QPalette()));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
    if (!title().isEmpty()) {
        painter.setFont(title_font(font()));
        painter.setPen(isEnabled() ? theme::accent(QPalette()) : theme::muted_text(QPalette()));
        painter.drawText(rect().adjusted(theme::margin, 6, -theme::margin, 0), Qt::AlignLeft | Qt::AlignTop, title());
    }
}

void PanelBox::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange) {
        update();
    }
}

Panel::Panel(FormWindow& window, QGroupBox* box) : window_(&window), box_(box), layout_(new QGridLayout(box)) {
    // QGroupBox keeps room for its title above its contents rectangle.
    layout_->setContentsMargins(theme::margin, 6, theme::margin, 8);
    layout_->setHorizontalSpacing(theme::gap);
    layout_->setVerticalSpacing(3);
}

Panel::operator QWidget*() const { return box_; }

QWidget* Panel::caption_widget(const Caption& caption, bool unit) {
    if (caption.empty()) {
        return nullptr;
    }
    if (caption.label() != nullptr) {
        QWidget* widget = window_->make(*caption.label());
        if (unit) {
            theme::mute(*widget);
        }
        return widget;
    }
    auto* label = new QLabel(caption.text());
    label->setTextFormat(Qt::PlainText);
    if (unit) {
        theme::mute(*label);
    }
    return label;
}

void Panel::place(QWidget* name, QWidget* field, QWidget* unit) {
    layout_->setColumnStretch(first_column_, 1);
    if (name != nullptr) {
        layout_->addWidget(name, row_, first_column_);
    }
    const int span = unit == nullptr ? 2 : 1;
    const bool fixed = field->minimumWidth() == field->maximumWidth();
    layout_->addWidget(field, row_, first_column_ + 1, 1, fixed ? 1 : span,
                       fixed ? Qt::AlignRight | Qt::AlignVCenter : Qt::Alignment());
    if (unit != nullptr) {
        layout_->addWidget(unit, row_, first_column_ + 2);
    }
    ++row_;
}

QWidget* Panel::row(const Caption& name, Control& control, const Caption& unit) {
    QWidget* field = window_->make(control, name);
    if (auto* edit = qobject_cast<QLineEdit*>(field)) {
        edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("00000.000")) + 16);
        edit->setMaximumWidth(edit->minimumWidth() * 2);
    }
    return between(name, control, field, unit);
}

QWidget* Panel::figure(const Caption& name, platform::Label& control, const Caption& unit, const char* widest) {
    FigureLabel* field = window_->make_figure(control, name, widest);
    field->set_unit([unit] { return unit.text(); });
    return between(name, control, field, unit);
}

// The field with its caption and unit, which are enabled and seen with it.
QWidget* Panel::between(const Caption& name, Control& control, QWidget* field, const Caption& unit) {
    QWidget* left = caption_widget(name, false);
    QWidget* right = caption_widget(unit, true);
    for (QWidget* beside : {left, right}) {
        if (beside != nullptr && window_->binding().is_fixed_text(*beside)) {
            window_->binding().follow(control, beside);
        }
    }
    place(left, field, right);
    return field;
}

void Panel::boxes(const Caption& name, std::span<Control* const> controls, const Caption& unit) {
    std::vector<QWidget*> widgets;
    for (Control* control : controls) {
        const QString spoken_name = name.text() + ' ' + QString::number(control->index());
        QWidget* widget = window_->make(*control, Caption(spoken_name.toStdString()));
        if (qobject_cast<QLineEdit*>(widget) != nullptr) {
            widget->setMinimumWidth(widget->fontMetrics().horizontalAdvance(QStringLiteral("000.00")) + 10);
        }
        widgets.push_back(widget);
    }
    place(caption_widget(name, false), in_a_line(widgets, false), caption_widget(unit, true));
}

void Panel::header(std::initializer_list<Column> columns) {
    columns_ = columns;
    int column = first_column_ + 1;
    for (const Column& titled : columns_) {
        QWidget* label = caption_widget(titled.title, true);
        if (label != nullptr) {
            layout_->addWidget(label, row_, column, Qt::AlignRight);
        }
        ++column;
    }
    header_rows_ = ++row_;
}

QString Panel::spoken_column(std::size_t column) const {
    const auto same = [&](const Column& other) { return std::string_view(other.title) == columns_[column].title; };
    const QString title = QString::fromUtf8(columns_[column].title);
    const bool repeated = std::ranges::count_if(columns_, same) > 1;
    return repeated && column > 0 ? QString::fromUtf8(columns_[column - 1].title) + ' ' + title : title;
}

void Panel::figures(const Caption& name, std::initializer_list<platform::Label*> labels) {
    layout_->setColumnStretch(first_column_, 1);
    if (QWidget* caption = caption_widget(name, false)) {
        layout_->addWidget(caption, row_, first_column_);
    }
    std::size_t column = 0;
    for (platform::Label* label : labels) {
        const QString spoken_name = name.text() + ' ' + spoken_column(column);
        layout_->addWidget(window_->make_figure(*label, Caption(spoken_name.toStdString()), columns_.at(column).widest),
                           row_, first_column_ + 1 + static_cast<int>(column), Qt::AlignRight | Qt::AlignVCenter);
        ++column;
    }
    ++row_;
}

void Panel::column(std::span<Control* const> controls) {
    for (Control* control : controls) {
        add(*control);
    }
}

void Panel::side_by_side(std::span<Control* const> controls) {
    std::vector<QWidget*> widgets;
    for (Control* control : controls) {
        widgets.push_back(window_->make(*control));
    }
    add(in_a_line(widgets, true));
}

QWidget* Panel::add(QWidget* widget, int stretch) {
    layout_->addWidget(widget, row_, first_column_, 1, 3);
    layout_->setRowStretch(row_, stretch);
    ++row_;
    return widget;
}

QWidget* Panel::add(Control& control, const Caption& name, int stretch) {
    return add(window_->make(control, name), stretch);
}

void Panel::note(const char* text) {
    QWidget* label = caption_widget(text, true);
    static_cast<QLabel*>(label)->setWordWrap(true);
    add(label);
}

void Panel::next_column() {
    layout_->setColumnMinimumWidth(first_column_ + 3, 2 * theme::margin);
    first_column_ += 4;
    row_ = 0;
}

void Panel::fill() { layout_->setRowStretch(layout_->rowCount(), 1); }

void Panel::spread() {
    for (int row = header_rows_; row < layout_->rowCount(); ++row) {
        layout_->setRowStretch(row, 1);
    }
}

} // namespace ecu::desktop
