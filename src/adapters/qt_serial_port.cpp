#include "adapters/qt_serial_port.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLockFile>
#include <QSerialPort>
#include <QThread>

#include <algorithm>
#include <array>
#include <cstring>

#ifdef Q_OS_LINUX
#include <linux/serial.h>
#include <sys/ioctl.h>
#endif

namespace ecu::adapters {

namespace {

// What arrives while nobody reads: more than this is lost, as in the port's own buffer.
constexpr std::size_t receive_buffer = 1024;

#ifdef Q_OS_LINUX
// Without it some adapters hold received bytes back for 16 ms. A driver that has no such flag refuses; no matter.
void ask_for_low_latency(int handle) {
    serial_struct settings{};
    if (ioctl(handle, TIOCGSERIAL, &settings) == 0) {
        settings.flags |= ASYNC_LOW_LATENCY;
        ioctl(handle, TIOCSSERIAL, &settings);
    }
}
std::size_t bytes_in_driver(int handle) {
    int count = 0;
    return ioctl(handle, TIOCOUTQ, &count) == 0 && count > 0 ? static_cast<std::size_t>(count) : 0;
}
#else
void ask_for_low_latency(QSerialPort::Handle) {}
std::size_t bytes_in_driver(QSerialPort::Handle) { return 0; }
#endif

// The program that holds the device by a lock file, as serial programs make them; empty where the system does not tell.
QString holder_of(const QString& port_name) {
    QString name = port_name;
    name.replace('/', '_');
    for (const char* folder : {"/var/lock", "/run/lock", "/var/spool/lock", "/tmp", "/var/tmp"}) {
        const QString path = QString(folder) + "/LCK.." + name;
        qint64 process = 0;
        QString host;
        QString program;
        if (QFileInfo::exists(path) && QLockFile(path).getLockInfo(&process, &host, &program) && process > 0) {
            return QString("%1 (process %2)").arg(program.isEmpty() ? QString("a program") : program).arg(process);
        }
    }
    return {};
}

// What to do when this user may not open the device, which exists. A device that is in use is told as a lack of
// permission too.
std::string remedy(QSerialPort::SerialPortError error, const QFileInfo& file) {
#ifdef Q_OS_LINUX
    if (error == QSerialPort::PermissionError && file.exists() && !(file.isReadable() && file.isWritable())) {
        const QString owner = file.group();
        const std::string group = owner.isEmpty() || owner == "root" ? "dialout" : owner.toStdString();
        return ". This user may not use it: run  sudo adduser $USER " + group + "  and log in again.";
    }
#else
    (void)error, (void)file;
#endif
    return {};
}

class QtSerialPort final : public platform::SerialPort {
public:
    QtSerialPort() {
        QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] { take_received(); });
        QObject::connect(&port_, &QSerialPort::errorOccurred, &port_, [this](auto error) { note_error(error); });
    }

    std::string open(int number, int baud) override {
        const std::string device = device_of(number);
        if (device.empty()) {
            return "There is no device for port " + std::to_string(number) + ".";
        }
        if (is_open()) {
            return "The port is open already.";
        }
        close(); // a broken port that its queued close has not reached yet
        broken_ = false;
        received_.clear();
        // A symbolic link is resolved, so that the lock is on the device whatever name it was opened by.
        const QFileInfo file(QString::fromStdString(device));
        port_.setPortName(file.isSymLink() ? file.canonicalFilePath() : QString::fromStdString(device));
        port_.setBaudRate(baud);
        port_.setDataBits(QSerialPort::Data8);
        port_.setParity(QSerialPort::NoParity);
        port_.setStopBits(QSerialPort::OneStop);
        port_.setFlowControl(QSerialPort::NoFlowControl);
        if (!port_.open(QIODevice::ReadWrite)) {
            return device + ": " + refusal(port_.portName(), file).toStdString();
        }
        ask_for_low_latency(port_.handle());
        number_ = number;
        baud_ = baud;
        lost_ = false;
        ++openings_;
        return {};
    }

    void close() override {
        if (port_.isOpen()) {
            port_.close();
        }
        received_.clear();
        lost_ = false;
    }

    bool is_open() const override { return port_.isOpen() && !broken_; }

    void reopen_lost() override {
        if (lost_ && !is_open()) {
            const bool back = open(number_, baud_).empty();
            lost_ = !back; // the device may come back with any of the next tries
        }
    }

    std::uint32_t openings() const override { return openings_; }

    void write(std::span<const std::uint8_t> bytes) override {
        if (is_open()) {
            port_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
            port_.flush(); // to the driver now rather than with the next events
        }
    }

    std::size_t available() const override { return received_.size(); }

    std::vector<std::uint8_t> read(std::size_t at_most) override {
        const auto end = received_.begin() + static_cast<std::ptrdiff_t>(std::min(at_most, received_.size()));
        std::vector<std::uint8_t> result(received_.begin(), end);
        received_.erase(received_.begin(), end);
        return result;
    }

    void discard_input() override {
        if (is_open()) {
            port_.clear(QSerialPort::Input);
        }
        received_.clear();
    }

    std::size_t output_pending() const override {
        return is_open() ? static_cast<std::size_t>(port_.bytesToWrite()) + bytes_in_driver(port_.handle()) : 0;
    }

    void drain_output(int milliseconds) override {
        const QDeadlineTimer deadline(milliseconds, Qt::PreciseTimer);
        while (is_open() && port_.bytesToWrite() > 0 && !deadline.hasExpired()) {
            port_.waitForBytesWritten(static_cast<int>(std::max<qint64>(1, deadline.remainingTime())));
        }
        while (output_pending() > 0 && !deadline.hasExpired()) {
            QThread::msleep(1); // the driver tells of its progress only when asked
        }
    }

    std::string device_of(int number) const override { return device_of_port(number); }

private:
    // The system's words for "somebody else has it" say so to nobody who has not met them.
    QString refusal(const QString& port_name, const QFileInfo& file) const {
        const QString reason = port_.errorString();
        if (!reason.contains("locking", Qt::CaseInsensitive) && !reason.contains("busy", Qt::CaseInsensitive)) {
            return reason + QString::fromStdString(remedy(port_.error(), file));
        }
        const QString holder = holder_of(port_name);
        return "It is in use by another program" + (holder.isEmpty() ? QString() : ", " + holder) +
               ". End that program, or choose another port.";
    }

    void take_received() {
        const QByteArray bytes = port_.readAll();
        const std::size_t room = receive_buffer - std::min(receive_buffer, received_.size());
        const auto taken = static_cast<std::ptrdiff_t>(std::min(room, static_cast<std::size_t>(bytes.size())));
        received_.insert(received_.end(), bytes.begin(), bytes.begin() + taken);
    }

    // A port that fails while open is gone. It is closed from the event loop, not inside its own signal.
    void note_error(QSerialPort::SerialPortError error) {
        if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError || !port_.isOpen() || broken_) {
            return;
        }
        broken_ = true;
        lost_ = true;
        QMetaObject::invokeMethod(
            &port_,
            [this] {
                if (broken_ && port_.isOpen()) {
                    port_.close();
                }
            },
            Qt::QueuedConnection);
    }

    QSerialPort port_;
    std::vector<std::uint8_t> received_;
    int number_ = 0;
    int baud_ = 0;
    std::uint32_t openings_ = 0;
    bool broken_ = false; // failed while open, and not closed yet
    bool lost_ = false;   // closed by the device's going, not by the console
};

} // namespace

std::string device_of_port(int number) {
    const QByteArray chosen = qgetenv(("ECU_PORT_" + std::to_string(number)).c_str());
    if (!chosen.isEmpty()) {
        return chosen.toStdString();
    }
#ifdef Q_OS_WIN
    return "COM" + std::to_string(number);
#else
    for (const char* family : {"/dev/ttyUSB", "/dev/ttyACM", "/dev/ttyS"}) {
        std::string device = family + std::to_string(number - 1);
        if (QFileInfo::exists(QString::fromStdString(device))) {
            return device;
        }
    }
    return {};
#endif
}

std::unique_ptr<platform::SerialPort> QtSerialPorts::make_serial_port() { return std::make_unique<QtSerialPort>(); }

} // namespace ecu::adapters
