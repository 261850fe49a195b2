#include "configuration/configuration_page.h"

#include "calibration/description.h"
#include "configuration/demo_texts.h"
#include "editing/editing_rules.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace ecu::configuration {

using calibration::page_of;
using calibration::Parameter;
using calibration::parameter;
using platform::pending;

namespace {

constexpr std::string_view marked = "X";
constexpr int reads_per_notice = 8;
constexpr calibration::ReadRequest first_block = calibration::read_request('C');

std::string_view caption_of(calibration::Tab tab) {
    return calibration::tab_captions.at(static_cast<std::size_t>(page_of(tab)));
}

bool is_whole_by_a_click(const Parameter& row) {
    return row.control.kind == calibration::ControlKind::check_box ||
           row.control.kind == calibration::ControlKind::oxygen_sensor;
}

} // namespace

ConfigurationPage::ConfigurationPage(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                                     const calibration::Scales& scales, calibration::CalibrationImage& image,
                                     messages::ParameterControls& controls, shell::Navigation& navigation,
                                     FrmTool& frm_tool)
    : state_(state), image_(image), controls_(controls), form_(frm_tool),
      editor_(
          ports, state, comm, scales, navigation,
          {.form = frm_tool.form,
           .title = "Configuration",
           .update_button = frm_tool.update_button,
           .exit_button = frm_tool.exit_button,
           .status = frm_tool.tool_status,
           .opening_waits = {0, 0},
           .update_waits = {0, 0.1F},
           .blanks = false,
           .reads_each_time = true,
           .locks = false, // what the controller does not offer must stay disabled
           .prepare = [this] { prepare(); },
           .read = [this] { return read_page(); },
           .allow = [this](bool allowed) { form_.tool_tab.set_enabled(allowed); },
           .walking = [this](bool now) { walking(now); },
           .redraw = [this] { show_marks(); },
           .ready =
               [this] {
                   form_.tool_tab.set_focus();
                   show_marks();
               },
           .leaving =
               [this] { form_.tool_tab.set_enabled(false); }, // as the next opening read wants it, at no cost there
           .read_again = &frm_tool.read_again,
           .reveal = [this](const platform::Control& control) { form_.tool_tab.set_current(tabs_.at(&control)); }}) {
    form_.tool_tab.set_enabled(false);
    add_items();
    wire_boxes();
    wire_switches();
    wire_tools();
    form_.update_button.clicked = [this] { update_changed_entries(); };
    form_.menuupdate.clicked = [this] { form_.update_button.press(); };
    form_.menufileexit.clicked = [this] { form_.exit_button.press(); };
    form_.form.on_close = [this] {
        if (walking_) {
            close_wanted_ = true;
            editor_.hush();
        } else {
            editor_.close();
        }
    };
}

void ConfigurationPage::prepare() {
    form_.box("IGN_TDWL")
        .set_tool_tip("Faster coils need less dwell time, Slow coils need more dwell time.\n"
                      "If not enough time is given, the spark may be weak or missing.\n"
                      "If the dwell time is too high, the coil current will be too high, and damage may result.");
    if (state_.master_mode) {
        for (platform::OptionButton& option : form_.map_type) {
            option.set_enabled(true);
        }
        for (platform::CheckBox& box : form_.special_cfg) {
            box.set_enabled(true);
        }
    }
}

// -- What Update walks

void ConfigurationPage::add_items() {
    for (const calibration::PageItem& item : calibration::page_update_order) {
        if (item.table != nullptr) {
            for (int i = 0; i < item.table->cells(); ++i) {
                platform::TextBox& box = form_.boxes(*item.table, i);
                tabs_[&box] = page_of(item.table->screen.tab);
                editor_.add(*item.table, i, box,
                            {.group = caption_of(item.table->screen.tab),
                             .place = [row = item.table, i](int, int) { return calibration::element_label(*row, i); }});
            }
        } else if (!item.parameter->shows_text()) {
            add_switches(*item.parameter);
        } else {
            // What hangs on the full scale is read again at once; what was typed into the other boxes of that block is
            // lost by it.
            const auto read_scales = [this] {
                editor_.link().read(calibration::read_message(first_block), first_block.reply);
            };
            for (int i = 0; i < item.parameter->count; ++i) {
                platform::TextBox& box = form_.boxes(*item.parameter, i);
                tabs_[&box] = page_of(item.parameter->screen.tab);
                editor_.add(
                    *item.parameter, i, box,
                    {.group = caption_of(item.parameter->screen.tab),
                     .demo = demo_text(item.parameter->key, i),
                     .place = [row = item.parameter, i](int, int) { return calibration::element_label(*row, i); }},
                    item.parameter == &parameter("FS_RPM") ? editing::AfterEcho(read_scales) : nullptr);
            }
        }
    }
}

// Check boxes and options go out as the one number that they stand for, whichever of them was clicked.
void ConfigurationPage::add_switches(const Parameter& row) {
    for (int i = 0; i < row.count; ++i) {
        const auto read = [this, &row, i] { return state_.demo_mode || image_.known(row, i); };
        const auto clicked = [this, &row, i] { return controls_.pending(row, i); };
        // A click says nothing of the other switches of a number that was never read; where there are none it says all.
        const auto sendable = [whole = is_whole_by_a_click(row), read, clicked] {
            return clicked() && (whole || read());
        };
        const auto value = [this, &row, i] { return controls_.switches(row, i, image_.raw(row, i)); };
        const auto clicks = std::make_shared<std::vector<messages::ParameterControls::Click>>();
        editor_.add(editing::CustomItem{
                        .pending = [sendable] { return sendable() ? 1 : 0; },
                        .send =
                            [this, &row, i, value](editing::Walk& walk) {
                                const std::int32_t raw = value();
                                controls_.begin_sending(row, i, raw);
                                const editing::Fate fate =
                                    walk.link.write(calibration::write_message(row, i, raw), row.write.reply);
                                controls_.end_sending();
                                walk.note_fate(fate);
                            },
                        .open =
                            [this, &row, i](bool demo) {
                                if (!demo) {
                                    image_.forget(row, i);
                                    controls_.choose_none(row, i); // a code may come that no option stands for
                                }
                            },
                        .unread = [read, sendable] { return read() || sendable() ? 0 : 1; },
                        .held_back = [read, clicked, sendable] { return clicked() && !sendable() && !read() ? 1 : 0; },
                        .value = value,
                        .keep = [this, &row, i, clicks] { *clicks = controls_.clicks(row, i); },
                        .restore = [clicks] { messages::ParameterControls::click_again(*clicks); },
                        .row = &row},
                    {.group = caption_of(row.screen.tab)});
    }
}

// -- Controls

void ConfigurationPage::wire_boxes() {
    const auto wire = [this](platform::TextBox& box) {
        editing::colour_by_focus(box);
        box.key_down = [this](platform::KeyPress& press) {
            if (press.code == platform::key::enter) {
                press.code = 0;
                form_.update_button.press(); // everything that is pending, not this box alone
            }
        };
    };
    for (platform::TextBox& box : form_.boxes) {
        wire(box);
    }
    for (platform::TextBox* box : {&form_.skip_fire_bits, &form_.fire_bits, &form_.stutter_text,
                                   &form_.rolling_circum_inches, &form_.revs_mile, &form_.trigs_rev}) {
        wire(*box); // operands of the tools: never pending
    }
}

void ConfigurationPage::wire_switches() {
    const auto colour_on_click = [this](auto& control) {
        control.clicked = [this, &control] {
            control.set_fore_colour(pending);
            editor_.entered();
        };
    };
    // The tag is what counts; the colour shows the user which boxes he touched.
    const auto tag_on_click = [this](platform::CheckBox& box, platform::CheckBox& tagged) {
        box.clicked = [this, &box, &tagged] {
            tagged.set_tag(marked);
            box.set_fore_colour(pending);
            editor_.entered();
        };
    };
    const auto colour_all = [&](auto& controls) {
        for (auto& control : controls) {
            colour_on_click(control);
        }
    };
    colour_all(form_.map_type);
    colour_all(form_.special_cfg);
    colour_all(form_.aux_in_used_as);
    colour_all(form_.map_sel_used_as);
    colour_all(form_.trig_b_used_as);
    colour_all(form_.idx_used_as);
    colour_on_click(form_.TPS_mapped);
    colour_on_click(form_.MAP_accel);
    colour_on_click(form_.enable_idle_by_timing);
    for (std::size_t n = 0; n < form_.ph_used.size(); ++n) {
        tag_on_click(form_.ph_used[n], form_.ph_used[n]);
        tag_on_click(form_.tach_ph[n], form_.tach_ph[n]);
        for (std::size_t b = 0; b < form_.inj_ph[n].size(); ++b) {
            tag_on_click(form_.inj_ph[n][b], form_.inj_ph[n][0]);
            tag_on_click(form_.ign_ph[n][b], form_.ign_ph[n][0]);
        }
    }
    for (platform::OptionButton& option : form_.EGO_type) {
        option.clicked = [this, &option] {
            option.set_fore_colour(pending);
            const bool takes_voltages = option.index() == calibration::oxygen_sensor_with_voltages;
            form_.box("EGO_WBL0").set_enabled(takes_voltages);
            form_.box("EGO_WBL1").set_enabled(takes_voltages);
            editor_.entered();
        };
    }
}

// -- Opening and Update

bool ConfigurationPage::read_page() {
    if (state_.demo_mode) {
        return true; // the samples stand already
    }
    const std::size_t reads = calibration::page_reads_before_tables.size() + calibration::page_read_tables.size() +
                              calibration::page_reads_after_tables.size();
    std::size_t done = 0;
    const auto progress = [&] {
        if (done++ % reads_per_notice == 0) {
            editor_.show_progress("Reading configuration, " + std::to_string(done) + " of " + std::to_string(reads));
        }
    };
    const auto ask_all = [&](const auto& requests) {
        return std::ranges::all_of(requests, [&](const calibration::ReadRequest& request) {
            progress();
            return editor_.ask(request);
        });
    };
    return ask_all(calibration::page_reads_before_tables) &&
           std::ranges::all_of(calibration::page_read_tables,
                               [&](const calibration::Table* table) {
                                   progress();
                                   return editor_.read_table(*table, calibration::read_9);
                               }) &&
           ask_all(calibration::page_reads_after_tables);
}

void ConfigurationPage::update_changed_entries() {
    if (!state_.demo_mode) {
        editor_.update();
    }
}

// Leaving has to wait for the walk's end: buttons and menu are dead meanwhile, the window's own button is remembered.
void ConfigurationPage::walking(bool walking) {
    walking_ = walking;
    form_.update_button.set_enabled(!walking);
    form_.exit_button.set_enabled(!walking);
    if (walking) {
        for (platform::Control* control : form_.form.controls()) {
            if (control->kind() == platform::Kind::menu_item && control->enabled()) {
                waiting_items_.push_back(static_cast<platform::MenuItem*>(control));
                control->set_enabled(false);
            }
        }
        return;
    }
    for (platform::MenuItem* item : waiting_items_) {
        item->set_enabled(true);
    }
    waiting_items_.clear();
    if (std::exchange(close_wanted_, false)) {
        editor_.close();
    }
}

void ConfigurationPage::show_marks() {
    for (const editing::GroupCount& count : editor_.pending_by_group()) {
        const auto tab = std::ranges::find(calibration::tab_captions, count.group);
        form_.tool_tab.set_pending_on(static_cast<int>(tab - calibration::tab_captions.begin()), count.pending);
    }
}

} // namespace ecu::configuration
