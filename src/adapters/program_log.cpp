#include "adapters/program_log.h"

#include <QDateTime>
#include <QStandardPaths>
#include <QString>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>

#ifdef Q_OS_UNIX
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ecu::adapters::program_log {

namespace {

constexpr std::uintmax_t largest = 262144;
constexpr std::string_view start_mark = " start ";
constexpr std::string_view end_mark = " end ";

// What a signal's handler can reach is not the property of any object.
#ifdef Q_OS_UNIX
volatile std::sig_atomic_t file = -1;
#else
std::FILE* file = nullptr;
#endif
volatile std::sig_atomic_t ended = 0;

void write_text(std::string_view text) {
#ifdef Q_OS_UNIX
    if (file >= 0) {
        [[maybe_unused]] const ssize_t written = ::write(file, text.data(), text.size());
    }
#else
    if (file != nullptr) {
        std::fwrite(text.data(), 1, text.size(), file);
        std::fflush(file);
    }
#endif
}

// One line, whatever the text holds, in one write: two consoles may share the log.
void write_line(std::string_view text) {
    std::string line = QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss.zzz").toStdString() + " [" +
#ifdef Q_OS_UNIX
                       std::to_string(getpid()) +
#endif
                       "]" + std::string(text);
    for (char& c : line) {
        c = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    write_text(line + "\n");
}

[[noreturn]] void note_uncaught() {
    std::string reason = "terminate() was called";
    if (const std::exception_ptr thrown = std::current_exception()) {
        try {
            std::rethrow_exception(thrown);
        } catch (const std::exception& error) {
            reason = std::string("an exception that nobody caught: ") + error.what();
        } catch (...) {
            reason = "an exception that nobody caught, of an unknown type";
        }
    }
    note_end(SIGABRT + 128, reason);
    std::fprintf(stderr, "The program ends by %s\n", reason.c_str());
    std::abort();
}

void note_message(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) {
        note_end(SIGABRT + 128, "fatal: " + message.toStdString());
    } else if (type == QtWarningMsg || type == QtCriticalMsg) {
        note(message.toStdString());
    }
    std::fprintf(stderr, "%s\n", qFormatLogMessage(type, context, message).toLocal8Bit().constData());
}

#ifdef Q_OS_UNIX

// Only what may be called at any moment: nothing that allocates, no clock's text.
void note_deadly_signal(int signal) {
    if (ended == 0) {
        write_text(signal == SIGSEGV   ? "end by signal SIGSEGV: a place of memory that is not there; called from\n"
                   : signal == SIGABRT ? "end by signal SIGABRT: given up; called from\n"
                   : signal == SIGFPE  ? "end by signal SIGFPE: a wrong reckoning; called from\n"
                   : signal == SIGILL  ? "end by signal SIGILL: no instruction of this machine; called from\n"
                                       : "end by signal SIGBUS: a place of memory that cannot be read; called from\n");
        std::array<void*, 32> calls;
        backtrace_symbols_fd(calls.data(), backtrace(calls.data(), static_cast<int>(calls.size())), file);
    }
    ::raise(signal); // the handler is gone by now: the system does what it always does
}

void catch_deadly_signals() {
    std::array<void*, 2> calls;
    backtrace(calls.data(), static_cast<int>(calls.size())); // loads now what it must not load in a handler
    static std::array<char, 65536> stack;                    // of its own, for a stack that has run over
    const stack_t place{.ss_sp = stack.data(), .ss_flags = 0, .ss_size = stack.size()};
    sigaltstack(&place, nullptr);
    struct sigaction noted {};
    noted.sa_handler = note_deadly_signal;
    noted.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL, SIGBUS}) {
        sigaction(signal, &noted, nullptr);
    }
}

#else
void catch_deadly_signals() {}
#endif

// The start of the last run, when no line of an end follows it.
std::string unfinished_run(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::string last;
    for (std::string line; std::getline(in, line);) {
        if (line.find(start_mark) != std::string::npos) {
            last = line;
        } else if (line.find(end_mark) != std::string::npos || line.starts_with("end by signal")) {
            last.clear();
        }
    }
    return last;
}

} // namespace

std::filesystem::path folder_for(std::string_view name) {
#ifdef Q_OS_UNIX
    const QString set = qEnvironmentVariable("XDG_STATE_HOME");
    const QString base =
        set.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::HomeLocation) + "/.local/state" : set;
#else
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#endif
    return std::filesystem::path(base.toStdString()) / name;
}

std::filesystem::path open(const std::filesystem::path& folder, std::string_view name, std::string_view version) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::filesystem::path path = folder / (std::string(name) + ".log");
    const std::string unfinished = unfinished_run(path);
    if (const std::uintmax_t size = std::filesystem::file_size(path, error); !error && size > largest) {
        std::filesystem::rename(path, folder / (std::string(name) + ".1.log"), error);
    }
    ended = 0;
#ifdef Q_OS_UNIX
    if (file >= 0) {
        ::close(file);
    }
    file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    const bool good = file >= 0;
#else
    file = std::fopen(path.string().c_str(), "a");
    const bool good = file != nullptr;
#endif
    std::set_terminate(note_uncaught);
    qInstallMessageHandler(note_message);
    catch_deadly_signals();
    if (!unfinished.empty()) {
        note("no word of an end is left by the run before (killed, the power lost, or still running): " + unfinished);
    }
    std::error_code no_folder;
    write_line(std::string(start_mark) + std::string(name) + " " + std::string(version) + " in " +
               std::filesystem::current_path(no_folder).string());
    return good ? path : std::filesystem::path();
}

void note(std::string_view text) { write_line(" note " + std::string(text)); }

void note_end(int status, std::string_view reason) {
    if (ended == 0) {
        ended = 1;
        write_line(std::string(end_mark) + "with status " + std::to_string(status) + ": " + std::string(reason));
    }
}

} // namespace ecu::adapters::program_log
