// Shows a Picture: its strokes replayed on whole device pixels, so that lines are crisp at any scale factor, or its
// image scaled to fit. The picture's size follows the widget's, and its owner then draws anew.
#pragma once

#include "platform/picture.h"

#include <QPixmap>
#include <QWidget>

namespace ecu::desktop {

class PictureView final : public QWidget {
public:
    explicit PictureView(platform::Picture& picture);
    QSize sizeHint() const override { return {480, 300}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void paint_image(QPainter& painter);
    void paint_strokes(QPainter& painter);

    platform::Picture& picture_;
    QPixmap image_;
    std::string image_path_;
};

} // namespace ecu::desktop
