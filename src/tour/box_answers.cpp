#include "tour/box_answers.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <ostream>

namespace ecu::tour {

namespace {

constexpr int look_ms = 100;

std::string one_line(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

} // namespace

BoxAnswers::BoxAnswers(link::FrmDialog& link_question, std::ostream& out) : link_question_(link_question), out_(out) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { answer_open_question(); });
    timer_.start(look_ms);
}

void BoxAnswers::answer_open_question() {
    QWidget* open = QApplication::activeModalWidget();
    if (auto* box = qobject_cast<QMessageBox*>(open)) {
        const bool failed = box->icon() == QMessageBox::Warning || box->icon() == QMessageBox::Critical;
        failures_ += failed ? 1 : 0;
        const QString details = box->detailedText().isEmpty() ? QString() : " (" + box->detailedText() + ")";
        out_ << (failed ? "failed: " : "said: ") << one_line((box->text() + details).toStdString()) << std::endl;
        QPushButton* button = box->defaultButton();
        if (button == nullptr && !box->buttons().isEmpty()) {
            button = qobject_cast<QPushButton*>(box->buttons().first());
        }
        button != nullptr ? button->click() : box->reject();
    } else if (link_question_.form.visible()) {
        answer_link_question();
    } else if (auto* dialog = qobject_cast<QDialog*>(open)) {
        out_ << "cancelled: " << dialog->windowTitle().toStdString() << std::endl;
        dialog->reject();
    }
}

void BoxAnswers::answer_link_question() {
    ++failures_;
    const std::string& reason = link_question_.dialog_details.text();
    out_ << "failed: " << one_line(link_question_.dialog_caption.text() + (reason.empty() ? "" : " (" + reason + ")"))
         << std::endl;
    platform::Button* chosen = &link_question_.dialog_button[0];
    for (platform::Button& button : link_question_.dialog_button) {
        if (button.text() == "Demo") {
            chosen = &button;
        }
    }
    chosen->press();
}

} // namespace ecu::tour
