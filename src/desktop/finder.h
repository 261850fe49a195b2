// Ctrl+K in any window: any box, map, figure or command by words. Choosing one opens its window as its menu does, turns
// to its tab and puts the focus there. What can be found is what the windows themselves show, under the names that they
// give it: there is no second list.
#pragma once

#include "desktop/qt_host.h"
#include "shell/find.h"
#include "shell/frm_ecu.h"
#include "shell/navigation.h"

#include <QObject>
#include <QPointer>

class QAction;
class QDialog;

namespace ecu::desktop {

class Finder final : public QObject {
public:
    Finder(QtHost& host, shell::Navigation& navigation, shell::FrmEcu& main, const link::SharedState& state);

    void ask();                                  // the window with the words
    void open(std::size_t n);                    // the item of that number, as if it had been chosen
    const std::vector<shell::Findable>& items(); // gathered now if they were not

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; // of the application: Ctrl+K

private:
    struct Target {
        link::View view = link::View::none;
        platform::Control* control = nullptr; // of that view, or a menu item of the main window
    };

    void gather();
    void gather_view(link::View view, const QString& title);
    void gather_commands();
    void add(const Target& target, const QString& name, const QString& place, const QString& about);
    void arrive(const Target& target, int tries_left);

    QtHost& host_;
    shell::Navigation& navigation_;
    shell::FrmEcu& main_;
    const link::SharedState& state_;
    std::vector<shell::Findable> items_;
    std::vector<Target> targets_; // of each item
    QPointer<QDialog> dialog_;
};

} // namespace ecu::desktop
