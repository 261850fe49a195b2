#include "flash/flash_check.h"

namespace ecu::flash {

FlashCheck::FlashCheck(const Use& use) : use_(use) {
    use_.flash.check_file.clicked = [this] { choose(); };
    use_.form.check_again.clicked = [this] { choose(); };
    use_.form.check_close.clicked = [this] { use_.form.form.unload(); };
}

void FlashCheck::choose() {
    if (use_.flash.halt_button.enabled()) {
        return; // a run is going, which nothing may hold up
    }
    const std::string name = use_.ports.dialogs.open_file({.title = "Check a record file",
                                                           .default_extension = "s",
                                                           .filter = "Setup Files (*.s)|",
                                                           .initial_name = "*.S"});
    if (name.empty() || name == "*.S") {
        return;
    }
    RecordFile file;
    const std::string reason =
        file.open(use_.ports.folder / std::filesystem::path(std::u8string(name.begin(), name.end())));
    if (!reason.empty()) {
        use_.ports.dialogs.message_box(
            {.text = "The record file " + name + " could not be read: " + reason + ". Choose another file.",
             .icon = platform::Icon::warning});
        return;
    }
    const RecordReport checked = check_records(file);
    std::optional<Rehearsal> rehearsal;
    if (make_monitor) {
        rehearsal = rehearse(file, make_monitor());
    }
    const bool well = checked.fault_count == 0 && (!rehearsal || rehearsal->done);
    use_.form.check_file_name.set_text(name);
    use_.form.check_result.set_text(
        well                       ? "Nothing wrong found."
        : checked.fault_count == 0 ? "The records are well, but the rehearsal did not end well."
                                   : std::to_string(checked.fault_count) +
                                         (checked.fault_count == 1 ? " finding: read it" : " findings: read them") +
                                         " before you flash this file.");
    use_.form.check_result.set_fore_colour(well ? std::nullopt : std::optional(platform::light_red));
    use_.form.check_text.set_text(report(checked, rehearsal, name));
    use_.form.form.visible() ? use_.form.form.raise() : use_.form.form.show();
}

} // namespace ecu::flash
