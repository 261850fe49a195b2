// The plain widgets that a binding makes, one function for each kind of control: what the user does goes to the control
// as its classic event, and what the control then holds is shown, whatever the widget had made of it.
#include "desktop/binding.h"
#include "desktop/panel.h"
#include "desktop/qt_text.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextCursor>

namespace ecu::desktop {

using platform::Property;

QWidget* Binding::make_label(platform::Label& control) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    bind_custom(control, label, [&control, label](Property property) {
        if (property == Property::text) {
            label->setText(qt(control.text()));
        }
    });
    return label;
}

QWidget* Binding::make_text_box(platform::TextBox& control) {
    auto* edit = new QLineEdit;
    connect(edit, &QLineEdit::textEdited, this,
            [&control](const QString& text) { control.set_text(text.toStdString()); });
    bind_custom(control, edit, [&control, edit](Property property) {
        if (property == Property::text && edit->text() != qt(control.text())) {
            edit->setText(qt(control.text()));
            edit->setCursorPosition(0); // a long text is read from its beginning
        } else if (property != Property::back_colour || control.is_pending() || !edit->isModified()) {
            return; // what the user has selected in a value that stays is left alone
        }
        edit->setModified(false);
        if (edit->window()->focusWidget() == edit) {
            edit->selectAll(); // the program's value, or the user's own confirmed: typing replaces it
        }
    });
    return edit;
}

QWidget* Binding::make_text_area(platform::TextBox& control) {
    auto* area = new QPlainTextEdit;
    area->setReadOnly(true);
    area->setTabChangesFocus(true);
    bind_custom(control, area, [&control, area](Property property) {
        if (property != Property::text) {
            return;
        }
        const QString text = qt(control.text());
        const QString shown = area->toPlainText();
        if (!shown.isEmpty() && text.startsWith(shown)) { // what is selected or scrolled to stays so
            const QScrollBar* bar = area->verticalScrollBar();
            const bool at_end = bar->value() == bar->maximum();
            QTextCursor end(area->document());
            end.movePosition(QTextCursor::End);
            end.insertText(text.mid(shown.size()));
            if (at_end) {
                area->verticalScrollBar()->setValue(bar->maximum());
            }
        } else if (text != shown) {
            area->setPlainText(text);
        }
    });
    return area;
}

QWidget* Binding::make_check_box(platform::CheckBox& control) {
    auto* box = new QCheckBox;
    connect(box, &QCheckBox::clicked, this, [&control, box] {
        control.click();
        box->setChecked(control.checked());
    });
    bind_custom(control, box, [&control, box](Property property) {
        if (property == Property::text) {
            box->setText(qt(control.text()));
        } else if (property == Property::checked) {
            box->setChecked(control.checked());
        }
    });
    return box;
}

QWidget* Binding::make_option(platform::OptionButton& control) {
    auto* option = new QRadioButton;
    QButtonGroup*& options = groups_[control.name()];
    if (options == nullptr) {
        options = new QButtonGroup(this);
    }
    options->addButton(option, control.index());
    const auto show = [&control, option, options = options] {
        options->setExclusive(false); // an exclusive group would not let the last one go
        option->setChecked(control.checked());
        options->setExclusive(true);
    };
    connect(option, &QRadioButton::clicked, this, [&control, show] {
        control.click();
        show();
    });
    bind_custom(control, option, [&control, option, show](Property property) {
        if (property == Property::text) {
            option->setText(qt(control.text()));
        } else if (property == Property::checked) {
            show();
        }
    });
    return option;
}

QWidget* Binding::make_button(platform::Button& control) {
    auto* button = new QPushButton;
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [&control] { control.press(); });
    bind_custom(control, button, [&control, button](Property property) {
        if (property == Property::text) {
            button->setText(qt(control.text()));
        }
    });
    return button;
}

QWidget* Binding::make_scroll_bar(platform::ScrollBar& control) {
    auto* bar = new QScrollBar(Qt::Horizontal);
    bar->setRange(control.minimum(), control.maximum());
    bar->setFocusPolicy(Qt::StrongFocus);
    connect(bar, &QScrollBar::valueChanged, this, [&control](int value) { control.set_value(value); });
    bind_custom(control, bar, [&control, bar](Property property) {
        if (property == Property::value) {
            const QSignalBlocker quiet(bar);
            bar->setValue(control.value());
        }
    });
    return bar;
}

QWidget* Binding::make_frame(platform::Frame& control) {
    auto* box = new PanelBox(qt(control.text()));
    bind_custom(control, box, [&control, box](Property property) {
        if (property == Property::text) {
            box->setTitle(qt(control.text()));
        }
    });
    return box;
}

} // namespace ecu::desktop
