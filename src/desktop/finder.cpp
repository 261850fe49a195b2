#include "desktop/finder.h"

#include "desktop/form_window.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QApplication>
#include <QDialog>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <set>

namespace ecu::desktop {

using link::View;
using platform::Kind;

namespace {

constexpr std::size_t most_shown = 60;
constexpr int look_again_ms = 50;
constexpr int most_looks = 400; // 20 s: a view opens with its reads behind it
constexpr const char* between = " > ";

QString plain(const std::string& text) { return qt(text).remove('&'); }

// What a user looks for; the rest is layout, or belongs to what stands beside it.
bool can_be_found(const platform::Control& control) {
    switch (control.kind()) {
    case Kind::label:
    case Kind::text_box:
    case Kind::check_box:
    case Kind::option_button:
    case Kind::button:
    case Kind::grid:
    case Kind::gauge:
    case Kind::list:
        return true;
    default:
        return false;
    }
}

// The pages and panels around the widget, outermost first.
QStringList surroundings(const QWidget& widget) {
    QStringList places;
    for (QWidget* around = widget.parentWidget(); around != nullptr; around = around->parentWidget()) {
        if (const auto* box = qobject_cast<QGroupBox*>(around); box != nullptr && !box->title().isEmpty()) {
            places.prepend(QString(box->title()).remove('&'));
        } else if (const auto* tabs = qobject_cast<QTabWidget*>(around)) {
            for (int i = 0; i < tabs->count(); ++i) {
                if (tabs->widget(i)->isAncestorOf(&widget)) {
                    places.prepend(QString(tabs->tabText(i)).remove('&'));
                }
            }
        }
    }
    return places;
}

void turn_to(QWidget& widget) {
    for (QWidget* around = widget.parentWidget(); around != nullptr; around = around->parentWidget()) {
        if (auto* tabs = qobject_cast<QTabWidget*>(around)) {
            for (int i = 0; i < tabs->count(); ++i) {
                if (tabs->widget(i)->isAncestorOf(&widget)) {
                    tabs->setCurrentIndex(i);
                }
            }
        }
    }
}

// Up and Down move in the list while the words keep the focus.
class Words final : public QLineEdit {
public:
    explicit Words(QListWidget& list) : list_(list) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int step = event->key() == Qt::Key_Down ? 1 : event->key() == Qt::Key_Up ? -1 : 0;
        if (step == 0) {
            QLineEdit::keyPressEvent(event);
        } else if (list_.count() > 0) {
            list_.setCurrentRow(std::clamp(list_.currentRow() + step, 0, list_.count() - 1));
        }
    }

private:
    QListWidget& list_;
};

} // namespace

Finder::Finder(QtHost& host, shell::Navigation& navigation, shell::FrmEcu& main, const link::SharedState& state)
    : host_(host), navigation_(navigation), main_(main), state_(state) {
    main_.menu_view_find.clicked = [this] { ask(); };
    qApp->installEventFilter(this);
}

bool Finder::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    const auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() != Qt::Key_K || key.modifiers() != Qt::ControlModifier || QApplication::activeModalWidget()) {
        return false;
    }
    event->accept();
    if (event->type() == QEvent::KeyPress) {
        ask();
    }
    return true;
}

const std::vector<shell::Findable>& Finder::items() {
    if (items_.empty()) {
        gather();
    }
    return items_;
}

void Finder::gather() {
    for (const auto& [view, button] : std::to_array<std::pair<View, const platform::Button*>>(
             {{View::monitor, &main_.monitor_button},
              {View::dashboard, &main_.dashboard_button},
              {View::configuration, &main_.configuration_button},
              {View::basic_mapping, &main_.basic_map_button},
              {View::additional_mapping, &main_.additional_map_button},
              {View::gpo_mapping, &main_.gpo_button},
              {View::plotter, &main_.plotter_button},
              {View::diagnostics, &main_.diagnostics_button}})) {
        if (navigation_.form_of(view) != nullptr) {
            gather_view(view, plain(button->text()));
        }
    }
    gather_commands();
}

void Finder::gather_view(View view, const QString& title) {
    platform::Form& form = *navigation_.form_of(view);
    FormWindow& window = host_.window_of(form);
    std::set<QString> known; // the elements of an array that are called alike are found by their first
    for (platform::Control* control : form.controls()) {
        const QWidget* widget = window.binding().widget_of(*control);
        if (widget == nullptr || !can_be_found(*control) ||
            (control->kind() == Kind::label && !window.binding().has_caption(*control))) {
            continue;
        }
        const QString place = (QStringList{title} + surroundings(*widget)).join(between);
        if (known.insert(widget->accessibleName() + '\n' + place).second) {
            add({view, control}, widget->accessibleName(), place, plain(control->tool_tip()));
        }
    }
}

void Finder::gather_commands() {
    for (platform::Control* control : main_.form.controls()) {
        auto* item = dynamic_cast<platform::MenuItem*>(control);
        const bool leads_on = std::ranges::any_of(main_.form.controls(), [item](const platform::Control* other) {
            const auto* below = dynamic_cast<const platform::MenuItem*>(other);
            return below != nullptr && below->parent() == item;
        });
        if (item == nullptr || leads_on || item == &main_.menu_view_find) {
            continue;
        }
        QStringList place;
        for (const platform::MenuItem* above = item->parent(); above != nullptr; above = above->parent()) {
            place.prepend(plain(above->text()));
        }
        place.prepend("Menu");
        add({View::none, item}, plain(item->text()), place.join(between), plain(item->tool_tip()));
    }
}

void Finder::add(const Target& target, const QString& name, const QString& place, const QString& about) {
    items_.push_back({name.simplified().toStdString(), place.toStdString(), about.toStdString()});
    targets_.push_back(target);
}

void Finder::ask() {
    if (dialog_ != nullptr) {
        dialog_->raise();
        return;
    }
    items();
    dialog_ = new QDialog(QApplication::activeWindow());
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    dialog_->setObjectName("find");
    dialog_->setWindowTitle("Find");
    auto* layout = new QVBoxLayout(dialog_);
    auto* list = new QListWidget;
    auto* words = new Words(*list);
    words->setObjectName("find_words");
    words->setAccessibleName("Words to find");
    words->setPlaceholderText("Any box, map, figure or command: accel, lambda target, port...");
    words->setToolTip("Some words of the name, the window or the tip; Up and Down choose, Enter opens, Escape closes");
    words->setClearButtonEnabled(true);
    list->setObjectName("find_list");
    list->setAccessibleName("What was found");
    list->setFocusPolicy(Qt::NoFocus);
    auto* about = new QLabel;
    about->setWordWrap(true);
    about->setMinimumHeight(2 * about->fontMetrics().lineSpacing());
    about->setAccessibleName("About it");
    theme::mute(*about);
    layout->addWidget(words);
    layout->addWidget(list, 1);
    layout->addWidget(about);
    const auto show = [this, list, about](const QString& query) {
        list->clear();
        for (const std::size_t n : shell::find_items(items_, query.toStdString(), most_shown)) {
            auto* item =
                new QListWidgetItem(qt(items_[n].name) + QString::fromUtf8("   \u2013   ") + qt(items_[n].place));
            item->setData(Qt::UserRole, static_cast<qulonglong>(n));
            list->addItem(item);
        }
        list->setCurrentRow(0);
        about->setText(list->count() > 0 || query.trimmed().isEmpty() ? about->text()
                                                                      : "Nothing has these words. Try fewer.");
    };
    QObject::connect(words, &QLineEdit::textChanged, dialog_, show);
    QObject::connect(list, &QListWidget::currentItemChanged, dialog_, [this, about](const QListWidgetItem* item) {
        about->setText(item == nullptr ? QString() : qt(items_[item->data(Qt::UserRole).toULongLong()].about));
    });
    const auto choose = [this, list] {
        if (const QListWidgetItem* item = list->currentItem()) {
            const auto n = static_cast<std::size_t>(item->data(Qt::UserRole).toULongLong());
            dialog_->close();
            QTimer::singleShot(0, this, [this, n] { open(n); });
        }
    };
    QObject::connect(words, &QLineEdit::returnPressed, dialog_, choose);
    QObject::connect(list, &QListWidget::itemClicked, dialog_, choose);
    dialog_->resize(640, 420);
    dialog_->setModal(true);
    dialog_->show();
    words->setFocus();
}

void Finder::open(std::size_t n) {
    const Target target = targets_.at(n);
    const bool between_views = !main_.form.visible() && state_.current_view == View::none;
    if (between_views) {
        return; // the flash utility or the server has the line; its own window leads back
    }
    if (target.view != View::none) {
        navigation_.go_to(target.view);
    } else if (!main_.form.visible()) {
        navigation_.go_to(View::none);
    }
    arrive(target, most_looks);
}

// The window comes when the link lets it.
void Finder::arrive(const Target& target, int tries_left) {
    const bool there = target.view == View::none ? main_.form.visible() : target.control->form().visible();
    if (!there) {
        if (tries_left > 0) {
            QTimer::singleShot(look_again_ms, this, [this, target, tries_left] { arrive(target, tries_left - 1); });
        }
        return;
    }
    if (target.view == View::none) {
        static_cast<platform::MenuItem&>(*target.control).click();
        return;
    }
    QWidget& widget = *host_.window_of(target.control->form()).binding().widget_of(*target.control);
    turn_to(widget);
    widget.window()->activateWindow();
    if (widget.focusPolicy() != Qt::NoFocus) {
        widget.setFocus(Qt::TabFocusReason);
    } else {
        QToolTip::showText(widget.mapToGlobal(widget.rect().center()), widget.accessibleName(), &widget);
    }
}

} // namespace ecu::desktop
