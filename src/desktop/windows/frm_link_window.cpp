// How well the link does: figures and advice on the first page, the frames themselves on the second.
#include "desktop/windows/windows.h"
#include "link/frm_link.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>

namespace ecu::desktop {

namespace {

constexpr const char* widest_count = "0000000";

QWidget* findings(FormWindow& window, link::FrmLink& f) {
    Panel link = window.panel("Link");
    link.row("Controller", f.link_name);
    link.row("Device", f.link_device);
    link.row("Latency timer", f.link_latency);
    link.row("Answered messages", f.link_answered);
    link.row("Without an answer", f.link_given_up);
    link.row("Round trip, mean", f.link_mean);
    link.row("Fastest, slowest", f.link_range);
    link.row("Beyond the wire's time", f.link_delay);
    link.fill();
    Panel retries = window.panel("Retries");
    for (std::size_t i = 0; i < link::retry_kinds; ++i) {
        retries.row(std::string_view(link::retry_names.at(i)), f.link_retries[i]);
    }
    retries.fill();
    Panel trips = window.panel("Round trips");
    for (std::size_t i = 0; i < link::round_trip_classes; ++i) {
        const std::string name = link::round_trip_class(i);
        auto* count = static_cast<QLabel*>(window.make(f.trip_count[i], std::string_view("Messages " + name)));
        count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        count->setMinimumWidth(count->fontMetrics().horizontalAdvance(widest_count));
        auto* caption = new QLabel(QString::fromStdString(name));
        caption->setMinimumWidth(caption->fontMetrics().horizontalAdvance("100 to 250 ms") + 8);
        QWidget* bar = window.progress(f.trip_track[i], f.trip_bar[i], std::string_view("Share " + name));
        bar->setMaximumHeight(14);
        trips.add(window.across({caption, bar, count}, {0, 1, 0}));
    }
    trips.fill();
    Panel advice = window.panel("Advice");
    advice.add(f.link_advice, "Advice", 1)->setMinimumHeight(64);
    return window.down({advice, window.across({trips, window.stack({link, retries})}, {1, 1})}, {1, 0});
}

QWidget* frames(FormWindow& window, link::FrmLink& f) {
    Panel panel = window.panel("Frames");
    auto* caption = new QLabel("Filter");
    panel.add(window.across(
        {window.make(f.trace_on), caption, window.make(f.trace_filter, "Filter"), window.make(f.trace_save)},
        {0, 0, 1, 0}));
    auto* area = static_cast<QPlainTextEdit*>(panel.add(f.trace_text, "Frames", 1));
    area->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    area->setLineWrapMode(QPlainTextEdit::NoWrap);
    area->setMinimumHeight(160);
    panel.add(f.trace_note, "Frames kept");
    return panel;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_link_window(link::FrmLink& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    window->set_body(window->tabs(f.link_tab, {{"Findings", findings(*window, f)}, {"Frames", frames(*window, f)}}));
    window->set_footer(window->buttons({&f.link_ask, &f.link_copy, &f.link_clear, &f.link_close}));
    window->status(f.link_note)->setAccessibleName("What the window does");
    f.to_clipboard = [](const std::string& text) { QApplication::clipboard()->setText(QString::fromStdString(text)); };
    window->focus_first([&f]() -> platform::Control& { return f.link_ask; });
    window->close_on_escape();
    window->resize(760, 620);
    return window;
}

} // namespace ecu::desktop
