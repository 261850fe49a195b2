// One Alt key, one action: a key that stands on two things in a window only moves the focus between them, and a menu
// with a doubled letter never runs the second item.
#include "desktop/access_keys.h"
#include "desktop/windows/desktop_console.h"

#include "desktop/form_window.h"
#include "window_bench.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMenuBar>

#include <map>

namespace ecu::desktop {
namespace {

class Keys {
public:
    explicit Keys(const QString& where) : where_(where.toStdString()) {}
    void add(const QString& text) {
        const QChar key = access_key(text);
        if (!key.isNull()) {
            const auto [place, is_new] = taken_.try_emplace(key, text.toStdString());
            EXPECT_TRUE(is_new) << where_ << ": \"" << place->second << "\" and \"" << text.toStdString() << "\"";
        }
    }

private:
    std::string where_;
    std::map<QChar, std::string> taken_;
};

void walk_menu(const QMenu& menu, const QString& where) {
    Keys keys(where + " > " + menu.title());
    for (const QAction* action : menu.actions()) {
        keys.add(action->text());
        if (action->menu() != nullptr) {
            walk_menu(*action->menu(), where + " > " + menu.title());
        }
    }
}

TEST(Accelerators, TheFirstClaimHoldsAndOthersMoveToAFreeLetter) {
    EXPECT_EQ(distinct_access_keys({"&Reset", "&Remote Setup", "&Edit", "Save && &run"}),
              (QStringList{"&Reset", "Re&mote Setup", "&Edit", "&Save && run"}));
    EXPECT_EQ(distinct_access_keys({"&A", "&A", "plain", "&a-b"}), (QStringList{"&A", "A", "plain", "a-&b"}));
}

TEST(Accelerators, EveryAltKeyOfAWindowAndOfAMenuStandsOnce) {
    DesktopConsole desktop;
    int windows = 0;
    for (platform::Form* form : desktop.console().forms.registry.forms()) {
        if (!desktop.host().has_window(*form)) {
            continue;
        }
        const FormWindow* window = &desktop.host().window_of(*form);
        ++windows;
        Keys keys(window->objectName());
        for (const QAction* action : window->menuBar()->actions()) {
            keys.add(action->text());
            if (action->menu() != nullptr) {
                walk_menu(*action->menu(), window->objectName());
            }
        }
        for (const QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            keys.add(button->text());
        }
    }
    EXPECT_GE(windows, 12);
}

} // namespace
} // namespace ecu::desktop
