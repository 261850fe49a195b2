// Tabs at the left side, one below the other with level texts, for more pages than fit side by side. A page's dot tells
// that values of it are pending. Ctrl+Tab, Ctrl+PageDown and Ctrl+PageUp change the page from anywhere in the window,
// the arrows when the list has the keyboard. Each page scrolls by itself.
#pragma once

#include "platform/control.h"

#include <QString>
#include <QTabWidget>

#include <utility>
#include <vector>

namespace ecu::desktop {

class FormWindow;

class SideTabs final : public QTabWidget {
public:
    // Bound to the control; the window owns the result.
    static SideTabs* make(FormWindow& window, platform::Tabs& control,
                          const std::vector<std::pair<QString, QWidget*>>& pages);
    QSize minimumSizeHint() const override; // as small as the screen demands

private:
    explicit SideTabs(platform::Tabs& control);
    void add_page(const QString& title, QWidget* page);
    void step(int by);
    void show_pending();

    platform::Tabs& control_;
};

} // namespace ecu::desktop
