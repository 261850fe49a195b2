// The list of restore points, and what can be done with one.
#pragma once

#include "platform/form.h"
#include "platform/list.h"

namespace ecu::history {

struct FrmRestorePoints {
    platform::Form form{"frm_restore_points", "Restore points"};
    platform::List points_list{
        form, "points_list", {"Name", "Date", "Note", "Firmware", "Controller", "To the next", "A/B"}};
    platform::TextBox point_note{form, "point_note"};
    platform::Button point_make{form, "point_make", "&Make restore point"};
    platform::Button point_stop{form, "point_stop", "S&top"};
    platform::Button point_set_note{form, "point_set_note", "Change &note"};
    platform::Button point_compare{form, "point_compare", "&Compare with controller"};
    platform::Button point_restore{form, "point_restore", "&Restore..."};
    platform::Button point_save{form, "point_save", "&Save as file..."};
    platform::Button point_remove{form, "point_remove", "Remo&ve..."};
    platform::Button point_as_a{form, "point_as_a", "Use as &A"};
    platform::Button point_as_b{form, "point_as_b", "Use as &B"};
    platform::Button file_as_a{form, "file_as_a", "A from &file..."};
    platform::Button file_as_b{form, "file_as_b", "B from f&ile..."};
    platform::Label points_two{form, "points_two"};
    platform::CheckBox points_by_themselves{form, "points_by_themselves",
                                            "Make one before every &upload, re-flash and reset of a map"};
    platform::Button points_close{form, "points_close", "C&lose"};
    platform::Label points_status{form, "points_status"};

    FrmRestorePoints() {
        point_note.set_tool_tip("What the next restore point is, or the new note of the chosen one");
        point_make.set_tool_tip("Read the controller's whole calibration and keep it, with the note");
        point_stop.set_tool_tip("End the reading");
        point_set_note.set_tool_tip("Give the chosen restore point this note");
        point_compare.set_tool_tip("Show what differs between the chosen restore point and the controller");
        point_restore.set_tool_tip("Show what differs, and write it back into the controller");
        point_save.set_tool_tip("Write the chosen restore point to a setup file");
        point_remove.set_tool_tip("Forget the chosen restore point");
        point_as_a.set_tool_tip("Calibration A of the switch between two");
        point_as_b.set_tool_tip("Calibration B of the switch between two");
        file_as_a.set_tool_tip("A setup file as calibration A");
        file_as_b.set_tool_tip("A setup file as calibration B");
        points_two.set_tool_tip("F8 in the main window makes the controller hold the other one");
        points_close.set_tool_tip("Close this window");
        points_list.set_tool_tip("Enter restores the chosen one, after a preview. To the next: how much it differs "
                                 "from the one made after it");
        points_by_themselves.set_tool_tip(
            "Reads the whole controller first each time, which takes about half a minute; off at first");
    }
};

} // namespace ecu::history
