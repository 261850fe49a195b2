#include "desktop/figure_label.h"

#include "desktop/theme.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFontMetrics>

namespace ecu::desktop {

namespace {

// Qt's own reads a label out by its caption alone, once it has one.
class AccessibleFigure final : public QAccessibleWidget {
public:
    explicit AccessibleFigure(FigureLabel& figure)
        : QAccessibleWidget(&figure, QAccessible::StaticText), figure_(figure) {}
    QString text(QAccessible::Text what) const override {
        switch (what) {
        case QAccessible::Name:
            return (figure_.accessibleName() + ' ' + figure_.spoken_value()).trimmed();
        case QAccessible::Value:
            return figure_.spoken_value();
        default:
            return QAccessibleWidget::text(what);
        }
    }

private:
    FigureLabel& figure_;
};

QAccessibleInterface* accessible_figure(const QString&, QObject* object) {
    auto* figure = dynamic_cast<FigureLabel*>(object);
    return figure == nullptr ? nullptr : new AccessibleFigure(*figure); // Qt takes it over
}

} // namespace

void make_figures_accessible() { QAccessible::installFactory(accessible_figure); }

QString FigureLabel::spoken_value() const {
    const QString unit = unit_ ? unit_() : QString();
    return unit.isEmpty() ? text() : text() + ' ' + unit;
}

FigureLabel::FigureLabel(const QString& widest) : widest_(widest) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    set_points(14);
}

void FigureLabel::set_points(double points) {
    setFont(theme::figure_font(points));
    make_room();
}

bool FigureLabel::show_text(const QString& text) {
    setText(text);
    if (fontMetrics().horizontalAdvance(text) <= minimumWidth() - 4) {
        return false;
    }
    widest_ = text;
    make_room();
    return true;
}

void FigureLabel::make_room() {
    const QFontMetrics metrics(font());
    setFixedSize(metrics.horizontalAdvance(widest_) + 4, metrics.height());
}

} // namespace ecu::desktop
