// The surface graph: the picture takes the whole window, the view's scroll bars and the scale stand below and beside.
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "maps/frm_3d_graph.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QScrollBar>

namespace ecu::desktop {

namespace {

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
    auto* body = new QWidget;
    auto* layout = new QGridLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    QWidget* picture = window->make(f.Picture1, "Surface of the map");
    picture->setMinimumSize(320, 220);
    layout->addWidget(picture, 0, 0);
    auto* tilt = static_cast<QScrollBar*>(window->make(f.VScroll1, "View from above"));
    tilt->setOrientation(Qt::Vertical);
    layout->addWidget(tilt, 0, 1);
    layout->addWidget(window->make(f.HScroll1, "View from the side"), 1, 0);
    layout->setRowStretch(0, 1);
    layout->setColumnStretch(0, 1);
    window->set_body(body);
    window->set_footer(scale_row(*window, f));
    window->resize(760, 560);
    return window;
}

} // namespace ecu::desktop
