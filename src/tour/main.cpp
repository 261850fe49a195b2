// Opens every view of the console, one after the other, and writes a picture of each: `ecu-tour OUT_FOLDER [demo]`.
// It is the same console as ecu-console, driven by its own buttons instead of a mouse; started with
// QT_QPA_PLATFORM=offscreen it needs no display.
#include "desktop/form_window.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>

#include <filesystem>
#include <iostream>

namespace {

using ecu::desktop::DesktopConsole;
using ecu::platform::Form;

constexpr float settle_seconds = 2.5F;
constexpr float longest_read_seconds = 10;

class Tour {
public:
    Tour(DesktopConsole& desktop, std::filesystem::path folder) : desktop_(desktop), folder_(std::move(folder)) {}

    int run() {
        ecu::console::Forms& forms = desktop_.console().forms;
        wait(0.5F);
        picture(forms.frm_ecu.form);
        about(forms);
        view(forms.frm_ecu.Command3d4, forms.frm_mon.form);
        view(forms.frm_ecu.Command1, forms.frm_dashboard.form);
        view(forms.frm_ecu.Command3d2, forms.frm_3d.form, [&] { maps(forms); });
        view(forms.frm_ecu.Command3d7, forms.frm_2d.form, [&] { corrections(forms); });
        view(forms.frm_ecu.Command2, forms.frm_sup.form, [&] { outputs(forms); });
        view(forms.frm_ecu.Command3d3, forms.frm_plotter.form, [&] { chart(forms); });
        std::cout << pictures_ << " pictures in " << folder_.string() << '\n';
        return missing_ == 0 ? 0 : 1;
    }

private:
    void wait(float seconds) { desktop_.ports().wait_seconds(seconds); }

    void picture(Form& form, const std::string& suffix = "") {
        const std::filesystem::path path = folder_ / (form.name() + suffix + ".png");
        if (form.visible() && desktop_.host().window_of(form).grab().save(QString::fromStdString(path.string()))) {
            ++pictures_;
            return;
        }
        ++missing_;
        std::cerr << "ecu-tour: no picture of " << form.name() << suffix << '\n';
    }

    // The About window holds the user until it is closed; what follows its opening is queued before.
    void about(ecu::console::Forms& forms) {
        const auto close_later = desktop_.ports().timers.make_timer(2000);
        close_later->on_tick = [&] {
            picture(forms.frm_about.form);
            close_later->set_running(false);
            forms.frm_about.Command3d1.press();
        };
        close_later->set_running(true);
        forms.frm_ecu.Command3d6.press();
    }

    void view(ecu::platform::Button& button, Form& form, const std::function<void()>& look = {}) {
        if (!button.enabled()) {
            return;
        }
        button.press();
        desktop_.host().window_of(form).resize(1280, 800);
        wait(settle_seconds);
        ecu::platform::wait_until(desktop_.ports().waiting, desktop_.ports().clock, longest_read_seconds,
                                  [&] { return !desktop_.console().state.polling_paused; });
        picture(form);
        if (look) {
            look();
        }
        form.close_requested();
        wait(0.2F);
    }

    void maps(ecu::console::Forms& forms) {
        for (std::size_t i = 1; i < forms.frm_3d.show_map_type.size(); ++i) {
            forms.frm_3d.show_map_type[i].click();
            wait(0.3F);
            picture(forms.frm_3d.form, "_" + std::to_string(i));
        }
        forms.frm_3d.show_map_type[0].click();
        forms.frm_3d.show_this_graph.press();
        wait(0.5F);
        picture(forms.frm_3d_graph.form);
        forms.frm_3d_graph.form.close_requested();
    }

    void outputs(ecu::console::Forms& forms) {
        for (int page = 1; page < 4; ++page) {
            forms.frm_sup.GPO_tab.set_current(page);
            wait(0.3F);
            picture(forms.frm_sup.form, "_" + std::to_string(page));
        }
    }

    void corrections(ecu::console::Forms& forms) {
        for (int page = 1; page < 3; ++page) {
            forms.frm_2d.map_tabs.set_current(page);
            wait(0.3F);
            picture(forms.frm_2d.form, "_" + std::to_string(page));
        }
    }

    void chart(ecu::console::Forms& forms) {
        forms.frm_plotter.menu_log_int[7].click();
        for (std::size_t i : {0U, 1U, 3U, 4U, 6U, 8U}) {
            forms.frm_plotter.Check3d1[i].click();
        }
        wait(8);
        picture(forms.frm_plotter.form, "_running");
    }

    DesktopConsole& desktop_;
    std::filesystem::path folder_;
    int pictures_ = 0;
    int missing_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList words = QApplication::arguments().mid(1);
    if (words.isEmpty() || words.size() > 2) {
        std::cerr << "usage: ecu-tour OUT_FOLDER [demo]\n";
        return 2;
    }
    std::error_code error;
    std::filesystem::create_directories(words[0].toStdString(), error);
    if (error) {
        std::cerr << "ecu-tour: " << words[0].toStdString() << " cannot be made: " << error.message() << '\n';
        return 4;
    }
    ecu::desktop::theme::apply(application);
    DesktopConsole desktop;
    Tour tour(desktop, words[0].toStdString());
    desktop.console().start(words.size() == 2 ? words[1].toStdString() : "");
    return tour.run();
}
