// What stands behind the forms on a desktop: a window per form, built when the form first shows. Activation is run
// from the event loop after the window is up; a modal form holds the other windows until it hides.
#pragma once

#include "desktop/remembered.h"
#include "platform/form.h"

#include <QObject>

#include <functional>
#include <memory>
#include <set>
#include <unordered_map>

namespace ecu::desktop {

class FormWindow;

class QtHost final : public platform::FormHost {
public:
    using Factory = std::function<std::unique_ptr<FormWindow>()>;

    // Where windows keep their sizes and tabs; none: they forget them with the host.
    explicit QtHost(Remembered* remembered = nullptr);
    ~QtHost() override;
    QtHost(const QtHost&) = delete;
    QtHost& operator=(const QtHost&) = delete;

    // How to build the form's window. The form must outlive the host.
    void add(platform::Form& form, Factory factory);
    bool has_window(const platform::Form& form) const { return factories_.contains(&form) || windows_.contains(&form); }
    // The window, built now if it was not. Throws std::logic_error for a form that was never added.
    FormWindow& window_of(platform::Form& form);

    Remembered& remembered() { return *remembered_; }

    // A window registers itself when it is built and leaves when it goes.
    void attach(platform::Form& form, FormWindow& window);
    void detach(platform::Form& form);

    void form_shown(platform::Form& form) override;
    void form_hidden(platform::Form& form) override;
    void form_changed(platform::Form& form, platform::FormChange change) override;
    void run_modal(platform::Form& form) override;
    void control_changed(platform::Control& control, platform::Property property) override;

private:
    void queue_activation(platform::Form& form);

    Remembered forgotten_;
    Remembered* remembered_;
    std::unordered_map<const platform::Form*, Factory> factories_;
    std::unordered_map<const platform::Form*, FormWindow*> windows_;
    std::unordered_map<const platform::Form*, std::unique_ptr<FormWindow>> owned_;
    std::set<const platform::Form*> activating_;
    std::unordered_map<const platform::Form*, std::function<void()>> modal_ends_;
    std::set<const platform::Form*> waiting_pointer_;
    QObject queue_; // what waits for the next events goes with the host
};

} // namespace ecu::desktop
