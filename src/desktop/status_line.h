// A label for a status text of any length: it takes the room there is, in two lines, and its tip has the text whole.
// Its text never lays the window out again, so that the progress of a read costs nothing.
#pragma once

#include <QLabel>

namespace ecu::desktop {

class StatusLine final : public QLabel {
public:
    StatusLine();
    void show_text(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {40, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent*) override;
};

} // namespace ecu::desktop
