// The findings of a record file: in one line, and in full below.
#include "desktop/windows/windows.h"
#include "flash/frm_flash_check.h"

#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_flash_check_window(flash::FrmFlashCheck& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel panel = window->panel("Record file");
    for (auto [label, name] : {std::pair(&f.check_file_name, "File"), {&f.check_result, "Result"}}) {
        auto* text = static_cast<QLabel*>(panel.add(*label, name));
        text->setWordWrap(true);
        text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    auto* area = static_cast<QPlainTextEdit*>(panel.add(f.check_text, "Findings", 1));
    area->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    area->setMinimumHeight(160);
    window->set_body(panel);
    window->set_footer(window->buttons({&f.check_again, &f.check_close}));
    window->focus_first([&f]() -> platform::Control& { return f.check_close; });
    window->close_on_escape();
    window->resize(640, 420);
    return window;
}

} // namespace ecu::desktop
