// The surface graph: the picture takes the whole window, the view's scroll bars and the scale stand below and beside.
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "maps/frm_3d_graph.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QWindow>

#include <algorithm>

namespace ecu::desktop {

namespace {

constexpr QMargins title_and_frame(8, 36, 8, 8); // what a window manager puts around, at most

// Keeps the graph above the map that it draws, and all of it on the screen, at its right edge to begin with.
class StayAboveMap final : public QObject {
public:
    explicit StayAboveMap(FormWindow& window) : QObject(&window), window_(window) { window.installEventFilter(this); }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show && !event->spontaneous() && window_.windowHandle() != nullptr) {
            const QWidgetList all = QApplication::topLevelWidgets();
            const auto map = std::ranges::find(all, QStringLiteral("frm_3d"), &QWidget::objectName);
            window_.windowHandle()->setTransientParent(map == all.end() ? nullptr : (*map)->windowHandle());
            place();
        }
        return false;
    }

private:
    void place() {
        const QRect room = window_.screen()->availableGeometry().marginsRemoved(title_and_frame);
        QRect graph(window_.geometry().topLeft(), window_.size().boundedTo(room.size()));
        if (!window_.testAttribute(Qt::WA_Moved)) {
            graph.moveBottomRight(room.bottomRight());
        }
        graph.moveRight(std::min(graph.right(), room.right()));
        graph.moveBottom(std::min(graph.bottom(), room.bottom()));
        graph.moveLeft(std::max(graph.left(), room.left()));
        graph.moveTop(std::max(graph.top(), room.top()));
        window_.setGeometry(graph);
    }

    FormWindow& window_;
};

QWidget* scale_row(FormWindow& window, maps::Frm3dGraph& f) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    for (const auto& [label, box] : {std::pair{&f.Label2, &f.low_scale}, std::pair{&f.Label1, &f.high_scale}}) {
        layout->addWidget(window.make(*label));
        QWidget* edit = window.make(*box, *label);
        edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("0000000.000")));
        layout->addWidget(edit);
        layout->addSpacing(theme::margin);
    }
    layout->addStretch(1);
    return row;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_3d_graph_window(maps::Frm3dGraph& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    // The desktop keeps a dialog, and no other kind of window, above the window that it belongs to.
    window->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
    new StayAboveMap(*window);
    auto* body = new QWidget;
    auto* layout = new QGridLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    QWidget* picture = window->make(f.Picture1, "Surface of the map");
    picture->setMinimumSize(320, 220);
    auto* shown = static_cast<QLabel*>(window->make(f.shown_map, "Map shown"));
    shown->setWordWrap(true);
    layout->addWidget(shown, 0, 0, 1, 2);
    layout->addWidget(picture, 1, 0);
    auto* tilt = static_cast<QScrollBar*>(window->make(f.VScroll1, "View from above"));
    tilt->setOrientation(Qt::Vertical);
    layout->addWidget(tilt, 1, 1);
    layout->addWidget(window->make(f.HScroll1, "View from the side"), 2, 0);
    layout->setRowStretch(1, 1);
    layout->setColumnStretch(0, 1);
    window->set_body(body);
    window->set_footer(scale_row(*window, f));
    window->close_on_escape();
    window->resize(760, 580);
    return window;
}

} // namespace ecu::desktop
