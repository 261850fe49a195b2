#include "desktop/figure_label.h"

#include "desktop/theme.h"

#include <QFontMetrics>

namespace ecu::desktop {

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
