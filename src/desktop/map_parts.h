// Small parts that the windows of maps share: the triangle that marks the operating point on an axis, the
// legend of the cells, a muted line of text, and a page that scrolls to the keyboard's place.
#pragma once

#include "platform/colour.h"

#include <QLabel>

#include <initializer_list>
#include <vector>

class QScrollArea;

namespace ecu::desktop {

// A triangle that points at its axis: upward under a map, to the right beside one.
class AxisMarker final : public QWidget {
public:
    static constexpr int size = 12;

    AxisMarker(bool upward, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool upward_;
};

enum class CellState : std::uint8_t { pending, confirmed, unread, unconfirmed };

QPixmap pending_picture();
QLabel* swatch(platform::Colour colour);
QLabel* muted_label(const QString& text); // follows the desktop from light to dark
// Scrolls to what gets the keyboard. Not under the mouse, whose click would miss what has moved away.
void keep_focus_in_sight(QScrollArea& area);
// What the grounds and marks of cells mean, and what those of the shading do, from low to high.
QWidget* cell_legend(std::initializer_list<CellState> states, const std::vector<QWidget*>& scale = {});

} // namespace ecu::desktop
