// Shows the line graph of a nine-point table: the strokes of its Picture, with the lines of the points held back and
// the curve brought out. The picture's size follows the widget's, and its owner then draws anew; its text is the scale.
#pragma once

#include "platform/picture.h"

#include <QLineF>
#include <QWidget>

#include <vector>

namespace ecu::desktop {

class CurveView final : public QWidget {
public:
    explicit CurveView(platform::Picture& picture) : picture_(picture) {}
    // The pieces of the curve among the picture's strokes, in their order: the first point alone, then one to each
    // further point. There is none to or from a point that is not known.
    static std::vector<QLineF> curve_of(const platform::Picture& picture);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    platform::Picture& picture_;
};

} // namespace ecu::desktop
