// The window that tells how well the link does: round trips by their time, retries by kind, what to do about it, and
// on request the frames themselves.
#pragma once

#include "link/link_doctor.h"
#include "platform/form.h"
#include "platform/timers.h"

#include <functional>
#include <memory>

namespace ecu::link {

struct FrmLink {
    platform::Form form{"frm_link", "Check the Link"};
    platform::Tabs link_tab{form, "link_tab"};

    platform::Label link_name{form, "link_name"};
    platform::Label link_device{form, "link_device"};
    platform::Label link_latency{form, "link_latency"};
    platform::Label link_answered{form, "link_answered", "0"};
    platform::Label link_given_up{form, "link_given_up", "0"};
    platform::Label link_mean{form, "link_mean", "---"};
    platform::Label link_range{form, "link_range", "---"};
    platform::Label link_delay{form, "link_delay", "---"};
    platform::ControlArray<platform::Label, retry_kinds> link_retries{form, "link_retries", "0"};

    platform::ControlArray<platform::Shape, round_trip_classes> trip_track{form, "trip_track"};
    platform::ControlArray<platform::Shape, round_trip_classes> trip_bar{form, "trip_bar"};
    platform::ControlArray<platform::Label, round_trip_classes> trip_count{form, "trip_count", "0"};

    platform::TextBox link_advice{form, "link_advice"};
    platform::Label link_note{form, "link_note"}; // what the window does at the moment

    platform::CheckBox trace_on{form, "trace_on", "Record frames"};
    platform::TextBox trace_filter{form, "trace_filter"};
    platform::TextBox trace_text{form, "trace_text"};
    platform::Label trace_note{form, "trace_note"};
    platform::Button trace_save{form, "trace_save", "Save..."};

    platform::Button link_ask{form, "link_ask", "Ask now"};
    platform::Button link_copy{form, "link_copy", "Copy report"};
    platform::Button link_clear{form, "link_clear", "Clear"};
    platform::Button link_close{form, "link_close", "Close"};

    std::function<void(const std::string&)> to_clipboard; // set by whoever shows the form
    std::unique_ptr<platform::Timer> refresh;

    explicit FrmLink(platform::Timers& timers) : refresh(timers.make_timer(500)) {
        link_advice.multi_line = trace_text.multi_line = true;
        for (std::size_t i = 0; i < round_trip_classes; ++i) {
            trip_track[i].place(0, 0, 1000, 12);
            trip_bar[i].place(0, 0, 0, 12);
            trip_count[i].set_tool_tip("Messages answered in this time, since the window was opened or cleared");
        }
        for (platform::Label& count : link_retries) {
            count.set_tool_tip("Tries that failed this way; each message is tried up to ten times");
        }
        link_name.set_tool_tip("How the controller is reached");
        link_device.set_tool_tip("Whether the device is there, this user may use it, and nobody else has it open");
        link_latency.set_tool_tip("How long the adapter holds received bytes back; 1 ms is best");
        link_answered.set_tool_tip("Messages that the controller answered");
        link_given_up.set_tool_tip("Messages without an answer after ten tries");
        link_mean.set_tool_tip("From the request to the last byte of its reply, on average");
        link_range.set_tool_tip("The fastest and the slowest answer");
        link_delay.set_tool_tip(
            "What a message takes beyond the time of its bytes on the wire: adapter and controller");
        link_advice.set_tool_tip("What to do for a better link");
        trace_on.set_tool_tip("Click to keep the latest 2,000 frames, with time and result");
        trace_filter.set_tool_tip("Words or bytes that a frame's line must hold, as in  41 30  or  no answer");
        trace_text.set_tool_tip("Time, try, request, reply, result and how long it took; the latest last");
        trace_save.set_tool_tip("Click to write the frames that the filter lets through to a text file");
        link_ask.set_tool_tip("Click to ask the controller for its live values 100 times; nothing is changed in it");
        link_copy.set_tool_tip("Click to copy all figures and the advice as text");
        link_clear.set_tool_tip("Click to count from nothing again");
        link_close.set_tool_tip("Click to stop looking on and close the window");
    }
};

} // namespace ecu::link
