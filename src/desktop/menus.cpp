// The menu bar of a form, built from its menu items alone: order of declaration, access keys from the texts.
#include "desktop/access_keys.h"
#include "desktop/binding.h"
#include "desktop/qt_text.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <set>

namespace ecu::desktop {

using platform::MenuItem;
using platform::Property;

namespace {

// The item's text, with an access key that no item beside it has.
QString text_of(const MenuItem& item) {
    QStringList texts;
    qsizetype own = 0;
    for (const platform::Control* control : item.form().controls()) {
        const auto* beside = dynamic_cast<const MenuItem*>(control);
        if (beside != nullptr && beside->parent() == item.parent()) {
            own = beside == &item ? texts.size() : own;
            texts.append(qt(beside->text()));
        }
    }
    return distinct_access_keys(texts).at(own);
}

void show_item(const MenuItem& item, QAction& action, Property property) {
    switch (property) {
    case Property::text:
        action.setText(text_of(item));
        break;
    case Property::enabled:
        action.setEnabled(item.enabled());
        break;
    case Property::visible:
        action.setVisible(item.visible());
        break;
    case Property::tool_tip:
        action.setToolTip(qt(item.tool_tip().empty() ? item.text() : item.tool_tip()).remove('&'));
        break;
    default:
        break;
    }
}

} // namespace

// Once one item of an array has carried the mark, all of them keep the box for it: a choice looks like one.
void Binding::mark(const MenuItem& item, QAction& action) {
    if (item.checked() && !action.isCheckable()) {
        for (const auto& [control, bound] : bound_) {
            if (control->name() == item.name()) {
                bound.action->setCheckable(true);
            }
        }
    }
    action.setChecked(item.checked());
}

void Binding::build_menus(QMenuBar& bar) {
    bar.setNativeMenuBar(false);
    bar.installEventFilter(this);
    std::set<const MenuItem*> parents;
    for (platform::Control* control : form_.controls()) {
        if (const auto* item = dynamic_cast<MenuItem*>(control)) {
            parents.insert(item->parent());
        }
    }
    std::map<const MenuItem*, QMenu*> menus;
    for (platform::Control* control : form_.controls()) {
        auto* item = dynamic_cast<MenuItem*>(control);
        if (item == nullptr) {
            continue;
        }
        QMenu* above = item->parent() != nullptr ? menus.at(item->parent()) : nullptr;
        QWidget& place = above != nullptr ? static_cast<QWidget&>(*above) : bar;
        if (item->separator_before) {
            auto* separator = new QAction(&place);
            separator->setSeparator(true);
            place.addAction(separator);
        }
        QAction* action = nullptr;
        if (parents.contains(item)) {
            auto* menu = new QMenu(&place);
            menu->setToolTipsVisible(true); // a disabled item says why
            menu->setObjectName(qt(item->full_name()));
            menus.emplace(item, menu);
            connect(menu, &QMenu::aboutToShow, this, [item] { item->click(); });
            action = menu->menuAction();
        } else {
            action = new QAction(&place);
            connect(action, &QAction::triggered, this, [item, action] {
                action->setChecked(item->checked()); // a click alone never moves the mark
                item->click();
            });
        }
        action->setMenuRole(QAction::NoRole);
        if (!item->shortcut.empty()) {
            action->setShortcut(QKeySequence(qt(item->shortcut)));
        }
        action->setObjectName(qt(item->full_name()));
        place.addAction(action);
        Bound& bound = add(*item);
        bound.action = action;
        bound.update = [this, item, action](Property property) {
            property == Property::checked ? mark(*item, *action) : show_item(*item, *action, property);
        };
        for (const Property property : {Property::text, Property::enabled, Property::visible, Property::tool_tip}) {
            bound.update(property);
        }
    }
    for (platform::Control* control : form_.controls()) { // when every item of an array is there
        if (control->kind() == platform::Kind::menu_item) {
            refresh(*control, Property::checked);
        }
    }
}

} // namespace ecu::desktop
