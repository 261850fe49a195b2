#include "desktop/qt_dialogs.h"

#include "desktop/qt_text.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

namespace ecu::desktop {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

namespace {

QMessageBox::StandardButtons standard_buttons(Buttons buttons) {
    switch (buttons) {
    case Buttons::ok:
        return QMessageBox::Ok;
    case Buttons::ok_cancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::yes_no:
        return QMessageBox::Yes | QMessageBox::No;
    case Buttons::yes_no_cancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon message_icon(Icon icon) {
    switch (icon) {
    case Icon::none:
        return QMessageBox::NoIcon;
    case Icon::information:
        return QMessageBox::Information;
    case Icon::question:
        return QMessageBox::Question;
    case Icon::warning:
        return QMessageBox::Warning;
    case Icon::critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton default_button(const platform::MessageBox& box) {
    const bool asks = box.buttons == Buttons::yes_no || box.buttons == Buttons::yes_no_cancel;
    switch (box.preset) {
    case Answer::no:
        return QMessageBox::No;
    case Answer::cancel:
        return QMessageBox::Cancel;
    case Answer::yes:
    case Answer::ok:
        return asks ? QMessageBox::Yes : QMessageBox::Ok;
    }
    return QMessageBox::Ok;
}

// What closing the box by Escape or its frame means.
Answer answer_of(int button, Buttons buttons) {
    switch (button) {
    case QMessageBox::Ok:
        return Answer::ok;
    case QMessageBox::Yes:
        return Answer::yes;
    case QMessageBox::No:
        return Answer::no;
    default:
        return buttons == Buttons::ok ? Answer::ok : buttons == Buttons::yes_no ? Answer::no : Answer::cancel;
    }
}

QString run(const platform::FileDialog& wanted, bool save) {
    QFileDialog dialog(QApplication::activeWindow(), qt(wanted.title));
    dialog.setObjectName("file_dialog");
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (QGuiApplication::platformName() == "offscreen" || qEnvironmentVariable("ECU_QT_FILE_DIALOG") == "1") {
        dialog.setOption(QFileDialog::DontUseNativeDialog);
    }
    const QString filter = qt_filter(wanted.filter);
    if (!filter.isEmpty()) {
        dialog.setNameFilters({filter, "All Files (*)"});
    }
    dialog.setDefaultSuffix(qt(wanted.default_extension));
    // "*.SET" only says what to look for, which the filter says already; a native dialog would take it for a name.
    const QString name = qt(wanted.initial_name);
    if (!name.isEmpty() && !name.contains('*')) {
        dialog.selectFile(name);
    }
    return dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty() ? dialog.selectedFiles().first()
                                                                                   : QString();
}

} // namespace

Answer QtDialogs::message_box(const platform::MessageBox& wanted) {
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName("message_box");
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(qt(wanted.title));
    box.setText(qt(wanted.text));
    box.setIcon(message_icon(wanted.icon));
    box.setStandardButtons(standard_buttons(wanted.buttons));
    box.setDefaultButton(default_button(wanted));
    if (!wanted.details.empty()) {
        box.setDetailedText(qt(wanted.details));
    }
    box.setAccessibleName(qt(wanted.text));
    return answer_of(box.exec(), wanted.buttons);
}

std::string QtDialogs::open_file(const platform::FileDialog& dialog) { return run(dialog, false).toStdString(); }

std::string QtDialogs::save_file(const platform::FileDialog& dialog) { return run(dialog, true).toStdString(); }

QString qt_filter(const std::string& filter) {
    QString text = qt(filter).section('|', 0, 0).trimmed();
    static const QRegularExpression pattern("\\(\\*\\.(\\w+)\\)");
    const auto match = pattern.match(text);
    if (match.hasMatch()) {
        const QString extension = match.captured(1);
        text.replace(match.captured(0), QString("(*.%1 *.%2)").arg(extension.toLower(), extension.toUpper()));
    }
    return text;
}

} // namespace ecu::desktop
