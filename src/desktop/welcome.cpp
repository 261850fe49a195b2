#include "desktop/welcome.h"

#include "desktop/theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace ecu::desktop {

namespace {

constexpr int start_ms = 5000; // a program that says nothing for so long does not come

} // namespace

QString session_folder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/ECU System Console";
}

QString starter_folder() {
    const QDir beside(QCoreApplication::applicationDirPath());
    for (const char* place : {"../share/ecu-console/session", "../../packaging/session"}) {
        if (beside.exists(place)) {
            return QDir::cleanPath(beside.filePath(place));
        }
    }
    return {};
}

QString prepare_session_folder(const QString& folder, const QString& starter) {
    if (!QDir().mkpath(folder)) {
        return QString(
                   "The folder %1 could not be made. Make room or the right to write there, or start ecu-console in a "
                   "folder of your choice.")
            .arg(folder);
    }
    for (const QString& name : QDir(starter).entryList(QDir::Files)) {
        const QString target = QDir(folder).filePath(name);
        if (QFile::exists(target)) {
            continue;
        }
        QFile source(QDir(starter).filePath(name));
        if (!source.copy(target)) {
            return QString("%1 could not be written: %2. Make room or the right to write there.")
                .arg(target, source.errorString());
        }
        // The installed one is everybody's, and nobody's to write.
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    }
    return {};
}

Welcome::Welcome(const QList<Port>& ports) : ports_(new QComboBox), keep_(new QCheckBox("&Ask at every start")) {
    setObjectName("welcome");
    setWindowTitle("ECU System Console");
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(2 * theme::margin, 2 * theme::margin, 2 * theme::margin, 2 * theme::margin);
    grid->setVerticalSpacing(theme::margin);
    grid->setHorizontalSpacing(2 * theme::margin);
    auto* question = new QLabel("What is the console to talk to?");
    QFont large = question->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    question->setFont(large);
    grid->addWidget(question, 0, 0, 1, 2);
    int row = 1;
    const auto offer = [&](const char* name, const char* text, const QString& about, Choice choice) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setMinimumSize(190, 46);
        button->setAutoDefault(true);
        button->setToolTip(about);
        auto* note = new QLabel(about);
        note->setWordWrap(true);
        note->setMinimumWidth(360);
        grid->addWidget(button, row, 0);
        grid->addWidget(note, row++, 1);
        connect(button, &QPushButton::clicked, this, [this, choice] {
            choice_ = choice;
            accept();
        });
        return button;
    };
    auto* engine =
        offer("welcome_virtual", "&Virtual engine",
              "An engine inside this laptop that behaves like a real one. Everything can be tried, and nothing can be "
              "broken.",
              Choice::virtual_engine);
    auto* adapter = offer("welcome_adapter", "&My controller",
                          ports.isEmpty() ? "No serial adapter is plugged in. Plug it in and start again."
                                          : "Through the serial adapter chosen here. Switch the ignition on first.",
                          Choice::adapter);
    adapter->setEnabled(!ports.isEmpty());
    for (const Port& port : ports) {
        ports_->addItem(QString("Port %1: %2").arg(port.number).arg(port.device), port.number);
    }
    ports_->setObjectName("welcome_ports");
    ports_->setAccessibleName("Serial adapter");
    ports_->setToolTip("The serial ports that exist on this machine; it can be changed later under Comm");
    ports_->setVisible(!ports.isEmpty());
    grid->addWidget(ports_, row++, 1);
    offer("welcome_demo", "&Demo", "Made-up figures and no controller at all: a look at the windows.", Choice::demo);
    keep_->setChecked(true);
    keep_->setToolTip("Without it the next start goes straight to the main window, with the same choice");
    grid->addWidget(keep_, row, 0, 1, 2);
    engine->setDefault(true);
    engine->setFocus();
}

int Welcome::port() const { return ports_->currentData().toInt(); }

bool Welcome::ask_again() const { return keep_->isChecked(); }

VirtualEngine::~VirtualEngine() { stop(); }

void VirtualEngine::stop() {
    if (process_.state() != QProcess::NotRunning) {
        process_.terminate();
        if (!process_.waitForFinished(1000)) {
            process_.kill();
            process_.waitForFinished(1000);
        }
    }
}

std::optional<QString> VirtualEngine::start(const QString& program, const QString& state) {
    process_.setProcessChannelMode(QProcess::SeparateChannels);
#ifdef Q_OS_LINUX
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); }); // a killed console can stop nothing
#endif
    process_.start(program, {"--pace", "38400", "--engine", "cycle", "--state", state});
    if (!process_.waitForStarted(start_ms)) {
        fault_ = QString("%1 could not be started: %2.").arg(program, process_.errorString());
        return std::nullopt;
    }
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(start_ms)) {
            fault_ = QString("%1 tells no device. %2")
                         .arg(program, QString::fromLocal8Bit(process_.readAllStandardError()).trimmed());
            return std::nullopt;
        }
    }
    return QString::fromLocal8Bit(process_.readLine()).trimmed();
}

} // namespace ecu::desktop
