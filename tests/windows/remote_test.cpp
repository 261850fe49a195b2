// The remote link on the desktop: its two windows, its real sockets under a flood, and a serving console that the
// command line uses over loopback. Ports are chosen free at the time of the run.
#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "link/frm_remote_ip.h"
#include "link/frm_server.h"
#include "link/remote_link.h"
#include "windows/udp_bench.h"
#include "windows/window_bench.h"

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>
#include <QTimer>
#include <QUdpSocket>

#include <fstream>

namespace ecu::desktop {
namespace {

using Bytes = std::vector<std::uint8_t>;
using platform::Peer;

TEST(RemoteWindows, AddressIsTypedThroughWithPointsAndEnter) {
    QtHost host;
    link::FrmRemoteIp form;
    const auto window = make_frm_remote_ip_window(form, host);
    expect_complete(*window);
    std::string entered;
    form.remote_ip_done.clicked = [&] {
        entered = form.address();
        form.form.hide();
    };
    for (const auto& keys : {"192.168.0.17", "10.1.2.3"}) {
        form.form.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        EXPECT_EQ(window->focusWidget(), &named<QLineEdit>(*window, "client_ip_address(0)"));
        for (const char key : std::string(keys)) {
            QTest::keyClick(window->focusWidget(), key);
        }
        EXPECT_EQ(window->focusWidget(), &named<QLineEdit>(*window, "client_ip_address(3)"));
        save_picture(*window);
        QTest::keyClick(window->focusWidget(), Qt::Key_Return);
        EXPECT_EQ(entered, keys);
    }
    form.form.show();
    form.remote_ip_cancel.clicked = [&] { entered = "cancelled"; };
    QTest::keyClick(window->focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(entered, "cancelled");
}

TEST(RemoteWindows, ServerShowsWhomItServesWhatItRefusedAndTheWarningInRed) {
    QtHost host;
    adapters::QtTimers timers;
    link::FrmServer form(timers);
    const auto window = make_frm_server_window(form, host);
    expect_complete(*window);
    form.Client_IP.set_text("192.168.100.117");
    form.num_comm_bytes.set_text("2147483647");
    form.num_sock_bytes.set_text("2147483647");
    form.server_address.set_text("192.168.100.105 or 10.0.0.7");
    form.server_serial.set_text("COM3 (/dev/ttyUSB2) is open");
    form.server_allowed.set_text("Whoever asks first, until it has been idle for 6 seconds");
    form.num_refused.set_text("2147483647");
    form.refused[0].set_text("2147483647");
    form.server_warning.set_text("Whoever reaches port 65535 of this machine can write to the engine. Nothing is "
                                 "encrypted and nobody is asked for a password. Serve on a network of your own only, "
                                 "or through a tunnel that carries UDP, such as a VPN; ECU_REMOTE_ALLOW names the "
                                 "addresses that may ask.");
    form.form.show();
    for (const QSize size : {QSize(1366, 728), QSize(910, 470)}) {
        window->resize(size);
        QTest::qWait(1);
        const auto* scroll = window->findChild<QScrollArea*>();
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width());
        EXPECT_LE(scroll->widget()->minimumSizeHint().height(), scroll->viewport()->height());
    }
    const auto& text = named<QLabel>(*window, "server_warning");
    EXPECT_GE(text.height(), text.heightForWidth(text.width())) << "never scrolled away, never cut";
    const QColor warning = named<QLabel>(*window, "server_warning").palette().color(QPalette::WindowText);
    EXPECT_GT(warning.red(), 2 * std::max(warning.green(), warning.blue()) - 30);
    save_picture(*window, {910, 470});
}

class RealSockets : public testing::Test {
protected:
    RealSockets() { junk_.bind(QHostAddress(QHostAddress::LocalHost), 0); }
    bool wait(float seconds, const std::function<bool()>& done) {
        return platform::wait_until(waiting_, clock_, seconds, done);
    }
    void flood(std::uint16_t port, int count, const QByteArray& bytes) {
        for (int i = 0; i < count; ++i) {
            junk_.writeDatagram(bytes, QHostAddress(QHostAddress::LocalHost), port);
        }
    }
    adapters::QtClock clock_;
    adapters::QtWaiting waiting_;
    adapters::QtDatagramSockets sockets_;
    std::unique_ptr<platform::DatagramSocket> one_ = sockets_.make_datagram_socket();
    std::unique_ptr<platform::DatagramSocket> two_ = sockets_.make_datagram_socket();
    QUdpSocket junk_;
};

TEST_F(RealSockets, AFloodIsBoundedAndLeavesTheSocketHearing) {
    const std::uint16_t port = test::bind_free(*one_);
    const std::uint16_t two = test::bind_free(*two_);
    two_->set_remote(Peer{test::loopback, port}, true);
    int deliveries = 0;
    one_->on_datagrams = [&] { ++deliveries; }; // reads nothing: what is kept fills up
    flood(port, 200, QByteArray(9000, 'x'));
    ASSERT_TRUE(wait(2, [&] { return deliveries > 0; }));
    wait(0.1F, [] { return false; });
    EXPECT_LE(one_->available(), platform::DatagramSocket::datagrams_kept * platform::DatagramSocket::bytes_kept);
    flood(port, 50, "more");
    one_->discard_input(); // what no event has delivered yet included
    EXPECT_FALSE(wait(0.05F, [&] { return one_->available() > 0; }));
    two_->send(Bytes{1, 2, 3});
    ASSERT_TRUE(wait(2, [&] { return one_->available() == 3; }));
    EXPECT_EQ(one_->take_datagram()->from, (Peer{test::loopback, two}));
}

TEST_F(RealSockets, OneThatHearsItsRemoteAloneHearsNobodyElseAndSurvivesItsAbsence) {
    const std::uint16_t port = test::bind_free(*one_);
    const std::uint16_t server_port = test::bind_free(*two_);
    one_->set_remote(Peer{test::loopback, server_port}, true);
    flood(port, 50, "POLO");
    two_->close();
    for (int i = 0; i < 3; ++i) {
        one_->send(Bytes{7}); // to a port that nobody holds
        wait(0.02F, [] { return false; });
    }
    EXPECT_EQ(one_->available(), 0U);
    ASSERT_EQ(two_->bind({}, server_port).fault, platform::BindFault::none);
    two_->send_to({test::loopback, port}, Bytes{8, 9});
    EXPECT_TRUE(wait(2, [&] { return one_->available() == 2; }));
}

// A folder of its own with a virtual controller behind port 1, and ports for the link.
class RemoteFolder : public testing::Test {
protected:
    explicit RemoteFolder(const QStringList& controller_options = {}) {
        ports_ = QByteArray::number(test::free_port()) + ',' + QByteArray::number(test::free_port());
        qputenv("ECU_REMOTE_PORTS", ports_);
        controller_.start(program("ecu-controller"), controller_options);
        while (controller_.state() != QProcess::NotRunning && !controller_.canReadLine()) {
            controller_.waitForReadyRead(5000);
        }
        device_ = QString(controller_.readLine()).trimmed();
        qputenv("ECU_PORT_1", device_.toUtf8());
        before_ = QDir::currentPath();
        QDir::setCurrent(folder_.path());
        std::ofstream("port.cfg") << "1\n";
        QPixmap picture(8, 8);
        picture.fill(Qt::black);
        picture.save("OEM.JPG");
        std::ofstream("OEM.TXT") << "test\n";
    }
    ~RemoteFolder() override {
        QDir::setCurrent(before_);
        qunsetenv("ECU_REMOTE_PORTS");
        qunsetenv("ECU_PORT_1");
        controller_.terminate();
        controller_.waitForFinished(5000);
    }
    static QString program(const char* name) { return QApplication::applicationDirPath() + '/' + name; }
    static QByteArray content(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    QTemporaryDir folder_;
    QString before_;
    QByteArray ports_;
    QProcess controller_;
    QString device_;
};

// Both ends as processes, which are killed.
class KilledEnds : public RemoteFolder {
protected:
    KilledEnds() : RemoteFolder({"--pace", "230400"}) {}
    ~KilledEnds() override {
        for (QProcess* process : {&server_, &client_}) {
            process->kill();
            process->waitForFinished(5000);
        }
    }
    void serve() {
        server_.start(program("test_windows"), {"--serve"});
        ASSERT_TRUE(QTest::qWaitFor([&] { return server_.canReadLine(); }, 20000));
        ASSERT_EQ(server_.readLine(), "serving\n");
    }
    void download(const QString& file) {
        const QStringList left = unfinished();
        client_.start(program("ecu-cli"), {"--remote", "127.0.0.1", "download", file});
        ASSERT_TRUE(client_.waitForStarted());
        const auto begun = [&] { return !unfinished().isEmpty() && unfinished() != left; };
        ASSERT_TRUE(QTest::qWaitFor(begun, 20000)) << client_.readAllStandardError().toStdString();
    }
    bool ends_well() {
        const bool ended = QTest::qWaitFor([&] { return client_.state() == QProcess::NotRunning; }, 40000);
        return ended && client_.exitStatus() == QProcess::NormalExit && client_.exitCode() == 0;
    }
    static QStringList unfinished() { return QDir().entryList({"*.new-*"}); }
    static void kill(QProcess& process) {
        process.kill();
        process.waitForFinished(5000);
    }
    QProcess server_;
    QProcess client_;
};

TEST_F(KilledEnds, AreFoundAgainInMidDownloadAndNothingIsLost) {
    serve();
    download("first.set");
    kill(server_);
    QTest::qWait(1500); // more than a try without an answer
    ASSERT_EQ(client_.state(), QProcess::Running) << client_.readAllStandardError().toStdString();
    serve();
    ASSERT_TRUE(ends_well()) << client_.readAllStandardError().toStdString();
    EXPECT_EQ(content("first.set").count('\n'), 2126);

    std::ofstream("second.set") << "an older calibration";
    download("second.set");
    kill(client_);
    EXPECT_EQ(content("second.set"), "an older calibration");
    download("second.set");
    ASSERT_TRUE(ends_well()) << client_.readAllStandardError().toStdString();
    EXPECT_EQ(content("second.set"), content("first.set"));
    EXPECT_TRUE(unfinished().isEmpty()) << "what the killed one left";
}

// A console that serves, in this process.
class ServingConsole : public RemoteFolder {
protected:
    ServingConsole() {
        desktop_ = std::make_unique<DesktopConsole>();
        desktop_->console().start("");
        QTest::qWait(60);
    }
    ~ServingConsole() override {
        desktop_->console().before_end();
        desktop_.reset();
    }
    console::Forms& forms() { return desktop_->console().forms; }
    void serve() {
        forms().frm_ecu.menu_remote_setup_start_server.click();
        QTest::qWait(60);
    }
    std::uint16_t server_port() const { return ports_.split(',')[1].toUShort(); }
    // The command line's exit status and what it wrote; the console serves meanwhile.
    std::pair<int, QString> run_cli(const QStringList& arguments) {
        QProcess cli;
        cli.setProcessChannelMode(QProcess::MergedChannels);
        cli.start(program("ecu-cli"), arguments);
        if (!platform::wait_until(desktop_->ports().waiting, desktop_->ports().clock, 60,
                                  [&] { return cli.state() == QProcess::NotRunning; })) {
            cli.kill();
        }
        return {cli.exitCode(), cli.readAll()};
    }

    std::unique_ptr<DesktopConsole> desktop_;
};

TEST_F(ServingConsole, GivesTheCommandLineTheSameCalibrationAsTheCableWithJunkBesideIt) {
    serve();
    QUdpSocket junk;
    junk.bind(QHostAddress(QHostAddress::LocalHost), 0);
    QTimer flood;
    QByteArray forged("\x41\x02\x08\x41\x30\x30\x30\xDB\x00", 9); // a good frame, from somebody else
    QObject::connect(&flood, &QTimer::timeout, [&] {
        for (const QByteArray& bytes : {QByteArray("MARCO"), forged, QByteArray(), QByteArray(2000, 'A')}) {
            junk.writeDatagram(bytes, QHostAddress(QHostAddress::LocalHost), server_port());
        }
    });
    QTimer::singleShot(200, &flood, [&] { flood.start(2); }); // not before the one that is served has greeted
    const auto [status, said] = run_cli({"--remote", "localhost", "download", "far.set"});
    flood.stop();
    ASSERT_EQ(status, 0) << said.toStdString();
    QTest::qWait(1100);
    EXPECT_GT(forms().frm_server.num_refused.text(), "0");
    EXPECT_EQ(forms().frm_server.Client_IP.text(), "127.0.0.1");
    FormWindow& window = desktop_->host().window_of(forms().frm_server.form);
    window.setObjectName("frm_server_serving");
    save_picture(window);
    forms().frm_server.server_cancel.press();
    EXPECT_TRUE(forms().frm_ecu.form.visible());
    desktop_->console().comm1->close();
    ASSERT_EQ(run_cli({"--device", device_, "download", "near.set"}).first, 0);
    EXPECT_EQ(content("far.set"), content("near.set"));
    EXPECT_EQ(content("far.set").count('\n'), 2126);
}

TEST_F(ServingConsole, TellsOfAPortThatIsTakenAndStaysAConsole) {
    QUdpSocket holder;
    ASSERT_TRUE(holder.bind(QHostAddress(QHostAddress::AnyIPv4), server_port()));
    QString text;
    QTimer::singleShot(0, &holder, [&] {
        auto* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        text = qobject_cast<QMessageBox*>(box)->text();
        QTest::keyClick(box, Qt::Key_Return);
    });
    forms().frm_ecu.menu_remote_setup_start_server.click();
    EXPECT_TRUE(text.contains(QString::number(server_port())) && text.contains("ECU_REMOTE_PORTS"))
        << text.toStdString();
    EXPECT_TRUE(forms().frm_ecu.form.visible());
    EXPECT_FALSE(forms().frm_server.form.visible());
}

} // namespace
} // namespace ecu::desktop
