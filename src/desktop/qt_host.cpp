#include "desktop/qt_host.h"

#include "desktop/form_window.h"

#include <QApplication>
#include <QEventLoop>
#include <QWindow>

#include <stdexcept>

namespace ecu::desktop {

using platform::Form;
using platform::FormChange;

QtHost::QtHost(Remembered* remembered) : remembered_(remembered != nullptr ? remembered : &forgotten_) {
    QApplication::setQuitOnLastWindowClosed(false);
}

QtHost::~QtHost() = default;

void QtHost::add(Form& form, Factory factory) {
    factories_[&form] = std::move(factory);
    form.set_host(this);
}

FormWindow& QtHost::window_of(Form& form) {
    if (const auto built = windows_.find(&form); built != windows_.end()) {
        return *built->second;
    }
    const auto factory = factories_.find(&form);
    if (factory == factories_.end()) {
        throw std::logic_error("form " + form.name() + " has no window");
    }
    auto window = factory->second();
    FormWindow& result = *window;
    owned_[&form] = std::move(window);
    return result;
}

void QtHost::attach(Form& form, FormWindow& window) {
    windows_[&form] = &window;
    form.set_host(this);
}

void QtHost::detach(Form& form) { windows_.erase(&form); }

void QtHost::queue_activation(Form& form) {
    if (!activating_.insert(&form).second) {
        return;
    }
    QMetaObject::invokeMethod(
        &queue_,
        [this, &form] {
            activating_.erase(&form);
            form.activate();
        },
        Qt::QueuedConnection);
}

void QtHost::form_shown(Form& form) {
    FormWindow& window = window_of(form);
    window.setWindowModality(Qt::NonModal);
    window.open();
    queue_activation(form);
}

void QtHost::form_hidden(Form& form) {
    if (const auto window = windows_.find(&form); window != windows_.end()) {
        window->second->put_away();
    }
    if (const auto end = modal_ends_.find(&form); end != modal_ends_.end()) {
        end->second();
    }
}

void QtHost::run_modal(Form& form) {
    FormWindow& window = window_of(form);
    window.setWindowModality(Qt::ApplicationModal);
    QEventLoop loop;
    modal_ends_[&form] = [&loop] { loop.quit(); };
    window.open();
    queue_activation(form);
    loop.exec();
    modal_ends_.erase(&form);
    window.setWindowModality(Qt::NonModal);
}

void QtHost::form_changed(Form& form, FormChange change) {
    if (change == FormChange::pointer) {
        const bool was_waiting = !waiting_pointer_.empty();
        form.hourglass() ? static_cast<void>(waiting_pointer_.insert(&form))
                         : static_cast<void>(waiting_pointer_.erase(&form));
        if (!was_waiting && !waiting_pointer_.empty()) {
            QApplication::setOverrideCursor(Qt::WaitCursor);
        } else if (was_waiting && waiting_pointer_.empty()) {
            QApplication::restoreOverrideCursor();
        }
        return;
    }
    const auto found = windows_.find(&form);
    if (found == windows_.end()) {
        return; // a window that is built later starts from the form as it is then
    }
    FormWindow& window = *found->second;
    switch (change) {
    case FormChange::caption:
        window.show_caption();
        break;
    case FormChange::enabled:
        window.setEnabled(form.enabled());
        break;
    case FormChange::raise:
        window.raise();
        window.activateWindow();
        break;
    case FormChange::pointer:
        break;
    }
}

void QtHost::control_changed(platform::Control& control, platform::Property property) {
    if (const auto window = windows_.find(&control.form()); window != windows_.end()) {
        window->second->binding().refresh(control, property);
    }
}

} // namespace ecu::desktop
