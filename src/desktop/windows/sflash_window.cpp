// The flash utility: the monitor's terminal, the run with its progress, and the delays.
#include "desktop/windows/windows.h"
#include "flash/frm_sflash.h"

#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>

namespace ecu::desktop {

namespace {

QWidget* wrapped(FormWindow& window, platform::Label& label, const char* name) {
    auto* widget = static_cast<QLabel*>(window.make(label, name));
    widget->setWordWrap(true);
    widget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return widget;
}

// Room for the terminal's 40 columns.
QWidget* terminal(FormWindow& window, flash::FrmSflash& f) {
    Panel panel = window.panel("Monitor");
    auto* area = static_cast<QPlainTextEdit*>(panel.add(f.terminal, "Monitor's terminal", 1));
    area->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    area->setMinimumWidth(area->fontMetrics().horizontalAdvance(QString(44, u'0')));
    area->setMinimumHeight(8 * area->fontMetrics().lineSpacing());
    panel.add(wrapped(window, f.flash_port, "Port"));
    return panel;
}

} // namespace

std::unique_ptr<FormWindow> make_sflash_window(flash::FrmSflash& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel run = window->panel("Program");
    run.add(f.flash_button);
    run.add(f.halt_button);
    run.add(wrapped(*window, f.flash_file, "File"));
    run.add(window->progress(f.flash_track, f.flash_bar, "Progress"));
    run.row("Lines Sent:", f.lines_sent);
    QWidget* note = wrapped(*window, f.flash_note, "Run");
    note->setMinimumHeight(2 * note->fontMetrics().lineSpacing());
    run.add(note);
    Panel delays = window->panel("Delays");
    delays.add(f.line_delay_box);
    delays.row("after each line", f.line_dly, "Sec");
    delays.add(f.char_delay_box);
    delays.row("after each character", f.char_dly, "Sec");
    window->set_body(window->across({terminal(*window, f), window->stack({run, delays})}, {1, 1}));
    window->set_footer(window->buttons({&f.check_file, &f.monitor_check_button, &f.exit_flash}));
    window->focus_first([&f]() -> platform::Control& { return f.monitor_check_button; });
    window->resize(760, 480);
    return window;
}

} // namespace ecu::desktop
