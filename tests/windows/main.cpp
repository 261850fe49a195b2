#include "desktop/theme.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qputenv("ECU_QT_FILE_DIALOG", "1");
    QApplication application(argc, argv);
    ecu::desktop::theme::apply(application);
    if (qEnvironmentVariable("ECU_THEME") == "dark") {
        QApplication::setPalette(ecu::desktop::theme::dark_palette());
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
