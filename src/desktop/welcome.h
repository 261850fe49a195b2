// The first start from the desktop's menu: a session folder of the user's own with the starter files, and a page that
// asks what to connect to. The virtual engine runs as a program of its own, which ends with the console.
#pragma once

#include "platform/serial_port.h"

#include <QDialog>
#include <QProcess>
#include <QString>

#include <array>
#include <optional>

class QCheckBox;
class QComboBox;

namespace ecu::desktop {

// "ECU System Console" in the user's documents, where a start without a folder works.
QString session_folder();
// The starter files of the installed program, or of the source tree that it was built in; empty where there are none.
QString starter_folder();
// Makes the folder and copies into it the starter files that it lacks; nothing that is there is touched. What went
// wrong with the remedy, or empty.
QString prepare_session_folder(const QString& folder, const QString& starter);

class Welcome final : public QDialog {
public:
    enum class Choice : std::uint8_t { adapter, virtual_engine, demo };
    struct Port {
        int number; // 1 to 10, as in the Comm menu
        QString device;
    };
    explicit Welcome(const QList<Port>& ports);
    // None when the page was closed.
    std::optional<Choice> choice() const { return choice_; }
    int port() const; // for the adapter; 0 without one
    bool ask_again() const;

private:
    std::optional<Choice> choice_;
    QComboBox* ports_;
    QCheckBox* keep_;
};

// The virtual controller with its engine, for as long as this lives and no longer than the program, however that ends.
class VirtualEngine {
public:
    VirtualEngine() = default;
    ~VirtualEngine();
    VirtualEngine(const VirtualEngine&) = delete;
    VirtualEngine& operator=(const VirtualEngine&) = delete;

    // Starts `program`; the device that it serves on, or nothing with the reason in fault(). `state` is the file in
    // which it keeps its calibration.
    std::optional<QString> start(const QString& program, const QString& state);
    const QString& fault() const { return fault_; }
    // Ends it and waits until it has. For an exit that destroys nothing.
    void stop();

private:
    QProcess process_;
    QString fault_;
};

} // namespace ecu::desktop
