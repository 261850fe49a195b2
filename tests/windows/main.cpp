#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "platform/waiting.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <iostream>

// `test_windows --serve`: a console that serves its controller until it is killed, as a process of its own.
static int serve() {
    ecu::desktop::DesktopConsole desktop;
    desktop.console().start("");
    desktop.ports().wait_seconds(0.1F);
    desktop.console().forms.frm_ecu.menu_remote_setup_start_server.click();
    std::cout << (desktop.console().forms.frm_server.form.visible() ? "serving" : "refused") << std::endl;
    return QApplication::exec();
}

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qputenv("ECU_QT_FILE_DIALOG", "1");
    QApplication application(argc, argv);
    ecu::desktop::theme::apply(application);
    namespace theme = ecu::desktop::theme;
    theme::use(theme::theme_named(qEnvironmentVariable("ECU_THEME").toStdString()).value_or(theme::Theme::system));
    if (argc == 2 && std::string_view(argv[1]) == "--serve") {
        return serve();
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
