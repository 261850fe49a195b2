#include "desktop/status_line.h"

#include <QPainter>
#include <QTextLayout>

namespace ecu::desktop {

StatusLine::StatusLine() {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void StatusLine::show_text(const QString& text) {
    if (text != this->text()) {
        setText(text);
        setToolTip(text);
    }
}

QSize StatusLine::sizeHint() const { return {400, 2 * fontMetrics().lineSpacing()}; }

void StatusLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QFontMetrics metrics(font());
    if (metrics.horizontalAdvance(text()) <= width()) {
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
        return;
    }
    QTextLayout layout(text(), font());
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(width());
    layout.endLayout();
    painter.drawText(QRect(0, 0, width(), height() / 2), Qt::AlignLeft | Qt::AlignVCenter,
                     text().left(first.textLength()).trimmed());
    painter.drawText(QRect(0, height() / 2, width(), height() / 2), Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(text().mid(first.textLength()), Qt::ElideRight, width()));
}

} // namespace ecu::desktop
