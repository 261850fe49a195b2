// The choice of the windows' looks: theme and large digits, from the View menu of the main window and by F9 in every
// window, at once. The choice is remembered.
#pragma once

#include "desktop/remembered.h"
#include "desktop/theme.h"
#include "shell/frm_ecu.h"

#include <QObject>

namespace ecu::desktop {

class Appearance final : public QObject {
public:
    // Takes up what was remembered. All three must outlive it.
    Appearance(shell::FrmEcu& main, Remembered& remembered);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; // of the application: F9 and Shift+F9

private:
    void choose(theme::Theme theme);
    void choose_large_digits(bool large);

    shell::FrmEcu& main_;
    Remembered& remembered_;
    theme::Theme theme_ = theme::Theme::system;
};

} // namespace ecu::desktop
