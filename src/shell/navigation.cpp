#include "shell/navigation.h"

#include "messages/catalogue.h"

#include <algorithm>

namespace ecu::shell {

namespace {

using link::View;
using link::ViewRequest;

constexpr std::array<View, 8> request_targets{View::monitor,       View::dashboard,          View::configuration,
                                              View::basic_mapping, View::additional_mapping, View::gpo_mapping,
                                              View::plotter,       View::diagnostics};

std::size_t index_of(View view) { return static_cast<std::size_t>(view); }

// What the menu items that lead to a view are called in the other views.
struct MenuNames {
    View target;
    std::string_view usual;
    std::string_view other = {};
};
constexpr std::array<MenuNames, 8> menu_names{{{View::monitor, "menu_mon", "menumon"},
                                               {View::dashboard, "menu_dash", "menudash"},
                                               {View::configuration, "menu_tools", "menutools"},
                                               {View::basic_mapping, "menu_3d", "menu3d"},
                                               {View::additional_mapping, "menu_2d"},
                                               {View::gpo_mapping, "menu_sup"},
                                               {View::plotter, "menu_plot", "menuplotter"},
                                               {View::diagnostics, "menu_diag"}}};

// These show figures that hang on the sensor spans and the rpm range.
bool needs_scales(View view) {
    return view == View::basic_mapping || view == View::plotter || view == View::gpo_mapping;
}

} // namespace

View view_of(ViewRequest request) { return request_targets.at(static_cast<std::size_t>(request)); }

ViewRequest request_of(View view) {
    return static_cast<ViewRequest>(std::ranges::find(request_targets, view) - request_targets.begin());
}

void offer(platform::Control& control, bool exists, std::string_view missing) {
    control.set_enabled(exists);
    if (!exists) {
        control.set_tool_tip(missing);
    } else if (control.tool_tip() == missing) {
        control.set_tool_tip("");
    }
}

Navigation::Navigation(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                       link::LinkSelection& link_selection, platform::Form& main_form)
    : ports_(ports), state_(state), comm_(comm), link_selection_(link_selection), main_form_(main_form) {}

void Navigation::add_view(View view, platform::Form& form) { views_.at(index_of(view)) = &form; }

bool Navigation::available(View view) const { return views_.at(index_of(view)) != nullptr; }

void Navigation::open(View view) {
    platform::Form* form = views_.at(index_of(view));
    if (form == nullptr || opening_ || state_.current_view != View::none) {
        return;
    }
    state_.drop_view_requests();
    if (comm_.busy() || state_.remote_connecting) {
        state_.request_view(request_of(view));
        return;
    }
    struct Opening {
        explicit Opening(bool& flag) : flag_(flag) { flag_ = true; }
        ~Opening() { flag_ = false; }
        bool& flag_;
    };
    {
        const Opening opening(opening_);
        link_selection_.open_comm_link();
        if (!state_.comm_ready) {
            return;
        }
        if (needs_scales(view)) {
            comm_.poll({messages::scales_block.code}, messages::scales_block.reply);
        }
        if (!state_.comm_ready) { // the link was given up inside the retries
            return;
        }
        state_.current_view = view;
        state_.last_activity_time = ports_.now();
        state_.polling_paused = false;
        if (view == View::monitor && before_monitor) {
            before_monitor();
        }
        form->show();
        main_form_.hide();
    }
    // The form's own reads start now, while no polling is under way.
    ports_.waiting.process_events();
}

void Navigation::go_to(View view) {
    const View own = state_.current_view;
    if (own == View::none) {
        open(view); // which opens none for none
    } else if (own != view) {
        state_.drop_view_requests();
        if (view != View::none) {
            state_.request_view(request_of(view));
        }
        views_.at(index_of(own))->unload();
    }
}

void Navigation::wire_menus() {
    for (const View own : request_targets) {
        platform::Form* const form = views_.at(index_of(own));
        for (const MenuNames& names : menu_names) {
            for (const std::string_view name : {names.usual, names.other}) {
                platform::Control* const found = form == nullptr || name.empty() ? nullptr : form->find(name);
                if (auto* const item = dynamic_cast<platform::MenuItem*>(found);
                    item != nullptr && names.target != own) {
                    wire_item(*item, names.target, *form);
                }
            }
        }
    }
}

void Navigation::wire_item(platform::MenuItem& item, View target, platform::Form& own) {
    offer(item, available(target));
    item.clicked = [this, target, &own] {
        state_.drop_view_requests();
        state_.request_view(request_of(target));
        own.unload();
    };
}

void Navigation::view_closed(platform::Form& own) {
    state_.current_view = View::none;
    own.hide();
    main_form_.show();
}

} // namespace ecu::shell
