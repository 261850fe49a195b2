#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "windows/udp_bench.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <ctime>
#include <fcntl.h>
#include <memory>
#include <stdlib.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace ecu::adapters {
namespace {

using Bytes = std::vector<std::uint8_t>;

double cpu_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

// How long anything may take before a test counts as stuck; what is awaited comes after milliseconds, on a busy
// machine after tens of them.
constexpr float patience = 20;

// The other end of the line: a real pseudo-terminal that answers from the same event loop. Its device stays open here
// until the end of the test: a pulled plug frees no number that another program could be given meanwhile.
class PseudoTerminal {
public:
    PseudoTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        grantpt(master_);
        unlockpt(master_);
        setenv("ECU_PORT_3", ptsname(master_), 1);
        device_ = ::open(ptsname(master_), O_RDWR | O_NOCTTY);
    }
    ~PseudoTerminal() {
        unplug();
        ::close(device_);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    void send(const Bytes& bytes) const { ASSERT_EQ(::write(master_, bytes.data(), bytes.size()), std::ssize(bytes)); }
    Bytes received() const {
        Bytes bytes(4096);
        const ssize_t count = ::read(master_, bytes.data(), bytes.size());
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }
    void answer_each_request_with(const Bytes& reply) {
        notifier_ = std::make_unique<QSocketNotifier>(master_, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, reply] {
            if (!received().empty()) {
                send(reply);
            }
        });
    }
    void unplug() {
        notifier_.reset();
        if (master_ >= 0) {
            ::close(master_);
            master_ = -1;
        }
    }

private:
    int master_;
    int device_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

class SerialLine : public testing::Test {
protected:
    bool wait_for_bytes(std::size_t count, float seconds) {
        return platform::wait_until(waiting_, clock_, seconds, [&] { return port_->available() == count; });
    }

    PseudoTerminal far_end_;
    QtClock clock_;
    QtWaiting waiting_;
    std::unique_ptr<platform::SerialPort> port_ = QtSerialPorts().make_serial_port();
};

TEST_F(SerialLine, CarriesEveryByteValueBothWays) {
    ASSERT_EQ(port_->open(3, 38400), "");
    Bytes all(256);
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = static_cast<std::uint8_t>(i);
    }
    port_->write(all);
    port_->drain_output(100);
    EXPECT_EQ(port_->output_pending(), 0U);
    EXPECT_EQ(far_end_.received(), all);
    far_end_.send(all);
    ASSERT_TRUE(wait_for_bytes(256, patience));
    EXPECT_EQ(port_->read(2), (Bytes{0, 1}));
    EXPECT_EQ(port_->read_all(), Bytes(all.begin() + 2, all.end()));
}

TEST_F(SerialLine, TransactionOnAnUnpacedLineCostsMicroseconds) {
    ASSERT_EQ(port_->open(3, 38400), "");
    far_end_.answer_each_request_with(Bytes(65, 0x41));
    std::vector<qint64> costs;
    for (int i = 0; i < 400; ++i) {
        QElapsedTimer time;
        time.start();
        port_->write(Bytes(8, 0x30));
        ASSERT_TRUE(wait_for_bytes(65, patience));
        port_->read_all();
        costs.push_back(time.nsecsElapsed() / 1000);
    }
    std::ranges::sort(costs);
    RecordProperty("median_us", static_cast<int>(costs[200]));
    // The best tenth, which a busy machine leaves alone: a wait that looks for bytes by the clock would show here.
    EXPECT_LT(costs[40], 500) << "both ends together, in this one event loop";
}

TEST_F(SerialLine, UnpluggingInMidTransactionLeavesAClosedQuietPort) {
    ASSERT_EQ(port_->open(3, 38400), "");
    port_->write(Bytes(8, 0x30));
    far_end_.send(Bytes(20, 0x41)); // a part of the reply, and then nothing more
    ASSERT_TRUE(wait_for_bytes(20, patience));
    far_end_.unplug();
    const double before = cpu_seconds();
    for (int tries = 0; tries < 5; ++tries) {
        port_->write(Bytes(8, 0x30));
        EXPECT_FALSE(wait_for_bytes(65, 0.1F));
    }
    EXPECT_LT(cpu_seconds() - before, 0.2) << "half a second of waiting must be spent asleep";
    EXPECT_FALSE(port_->is_open());
    EXPECT_EQ(port_->output_pending(), 0U);
    EXPECT_NE(port_->open(3, 38400), ""); // the device is gone
}

TEST_F(SerialLine, ALostPortIsOpenedAgainWhenTheDeviceCameBack) {
    ASSERT_EQ(port_->open(3, 38400), "");
    far_end_.unplug();
    platform::wait_until(waiting_, clock_, patience, [&] { return !port_->is_open(); });
    waiting_.process_events();
    PseudoTerminal again;
    port_->reopen_lost();
    port_->write(Bytes{4, 5});
    ASSERT_TRUE(port_->is_open());
    EXPECT_EQ(again.received(), (Bytes{4, 5}));
    again.send({1, 2, 3});
    EXPECT_TRUE(wait_for_bytes(3, patience));
}

TEST_F(SerialLine, ALostPortIsTriedAgainUntilTheDeviceIsBackAndNotByAWrite) {
    ASSERT_EQ(port_->open(3, 38400), "");
    const std::uint32_t openings = port_->openings();
    far_end_.unplug();
    platform::wait_until(waiting_, clock_, 1.0F, [&] { return !port_->is_open(); });
    waiting_.process_events();
    setenv("ECU_PORT_3", "/dev/there-is-no-such-device", 1);
    for (int tries = 0; tries < 3; ++tries) {
        port_->reopen_lost();
        port_->write(Bytes{4, 5});
        EXPECT_FALSE(port_->is_open());
    }
    EXPECT_EQ(port_->openings(), openings);
    PseudoTerminal again;
    port_->write(Bytes{4, 5});
    EXPECT_FALSE(port_->is_open());
    port_->reopen_lost();
    EXPECT_TRUE(port_->is_open());
    EXPECT_EQ(port_->openings(), openings + 1) << "who answers now may be another one";
    EXPECT_TRUE(again.received().empty()) << "nothing has been said to it yet";
    port_->close(); // by the console, not by the device
    port_->reopen_lost();
    EXPECT_FALSE(port_->is_open());
}

TEST_F(SerialLine, ADeviceThatAnotherProgramHoldsIsSaidToBeInUse) {
    ASSERT_EQ(port_->open(3, 38400), "");
    const auto second = QtSerialPorts().make_serial_port();
    const std::string reason = second->open(3, 38400);
    EXPECT_NE(reason.find("in use by another program"), std::string::npos) << reason;
    EXPECT_NE(reason.find(std::to_string(getpid())), std::string::npos) << "named: " << reason;
}

TEST_F(SerialLine, MissingDeviceIsNamedInTheReason) {
    setenv("ECU_PORT_3", "/dev/there-is-no-such-device", 1);
    EXPECT_NE(port_->open(3, 38400).find("there-is-no-such-device"), std::string::npos);
    EXPECT_FALSE(port_->is_open());
    EXPECT_EQ(device_of_port(3), "/dev/there-is-no-such-device");
}

TEST_F(SerialLine, DeviceThatTheUserMayNotOpenComesWithTheRemedy) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may open everything";
    }
    ASSERT_EQ(chmod(qgetenv("ECU_PORT_3").constData(), 0), 0);
    EXPECT_NE(port_->open(3, 38400).find("sudo adduser $USER "), std::string::npos);
}

TEST_F(SerialLine, WhatNobodyReadsIsLostBeyondTheBuffer) {
    ASSERT_EQ(port_->open(3, 38400), "");
    for (int i = 0; i < 6; ++i) {
        far_end_.send(Bytes(256, static_cast<std::uint8_t>(i)));
        platform::wait_seconds(waiting_, clock_, 0.01F);
    }
    wait_for_bytes(1024, patience);
    platform::wait_seconds(waiting_, clock_, 0.05F); // more would come now
    EXPECT_EQ(port_->available(), 1024U);
    EXPECT_EQ(port_->read_all().back(), 3);
}

TEST(QtWaiting, SleepsWhileNothingHappensAndWakesForATimer) {
    QtWaiting waiting;
    const QtClock clock;
    const double before = cpu_seconds();
    QElapsedTimer time;
    time.start();
    platform::wait_seconds(waiting, clock, 0.5F);
    EXPECT_GE(time.elapsed(), 480); // how late it wakes is the machine's affair
    EXPECT_LT(cpu_seconds() - before, 0.2) << "half a second of waiting must be spent asleep";

    QtTimers timers;
    bool rang = false;
    const auto timer = timers.make_timer(30);
    timer->on_tick = [&] { rang = true; };
    timer->set_running(true);
    time.restart();
    EXPECT_TRUE(platform::wait_until(waiting, clock, patience, [&] { return rang; }));
    EXPECT_LT(time.elapsed(), 500 * patience) << "the timer, not the time-out, ends the wait";
    bool posted = false;
    timers.post([&] { posted = true; });
    EXPECT_FALSE(posted) << "a posted action never runs inside the post";
    waiting.process_events();
    EXPECT_TRUE(posted);
}

TEST(QtWaiting, PaintsBehindARequestInsteadOfBeforeItButInABoxOfItsOwnLoopAsEver) {
    struct Window final : QWidget {
        int painted = 0;
        void paintEvent(QPaintEvent*) override { ++painted; }
    };
    QtWaiting waiting;
    Window window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window) && QTest::qWaitFor([&] { return window.painted > 0; }));
    window.painted = 0;
    window.update();
    waiting.process_events(); // the request is written next
    EXPECT_EQ(window.painted, 0);
    waiting.wait_for_events(0.01F);
    EXPECT_EQ(window.painted, 1);

    window.update();
    waiting.process_events(); // with no wait behind it
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.painted == 2; }));

    QTimer::singleShot(0, [&] {
        QEventLoop box;
        window.update();
        QTimer::singleShot(5, &box, &QEventLoop::quit);
        box.exec();
        EXPECT_EQ(window.painted, 3);
    });
    waiting.process_events();
}

TEST(QtDatagramSocket, ReadsDatagramsAsAStreamAndOneByOne) {
    QtWaiting waiting;
    const QtClock clock;
    QtDatagramSockets sockets;
    const auto server = sockets.make_datagram_socket();
    const auto client = sockets.make_datagram_socket();
    const std::uint16_t port = test::bind_free(*server);
    const platform::BindResult taken = client->bind({}, port);
    EXPECT_EQ(taken.fault, platform::BindFault::in_use);
    EXPECT_NE(taken.reason, "");
    EXPECT_EQ(client->bind(platform::ipv4_of("192.0.2.1"), port).fault, platform::BindFault::no_such_address);
    const std::uint16_t client_port = test::bind_free(*client);
    client->set_remote(platform::Peer{test::loopback, port}, true);
    client->send(Bytes{1, 2, 3});
    client->send(Bytes{4, 5});
    client->send(Bytes{6});
    ASSERT_TRUE(platform::wait_until(waiting, clock, patience, [&] { return server->available() == 6; }));
    EXPECT_EQ(server->read(4), (Bytes{1, 2, 3, 4}));
    const auto rest = server->take_datagram();
    ASSERT_TRUE(rest);
    EXPECT_EQ(rest->bytes, Bytes{5});
    EXPECT_EQ(rest->from, (platform::Peer{test::loopback, client_port}));
    int arrived = 0;
    server->on_datagrams = [&] { ++arrived; };
    client->send(Bytes{7});
    EXPECT_TRUE(platform::wait_until(waiting, clock, patience, [&] { return arrived == 1; }));
    EXPECT_EQ(server->available(), 2U);
}

} // namespace
} // namespace ecu::adapters
