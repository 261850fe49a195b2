#include "desktop/welcome.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace ecu::desktop {
namespace {

TEST(SessionFolder, GetsWhatItLacksAndKeepsWhatItHas) {
    const QTemporaryDir place;
    const QString folder = place.filePath("Documents/ECU System Console");
    ASSERT_FALSE(starter_folder().isEmpty());
    EXPECT_EQ(prepare_session_folder(folder, starter_folder()), "");
    for (const char* name : {"port.cfg", "OEM.JPG", "OEM.TXT"}) {
        EXPECT_TRUE(QFile::exists(folder + '/' + name)) << name;
    }
    QFile port(folder + "/port.cfg");
    ASSERT_TRUE(port.open(QIODevice::WriteOnly));
    port.write("7\r\n");
    port.close();
    QFile::remove(folder + "/OEM.TXT");
    EXPECT_EQ(prepare_session_folder(folder, starter_folder()), "");
    EXPECT_EQ(port.size(), 3);
    EXPECT_TRUE(QFile::exists(folder + "/OEM.TXT"));
    EXPECT_TRUE(prepare_session_folder(folder + "/port.cfg/below", starter_folder()).contains("could not be made"));
}

TEST(WelcomePage, OffersTheAdapterOnlyWhereThereIsOneAndAnswersByKeyboard) {
    Welcome none({});
    EXPECT_FALSE(none.findChild<QPushButton*>("welcome_adapter")->isEnabled());
    none.show();
    if (const QString folder = qEnvironmentVariable("ECU_PICTURES"); !folder.isEmpty()) {
        none.grab().save(folder + "/welcome.png");
    }
    QTest::keyClick(none.focusWidget(), Qt::Key_Return); // the safe one has the focus
    EXPECT_EQ(none.choice(), Welcome::Choice::virtual_engine);
    Welcome page({{3, "/dev/ttyUSB2"}, {4, "/dev/ttyUSB3"}});
    page.show();
    page.findChild<QComboBox*>("welcome_ports")->setCurrentIndex(1);
    page.findChild<QCheckBox*>()->setChecked(false);
    QTest::keyClick(page.findChild<QPushButton*>("welcome_adapter"), Qt::Key_Space);
    EXPECT_EQ(page.choice(), Welcome::Choice::adapter);
    EXPECT_EQ(page.port(), 4);
    EXPECT_FALSE(page.ask_again());
    Welcome closed({});
    closed.show();
    QTest::keyClick(&closed, Qt::Key_Escape);
    EXPECT_FALSE(closed.choice().has_value());
}

TEST(VirtualEngine, RunsAsLongAsItIsHeldAndTellsWhyItDoesNot) {
    const QTemporaryDir place;
    QString device;
    {
        VirtualEngine engine;
        const auto started =
            engine.start(QApplication::applicationDirPath() + "/ecu-controller", place.filePath("state"));
        ASSERT_TRUE(started.has_value()) << engine.fault().toStdString();
        device = *started;
        EXPECT_TRUE(QFile::exists(device));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(device); }));
    VirtualEngine missing;
    EXPECT_FALSE(missing.start(place.filePath("none"), "").has_value());
    EXPECT_TRUE(missing.fault().contains("could not be started"));
    VirtualEngine silent;
    EXPECT_FALSE(silent.start("/bin/false", "").has_value());
    EXPECT_TRUE(silent.fault().contains("tells no device"));
}

} // namespace
} // namespace ecu::desktop
