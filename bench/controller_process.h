// The virtual controller as a process of its own, so that its work is not counted as the console's.
#pragma once

#include <QProcess>
#include <QStringList>

#include <stdexcept>
#include <string>

namespace ecu::bench {

class ControllerProcess {
public:
    // Port 1 of this process leads to it from now on.
    ControllerProcess(const std::string& program, const QStringList& arguments) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(QString::fromStdString(program), arguments);
        while (process_.state() != QProcess::NotRunning && !process_.canReadLine()) {
            process_.waitForReadyRead(5000);
        }
        const QByteArray device = process_.readLine().trimmed();
        if (device.isEmpty()) {
            throw std::runtime_error("the virtual controller " + program + " did not start");
        }
        qputenv("ECU_PORT_1", device);
    }
    ControllerProcess(const ControllerProcess&) = delete;
    ControllerProcess& operator=(const ControllerProcess&) = delete;
    ~ControllerProcess() {
        process_.terminate();
        process_.waitForFinished(2000);
    }

private:
    QProcess process_;
};

// Beside the benchmark itself.
inline std::string controller_program(const std::string& own_path) {
    return own_path.substr(0, own_path.find_last_of('/') + 1) + "ecu-controller";
}

} // namespace ecu::bench
