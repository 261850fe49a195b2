// A Picture with its axes: captions and numbers around the drawing, which keeps the room in between. Where the drawing
// tells of its places, the mouse points at them and the arrow keys move along. The whole can be saved as an image.
#pragma once

#include "platform/picture.h"

#include <QWidget>

namespace ecu::desktop {

class PlotView final : public QWidget {
public:
    explicit PlotView(platform::Picture& picture);
    ~PlotView() override { picture_.save_as_image = nullptr; }
    QSize sizeHint() const override { return {560, 320}; }
    void refresh(platform::Property property);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void lay_out();
    QRect area() const; // of the drawing

    platform::Picture& picture_;
    QWidget* drawing_;
};

} // namespace ecu::desktop
