// How a command ends. Every failure is one line on the error stream that says what to do.
#pragma once

#include <stdexcept>
#include <string>

namespace ecu::cli {

enum class Status : int {
    done = 0,    // or: no difference, no finding
    differs = 1, // or: findings, or nothing was sent
    usage = 2,   // the command line, or a question that nobody could be asked
    link = 3,    // the controller cannot be reached or does not answer
    file = 4,    // a file cannot be read or written, or holds what cannot be sent
    ended = 130, // by Ctrl+C
};

class Failure : public std::runtime_error {
public:
    Failure(Status status, const std::string& text) : std::runtime_error(text), status_(status) {}
    Status status() const { return status_; }

private:
    Status status_;
};

} // namespace ecu::cli
