#include "desktop/side_tabs.h"

#include "desktop/form_window.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QShortcut>
#include <QStyleOptionTab>
#include <QTabBar>

#include <algorithm>

namespace ecu::desktop {

namespace {

constexpr int dot = 8;

class SideTabBar final : public QTabBar {
public:
    explicit SideTabBar(const platform::Tabs& control) : control_(control) {
        setMouseTracking(true);
        setDrawBase(false);
        setExpanding(false);
        setFocusPolicy(Qt::StrongFocus);
    }

protected:
    QSize tabSizeHint(int) const override {
        int widest = 0;
        for (int i = 0; i < count(); ++i) {
            widest = std::max(widest, fontMetrics().horizontalAdvance(tabText(i)));
        }
        return {widest + 4 * theme::gap + dot, fontMetrics().height() + 9};
    }
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const int under_pointer = tabAt(mapFromGlobal(QCursor::pos()));
        for (int i = 0; i < count(); ++i) {
            const QRect field = tabRect(i);
            const bool chosen = i == currentIndex();
            if (chosen || i == under_pointer) {
                painter.fillRect(field, chosen ? theme::panel_fill(palette()) : theme::panel_edge(palette()));
            }
            if (chosen) {
                painter.fillRect(QRect(field.left(), field.top(), 3, field.height()), theme::accent(palette()));
            }
            if (chosen && hasFocus()) {
                painter.setPen(QPen(theme::accent(palette()), 1));
                painter.setBrush(Qt::NoBrush);
                painter.drawRect(QRectF(field).adjusted(0.5, 0.5, -0.5, -0.5));
            }
            painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
            painter.drawText(field.adjusted(2 * theme::gap, 0, -theme::gap - dot, 0), Qt::AlignLeft | Qt::AlignVCenter,
                             tabText(i));
            if (control_.pending_on(i) > 0) {
                painter.setPen(palette().color(QPalette::WindowText));
                painter.setBrush(theme::to_qt(platform::pending));
                painter.drawEllipse(QRectF(field.right() - theme::gap - dot, field.center().y() - dot / 2.0, dot, dot));
            }
        }
    }

    void keyPressEvent(QKeyEvent* event) override {
        const bool up = event->key() == Qt::Key_Up;
        if (event->modifiers() == Qt::NoModifier && (up || event->key() == Qt::Key_Down)) {
            setCurrentIndex(std::clamp(currentIndex() + (up ? -1 : 1), 0, count() - 1));
            return;
        }
        QTabBar::keyPressEvent(event);
    }

private:
    const platform::Tabs& control_;
};

// The page's own scroll area; its content keeps the width that the window has for it.
class Page final : public QScrollArea {
public:
    explicit Page(QWidget* content) {
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        content->setContentsMargins(theme::margin, 0, theme::margin, 0);
        setWidget(content);
    }
    QSize sizeHint() const override { return widget()->sizeHint() + QSize(16, 16); }
    QSize minimumSizeHint() const override { return {200, 120}; }
};

} // namespace

SideTabs* SideTabs::make(FormWindow& window, platform::Tabs& control,
                         const std::vector<std::pair<QString, QWidget*>>& pages) {
    auto* tabs = new SideTabs(control);
    for (const auto& [title, page] : pages) {
        tabs->add_page(title, page);
    }
    window.binding().bind_custom(
        control, tabs,
        [tabs](platform::Property property) {
            if (property == platform::Property::value) {
                tabs->setCurrentIndex(tabs->control_.current());
            } else if (property == platform::Property::content) {
                tabs->show_pending();
            }
        },
        qt(window.form().caption()));
    window.follow_tabs(control, *tabs);
    return tabs;
}

SideTabs::SideTabs(platform::Tabs& control) : control_(control) {
    setTabBar(new SideTabBar(control));
    setTabPosition(QTabWidget::West);
    setDocumentMode(true);
    setFocusProxy(tabBar());
    for (const auto& [keys, by] : {std::pair{QKeySequence(Qt::CTRL | Qt::Key_PageDown), 1},
                                   {QKeySequence(Qt::CTRL | Qt::Key_PageUp), -1},
                                   {QKeySequence(Qt::CTRL | Qt::Key_Tab), 1},
                                   {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), -1}}) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WindowShortcut);
        QObject::connect(shortcut, &QShortcut::activated, this, [this, by = by] { step(by); });
    }
}

QSize SideTabs::minimumSizeHint() const { return {tabBar()->sizeHint().width() + 200, tabBar()->sizeHint().height()}; }

void SideTabs::add_page(const QString& title, QWidget* page) {
    addTab(new Page(page), title);
    tabBar()->setTabToolTip(count() - 1, title);
}

// Round from the last page to the first. The keyboard goes along, to the list: the box it was in is hidden.
void SideTabs::step(int by) {
    setCurrentIndex((currentIndex() + by + count()) % count());
    tabBar()->setFocus(Qt::TabFocusReason);
}

void SideTabs::show_pending() {
    for (int i = 0; i < count(); ++i) {
        const int pending = control_.pending_on(i);
        const QString tell =
            pending == 1 ? QStringLiteral("1 value pending") : QString("%1 values pending").arg(pending);
        tabBar()->setTabToolTip(i, pending == 0 ? tabText(i) : tabText(i) + ": " + tell);
    }
    tabBar()->update();
}

} // namespace ecu::desktop
