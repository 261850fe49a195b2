// Opens every view of the console, one after the other, and writes a picture of each: `ecu-tour OUT_FOLDER [demo]`.
// It is the same console as ecu-console, driven by its own buttons instead of a mouse; started with
// QT_QPA_PLATFORM=offscreen it needs no display. Questions are printed and answered, as nobody sits there.
#include "desktop/form_window.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/without_display.h"
#include "shell/start_up.h"
#include "tour/box_answers.h"

#include <QApplication>

#include <filesystem>
#include <iostream>
#include <memory>

namespace {

using ecu::desktop::DesktopConsole;
using ecu::platform::Form;

constexpr float settle_seconds = 2.5F;
constexpr float longest_read_seconds = 10;
constexpr int smallest_file = 0; // Qt's word for the PNG writer that takes its time

constexpr const char* usage = R"(Usage: ecu-tour OUT_FOLDER [demo]

Opens every view of the console, one after the other, and writes a picture of each to OUT_FOLDER, which is made if need
be. It reads the files of the folder that it is started in, as the console does. Message boxes and questions are
printed and answered. Status 1: something failed, or a picture is missing.

  demo         no controller: made-up values
  --help       this text
  --version    the version
)";

class Tour {
public:
    Tour(DesktopConsole& desktop, std::filesystem::path folder)
        : desktop_(desktop), folder_(std::move(folder)), answers_(desktop.console().forms.frm_dialog, std::cout) {}

    int run() {
        ecu::console::Forms& forms = desktop_.console().forms;
        wait(0.5F);
        picture(forms.frm_ecu.form);
        about(forms);
        view(forms.frm_ecu.monitor_button, forms.frm_mon.form);
        view(forms.frm_ecu.dashboard_button, forms.frm_dashboard.form);
        view(forms.frm_ecu.basic_map_button, forms.frm_3d.form, [&] { maps(forms); });
        view(forms.frm_ecu.additional_map_button, forms.frm_2d.form, [&] { corrections(forms); });
        view(forms.frm_ecu.gpo_button, forms.frm_sup.form, [&] { outputs(forms); });
        view(forms.frm_ecu.configuration_button, forms.frm_tool.form, [&] { configuration(forms); });
        view(forms.frm_ecu.additional_map_button, forms.frm_2d.form);
        view(forms.frm_ecu.plotter_button, forms.frm_plotter.form, [&] { chart(forms); });
        view(forms.frm_ecu.diagnostics_button, forms.frm_diagnostics.form);
        view(forms.frm_ecu.diagnostics_button, forms.frm_diagnostics.form, [&] { diagnostics(forms); });
        serving(forms);
        std::cout << pictures_ << " pictures in " << std::filesystem::weakly_canonical(folder_).string() << '\n';
        if (answers_.failures() > 0) {
            std::cerr << "ecu-tour: " << answers_.failures() << " time(s) something failed, as told above\n";
        }
        return missing_ == 0 && answers_.failures() == 0 ? 0 : 1;
    }

private:
    void wait(float seconds) { desktop_.ports().wait_seconds(seconds); }

    void picture(Form& form, const std::string& suffix = "") {
        const std::filesystem::path path = folder_ / (form.name() + suffix + ".png");
        if (form.visible() &&
            desktop_.host().window_of(form).grab().save(QString::fromStdString(path.string()), "PNG", smallest_file)) {
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
            forms.frm_about.exit_button.press();
        };
        close_later->set_running(true);
        forms.frm_ecu.about_button.press();
    }

    void view(ecu::platform::Button& button, Form& form, const std::function<void()>& look = {}) {
        if (!button.enabled()) {
            return; // not part of this version
        }
        button.press();
        if (!form.visible()) {
            ++missing_;
            std::cerr << "ecu-tour: " << form.name() << " did not open\n";
            return;
        }
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
    void configuration(ecu::console::Forms& forms) {
        for (int page = 1; page < static_cast<int>(ecu::calibration::tab_captions.size()); ++page) {
            forms.frm_tool.tool_tab.set_current(page);
            wait(0.2F);
            picture(forms.frm_tool.form, "_" + std::to_string(page));
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

    void diagnostics(ecu::console::Forms& forms) {
        forms.frm_diagnostics.diags_tab.set_current(2);
        forms.frm_diagnostics.arm_capture.press();
        forms.frm_diagnostics.get_wheel_plot_data.press();
        wait(0.5F);
        picture(forms.frm_diagnostics.form, "_wheel");
        forms.frm_diagnostics.diags_tab.set_current(3);
        forms.frm_diagnostics.dyno_plot.press();
        wait(0.5F);
        picture(forms.frm_diagnostics.form, "_dyno");
    }

    // Nobody asks it; the ports are such as every user may open.
    void serving(ecu::console::Forms& forms) {
        if (desktop_.console().state.demo_mode) {
            return;
        }
        if (!qEnvironmentVariableIsSet("ECU_REMOTE_PORTS")) {
            qputenv("ECU_REMOTE_PORTS", "40998,40999");
        }
        forms.frm_ecu.menu_remote_setup_start_server.click();
        wait(1.5F);
        picture(forms.frm_server.form);
        forms.frm_server.server_cancel.press();
        wait(0.2F);
    }

    DesktopConsole& desktop_;
    std::filesystem::path folder_;
    ecu::tour::BoxAnswers answers_;
    int pictures_ = 0;
    int missing_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "--help" || first == "-h") {
        std::cout << usage;
        return 0;
    }
    if (first == "--version") {
        std::cout << "ecu-tour " << ecu::shell::console_version << '\n';
        return 0;
    }
    if (first.empty() || first.starts_with('-') || argc > 3 || (argc == 3 && std::string(argv[2]) != "demo")) {
        std::cerr << "usage: ecu-tour OUT_FOLDER [demo]\n";
        return 2;
    }
    auto without_display = std::make_unique<ecu::desktop::WithoutDisplay>("ecu-tour");
    QApplication application(argc, argv);
    without_display.reset();
    QApplication::setQuitOnLastWindowClosed(false);
    std::error_code error;
    std::filesystem::create_directories(first, error);
    if (error) {
        std::cerr << "ecu-tour: " << first << " cannot be made: " << error.message() << '\n';
        return 4;
    }
    ecu::desktop::theme::apply(application);
    DesktopConsole desktop;
    Tour tour(desktop, first);
    desktop.console().start(argc == 3 ? "demo" : "");
    return tour.run();
}
