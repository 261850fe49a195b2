// Opening and leaving views. One view form at a time is in front; its number is current_view, by which the scheduler
// polls. A view's own menu never opens another view: it sets that view's pending request and closes its form, and the
// next free tick after that opens the target, so that no transaction of the closing form is under way.
// The user's last choice holds: it takes the place of one that still waits, so that nothing is left over to pop up when
// the chosen view closes.
#pragma once

#include "link/ecu_comm.h"
#include "link/link_selection.h"

#include <array>

namespace ecu::shell {

// Which view a request stands for.
link::View view_of(link::ViewRequest request);
link::ViewRequest request_of(link::View view); // of a view that is not none

// The tool tip of what leads to a view or a tool that does not exist.
inline constexpr std::string_view view_missing = "This view is not part of this version.";
inline constexpr std::string_view tool_missing = "This tool is not part of this version.";
// Disables the item or button, with the tool tip saying so, unless what it leads to exists.
void offer(platform::Control& control, bool exists, std::string_view missing = view_missing);

class Navigation {
public:
    // `main_form` is FrmEcu, hidden while a view is open.
    Navigation(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
               link::LinkSelection& link_selection, platform::Form& main_form);

    // The view exists: its menu item and button open this form. A view never added stays disabled.
    void add_view(link::View view, platform::Form& form);
    bool available(link::View view) const;
    platform::Form* form_of(link::View view) const { return views_.at(static_cast<std::size_t>(view)); }
    // What the menu item of the main form does: opens the link, reads C where the view's scales need it, sets
    // current_view, shows the form, hides the main form, and lets the form's activation run. Inside a transaction it
    // leaves a request instead. It does nothing while a view is up, inside another opening, or when the link is not
    // open in the end.
    void open(link::View view);
    // From wherever the user is, as the menu that leads there: a view that is up is left first. None: the main window.
    void go_to(link::View view);
    // Makes the menu items of all views lead to the other views: a click sets the target's pending request and unloads
    // its own view. Disables an item, with a tool tip saying so, when its view does not exist (called after all
    // add_view calls). A view's item for itself does nothing. The target waits for view_closed, however long the
    // unloading takes.
    void wire_menus();
    // What every view's unloading ends with: current_view becomes none, the form hides, the main form shows.
    void view_closed(platform::Form& own);
    // Runs just before the monitor's form is shown.
    std::function<void()> before_monitor;

private:
    void wire_item(platform::MenuItem& item, link::View target, platform::Form& own);

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    link::LinkSelection& link_selection_;
    platform::Form& main_form_;
    std::array<platform::Form*, 9> views_{};
    bool opening_ = false;
};

} // namespace ecu::shell
