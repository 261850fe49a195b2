// The dialog that applies one arithmetic operation to the selected block of a grid.
#pragma once

#include "platform/form.h"

namespace ecu::maps {

struct FrmCellblockModifier {
    platform::Form form{"frm_cellblock_modifier", "Cell Block Modifier"};

    platform::Label block_extent{form, "block_extent"}; // which cells the operations reach
    platform::TextBox set_value{form, "set_value", "1.000"};
    platform::TextBox Add{form, "Add", "0.000"};
    platform::TextBox multiply{form, "multiply", "1.000"};
    platform::ControlArray<platform::Button, 6> cell_operation{
        form, "cell_operation", {"Cancel", "Multiply", "Add", "Set All", "Subtract", "Divide"}};
};

} // namespace ecu::maps
