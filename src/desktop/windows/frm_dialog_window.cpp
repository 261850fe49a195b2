// The question of a link that does not answer, in the manner of a message box: what happened, the system's reason
// below it when there is one, and the answers.
#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "link/frm_dialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QStyle>

#include <algorithm>

namespace ecu::desktop {

namespace {

constexpr int text_width = 440;

// A label that breaks its text into lines and keeps room for exactly those; without a text it takes no room.
QLabel* lines(FormWindow& window, platform::Label& control, const char* name) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setFixedWidth(text_width);
    window.binding().bind_custom(
        control, label,
        [&control, label](platform::Property property) {
            if (property == platform::Property::text) {
                label->setText(qt(control.text()));
                label->setMinimumHeight(std::max(0, label->heightForWidth(text_width))); // -1 without a text
                label->setVisible(!control.text().empty());
            }
        },
        name);
    return label;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_dialog_window(link::FrmDialog& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    auto* body = new QWidget;
    auto* layout = new QGridLayout(body);
    layout->setContentsMargins(theme::gap, theme::gap, theme::gap, theme::margin);
    layout->setHorizontalSpacing(2 * theme::margin);
    layout->setVerticalSpacing(theme::margin);

    auto* sign = new QLabel;
    const int size = window->style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    sign->setPixmap(window->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    layout->addWidget(sign, 0, 0);
    QLabel* question = lines(*window, f.dialog_caption, "Question");
    QFont larger = question->font();
    larger.setPointSizeF(larger.pointSizeF() * 1.15);
    question->setFont(larger);
    layout->addWidget(question, 0, 1);
    QLabel* details = lines(*window, f.dialog_details, "Reason");
    theme::mute(*details);
    layout->addWidget(details, 1, 1);
    layout->setRowStretch(2, 1);

    window->set_body(body);
    window->set_footer(
        window->buttons({&f.dialog_button[0], &f.dialog_button[1], &f.dialog_button[2], &f.dialog_button[3]}));
    window->focus_first([&f]() -> platform::Control& { // never on the answer that ends the program
        return f.dialog_button[f.dialog_button[0].text() == "Exit" ? 1 : 0];
    });
    return window;
}

} // namespace ecu::desktop
