// Two calibrations side by side: where each comes from, the list of differences by group, and maps as two grids with a
// third of their difference, shaded around zero.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/list.h"

#include <functional>

namespace ecu::history {

struct FrmCompare {
    platform::Form form{"frm_compare", "Compare calibrations"};

    // Element 0 is side A, 1 is B.
    platform::ControlArray<platform::Label, 2> side_name{form, "side_name"};
    platform::ControlArray<platform::Button, 2> side_file{form, "side_file", "&File..."};
    platform::ControlArray<platform::Button, 2> side_point{form, "side_point", "Restore &point"};
    platform::ControlArray<platform::TextBox, 2> side_point_number{form, "side_point_number"};
    platform::ControlArray<platform::Button, 2> side_controller{form, "side_controller", "&Controller"};
    platform::Button compare_swap{form, "compare_swap", "S&wap"};
    platform::Button compare_stop{form, "compare_stop", "S&top"};

    platform::TextBox compare_text{form, "compare_text"};
    platform::TextBox compare_rate{form, "compare_rate"};
    platform::CheckBox compare_raw{form, "compare_raw", "&Raw values"};

    platform::List compare_groups{form, "compare_groups", {"Group", "Differ"}};
    platform::List compare_list{
        form,
        "compare_list",
        {"Item", "Place", "A", "B", "Unit", "Difference", "Per cent", "Group", "Raw A", "Raw B"},
        true};

    platform::Label compare_summary{form, "compare_summary"};
    platform::Button compare_tick_shown{form, "compare_tick_shown", "Tick &all shown"};
    platform::Button compare_tick_none{form, "compare_tick_none", "Tick &none"};

    // Of the chosen line's map; empty for what is no map.
    platform::ControlArray<platform::Label, 2> map_name{form, "map_name"}; // one a page
    platform::Grid map_a{form, "map_a", 16, 16};
    platform::Grid map_b{form, "map_b", 16, 16};
    platform::Grid map_difference{form, "map_difference", 16, 16};

    platform::Button compare_copy{form, "compare_copy", "Copy as te&xt"};
    platform::Button compare_csv{form, "compare_csv", "Export CS&V..."};
    platform::Button compare_page{form, "compare_page", "Pri&ntable page..."};
    platform::Button compare_send{form, "compare_send", "&Send ticked of B..."};
    platform::Button compare_close{form, "compare_close", "C&lose"};
    platform::Label compare_status{form, "compare_status"};

    std::function<void(const std::string&)> to_clipboard; // the desktop's

    FrmCompare() {
        for (int side = 0; side < 2; ++side) {
            const std::string of = side == 0 ? "side A" : "side B";
            const auto i = static_cast<std::size_t>(side);
            side_file[i].set_tool_tip("Take a setup file as " + of);
            side_point[i].set_tool_tip("Take the restore point of this number as " + of);
            side_point_number[i].set_tool_tip("Number of a restore point, as its list shows it: 3 or @3; empty: the "
                                              "newest");
            side_controller[i].set_tool_tip("Read the controller, and take what it holds as " + of);
        }
        // Keys of their own beside side A's
        side_file[1].set_text("F&ile...");
        side_point[1].set_text("R&estore point");
        side_controller[1].set_text("C&ontroller");
        compare_swap.set_tool_tip("Make side A side B");
        compare_stop.set_tool_tip("End the reading of the controller");
        compare_text.set_tool_tip("Only lines with this text in item, key, place or group");
        compare_rate.set_tool_tip("Only lines that differ by at least so many per cent");
        compare_raw.set_tool_tip("Show the numbers as they travel on the wire too");
        compare_groups.set_tool_tip("The group whose lines are listed");
        compare_list.set_tool_tip("Space ticks a line; the chosen line's map stands beside it");
        compare_tick_shown.set_tool_tip("Tick every listed line that B has a value for");
        compare_tick_none.set_tool_tip("Untick every line, listed or not");
        compare_copy.set_tool_tip("Put the listed lines on the clipboard");
        compare_csv.set_tool_tip("Write the listed lines for a spreadsheet");
        compare_page.set_tool_tip("Write the listed lines as a page that a browser shows and prints");
        compare_close.set_tool_tip("Close this window");
        compare_send.set_tool_tip("Show the exact writes that bring B's values of the ticked lines into the "
                                  "controller, and send them");
        for (platform::Grid* grid : {&map_a, &map_b, &map_difference}) {
            grid->set_locked(true);
        }
    }
};

} // namespace ecu::history
