#include "link/link_check.h"

#include "link/pause.h"
#include "platform/display_mask.h"
#include "platform/safe_file.h"

#include <algorithm>
#include <sstream>

namespace ecu::link {

namespace {

constexpr std::size_t lines_shown = 200; // of the trace; a file gets all
constexpr std::uint8_t live_block = 'A';
constexpr int live_reply = 63;

std::string ms(double value) { return platform::masked(value, "##0.0") + " ms"; }

void show_in(platform::Control& control, const std::string& text) {
    if (control.text() != text) {
        control.set_text(text);
    }
}

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
    return text;
}

} // namespace

LinkCheck::LinkCheck(const Use& use) : use_(use), doctor_(use.comm) {
    FrmLink& form = use_.form;
    form.refresh->on_tick = [this] {
        ask_when_idle();
        show();
    };
    form.form.on_load = [this] {
        doctor_.look_on();
        use_.form.refresh->set_running(true);
    };
    form.form.on_activate = [this] {
        look_at_port();
        show();
    };
    form.form.on_unload = [this] {
        wanted_ = false;
        doctor_.look_away();
        use_.form.refresh->set_running(false);
    };
    form.link_ask.clicked = [this] {
        wanted_ = true;
        ask_when_idle();
    };
    form.link_clear.clicked = [this] {
        doctor_.clear();
        show();
    };
    form.link_copy.clicked = [this] {
        look_at_port();
        if (use_.form.to_clipboard) {
            use_.form.to_clipboard(report(link_state()));
            show_in(use_.form.link_note, "The report has been copied.");
        }
    };
    form.link_close.clicked = [this] { use_.form.form.unload(); };
    form.trace_on.clicked = [this] {
        doctor_.set_tracing(use_.form.trace_on.checked());
        show();
    };
    form.trace_filter.changed = [this] { show_trace(); };
    form.trace_save.clicked = [this] { save_trace(); };
}

void LinkCheck::open() { use_.form.form.visible() ? use_.form.form.raise() : use_.form.form.show(); }

// Between the messages of others, and not inside a sequence that must not be disturbed.
void LinkCheck::ask_when_idle() {
    if (!wanted_ || asking_) {
        return;
    }
    if (use_.state.demo_mode) {
        wanted_ = false;
        show_in(use_.form.link_note, "Demo mode: there is no controller to ask.");
    } else if (use_.state.polling_paused || use_.state.remote_connecting) {
        wanted_ = false;
        show_in(use_.form.link_note, "The console is busy with the controller. Ask again when it is done.");
    } else if (!use_.comm.busy()) {
        wanted_ = false;
        ask();
    }
}

void LinkCheck::ask() {
    use_.link_selection.open_comm_link();
    if (!use_.state.comm_ready || use_.state.demo_mode) {
        return;
    }
    asking_ = true;
    use_.form.link_ask.set_enabled(false);
    int answered = 0;
    {
        const Pause pause(use_.state);
        while (answered < questions && use_.form.form.visible() &&
               use_.comm.send_ecu_message({live_block}, live_reply) == Outcome::accepted) {
            show_in(use_.form.link_note,
                    "Asked " + std::to_string(++answered) + " of " + std::to_string(questions) + " times");
        }
    }
    asking_ = false;
    use_.form.link_ask.set_enabled(true);
    show_in(use_.form.link_note, answered == questions
                                     ? "Asked " + std::to_string(questions) + " times, each was answered."
                                     : "Stopped after " + std::to_string(answered) + " answers.");
    look_at_port();
    show();
}

// Looking through the programs of the machine takes its time: when the window comes up, and after asking.
void LinkCheck::look_at_port() { port_ = read_port_facts(use_.comm1.device_of(use_.state.comm_port_number)); }

LinkState LinkCheck::link_state() const {
    const SharedState& state = use_.state;
    const std::string port = "COM" + std::to_string(state.comm_port_number);
    return {.name = !state.remote_server_ip.empty() ? "the server's serial port"
                    : port_.device.empty()          ? port
                                                    : port + " (" + port_.device + ")",
            .server = state.remote_server_ip,
            .port = port_,
            .figures = doctor_.figures()};
}

void LinkCheck::show() {
    show_figures();
    show_trace();
}

void LinkCheck::show_figures() {
    FrmLink& form = use_.form;
    const LinkState link = link_state();
    const LinkFigures& seen = link.figures;
    const bool local = link.server.empty();
    show_in(form.link_name, use_.state.demo_mode ? "Demo mode: no controller"
                            : local              ? link.name
                                                 : "Through the console at " + link.server);
    show_in(form.link_device, !local                      ? "At the server"
                              : !link.port.present        ? "Not there"
                              : !link.port.permitted      ? "This user may not use it"
                              : link.port.holders.empty() ? "There, and nobody else has it open"
                                                          : "Open in another program, too");
    show_in(form.link_latency,
            local && link.port.latency_ms ? std::to_string(*link.port.latency_ms) + " ms" : "None that tells");
    show_in(form.link_answered, std::to_string(seen.answered));
    show_in(form.link_given_up, std::to_string(seen.given_up));
    const bool any = seen.answered > 0;
    show_in(form.link_mean, any ? ms(seen.mean_ms()) : "---");
    show_in(form.link_range, any ? ms(seen.fastest_ms) + " to " + ms(seen.slowest_ms) : "---");
    show_in(form.link_delay, any ? ms(seen.mean_delay_ms()) : "---");
    for (std::size_t i = 0; i < retry_kinds; ++i) {
        show_in(form.link_retries[i], std::to_string(seen.retries[i]));
    }
    const std::uint64_t most = std::max<std::uint64_t>(1, std::ranges::max(seen.round_trips));
    for (std::size_t i = 0; i < round_trip_classes; ++i) {
        show_in(form.trip_count[i], std::to_string(seen.round_trips[i]));
        form.trip_bar[i].set_width(form.trip_track[i].width() * static_cast<float>(seen.round_trips[i]) /
                                   static_cast<float>(most));
    }
    std::string text;
    for (const std::string& line : advice(link)) {
        text += (text.empty() ? "" : "\n\n") + line;
    }
    if (text.empty()) {
        text = any ? "Nothing to do: the link does well." : "Nothing was asked yet. Open a view, or press Ask now.";
    }
    show_in(form.link_advice, text);
}

// The latest that match, oldest first. Of several words each must be there.
std::vector<std::string> LinkCheck::filtered(std::size_t at_most, std::size_t& matching) const {
    std::vector<std::string> words;
    std::istringstream filter(upper(use_.form.trace_filter.text()));
    for (std::string word; filter >> word;) {
        words.push_back(word);
    }
    std::vector<std::string> lines;
    matching = 0;
    const auto& trace = doctor_.trace();
    for (auto frame = trace.rbegin(); frame != trace.rend(); ++frame) {
        std::string line = as_text(*frame);
        const std::string compared = upper(line);
        if (std::ranges::all_of(words, [&](const auto& word) { return compared.find(word) != std::string::npos; })) {
            ++matching;
            if (lines.size() < at_most) {
                lines.push_back(std::move(line));
            }
        }
    }
    std::ranges::reverse(lines);
    return lines;
}

void LinkCheck::show_trace() {
    FrmLink& form = use_.form;
    const std::string source = std::to_string(doctor_.frames_traced()) + " " + form.trace_filter.text();
    if (source == shown_) {
        return;
    }
    shown_ = source;
    std::size_t matching = 0;
    std::string text;
    for (const std::string& line : filtered(lines_shown, matching)) {
        text += line + "\n";
    }
    form.trace_text.set_text(text);
    show_in(form.trace_note, std::to_string(doctor_.trace().size()) + " frames kept, " + std::to_string(matching) +
                                 " match" + (matching > lines_shown ? ", the latest 200 shown" : ""));
}

void LinkCheck::save_trace() {
    const std::string name = use_.ports.dialogs.save_file({.title = "Save frames",
                                                           .default_extension = "txt",
                                                           .filter = "Text Files (*.txt)|",
                                                           .initial_name = "frames.txt"});
    if (name.empty()) {
        return;
    }
    std::size_t matching = 0;
    std::string text;
    for (const std::string& line : filtered(LinkDoctor::frames_kept, matching)) {
        text += line + "\n";
    }
    const std::filesystem::path path =
        use_.ports.folder / std::filesystem::path(std::u8string(name.begin(), name.end()));
    if (const std::string reason = platform::replace_file(path, text); !reason.empty()) {
        use_.ports.dialogs.message_box({.text = "The frames could not be saved as " + name + ": " + reason +
                                                ".\nMake room or choose another folder, and save again.",
                                        .icon = platform::Icon::warning});
        return;
    }
    show_in(use_.form.trace_note, std::to_string(matching) + " frames saved as " + name);
}

} // namespace ecu::link
