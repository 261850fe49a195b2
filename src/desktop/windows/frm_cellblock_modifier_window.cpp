// The block dialog: each operand beside the operations that use it.
#include "desktop/windows/windows.h"
#include "maps/frm_cellblock_modifier.h"

#include <QHBoxLayout>
#include <QLabel>

namespace ecu::desktop {

namespace {

void operand(FormWindow& window, Panel& panel, const char* name, platform::TextBox& box,
             std::initializer_list<platform::Button*> operations) {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(name);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("Amount  ")));
    layout->addWidget(label);
    QWidget* edit = window.make(box, name);
    edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("000000.000")));
    layout->addWidget(edit);
    for (platform::Button* operation : operations) {
        layout->addWidget(window.make(*operation));
    }
    layout->addStretch(1);
    panel.add(line);
}

} // namespace

std::unique_ptr<FormWindow> make_frm_cellblock_modifier_window(maps::FrmCellblockModifier& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    Panel panel = window->panel("Every cell of the block");
    panel.add(window->make(f.block_extent, "Block"));
    operand(*window, panel, "Factor", f.multiply, {&f.cell_operation[1], &f.cell_operation[5]});
    operand(*window, panel, "Amount", f.Add, {&f.cell_operation[2], &f.cell_operation[4]});
    operand(*window, panel, "Value", f.set_value, {&f.cell_operation[3]});
    window->set_body(panel);
    window->set_footer(window->buttons({&f.cell_operation[0]}));
    window->close_on_escape();
    return window;
}

} // namespace ecu::desktop
