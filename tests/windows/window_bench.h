// What the tests of windows share: the picture of a window, its widgets by name, and letting events through.
#pragma once

#include "desktop/form_window.h"
#include "desktop/qt_host.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTest>

#include <gtest/gtest.h>

namespace ecu::desktop {

// Saved to the folder ECU_PICTURES, if that is set, for people to look at.
inline void save_picture(FormWindow& window, QSize size = {}) {
    const QString folder = qEnvironmentVariable("ECU_PICTURES");
    if (size.isValid()) {
        window.resize(size);
    }
    QTest::qWait(1);
    if (!folder.isEmpty()) {
        QDir().mkpath(folder);
        EXPECT_TRUE(window.grab().save(folder + "/" + window.objectName() + ".png"));
    }
}

// The widget that carries the control's name; fails the test when the window has none.
template <typename Widget> Widget& named(FormWindow& window, const char* name) {
    auto* widget = window.findChild<Widget*>(name);
    if (widget == nullptr) {
        ADD_FAILURE() << window.objectName().toStdString() << " has no " << name;
        std::abort();
    }
    return *widget;
}

// What must hold of every window: all controls bound, each under its name and with something for a screen reader.
inline void expect_complete(FormWindow& window) {
    for (const platform::Control* control : window.binding().unbound()) {
        ADD_FAILURE() << control->full_name() << " of " << control->form().name() << " is not bound";
    }
    for (const platform::Control* control : window.form().controls()) {
        if (const QWidget* widget = window.binding().widget_of(*control)) {
            EXPECT_EQ(widget->objectName().toStdString(), control->full_name());
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << control->full_name();
        }
    }
}

} // namespace ecu::desktop
