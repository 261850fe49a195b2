// Answers the questions of a console that nobody sits at, so that it never waits for ever: each is printed, and counted
// where it tells of something that failed. A message box gets its default button, a file dialog is cancelled, and the
// question about a link that does not answer gets "Demo", so that the rest can still be looked at.
#pragma once

#include "link/frm_dialog.h"

#include <QTimer>

#include <iosfwd>

class QWidget;

namespace ecu::tour {

class BoxAnswers {
public:
    // Looks for an open question ten times a second while events are handled.
    BoxAnswers(link::FrmDialog& link_question, std::ostream& out);
    BoxAnswers(const BoxAnswers&) = delete;
    BoxAnswers& operator=(const BoxAnswers&) = delete;

    int failures() const { return failures_; }

private:
    void answer_open_question();
    void answer_link_question();

    link::FrmDialog& link_question_;
    std::ostream& out_;
    QTimer timer_;
    int failures_ = 0;
};

} // namespace ecu::tour
