// The window of one form. A window file holds no rule, message or number: it lists captions, controls and panels in
// the order in which they stand, and this class makes the widgets, binds them and lays them out.
//
// How to write a window (one file, one function, declared in windows/windows.h):
//
//     std::unique_ptr<FormWindow> make_frm_mon_window(views::FrmMon& f, QtHost& host) {
//         auto window = std::make_unique<FormWindow>(f.form, host);    // menu bar, title, name: from the form
//         Panel engine = window->panel("Engine");
//         engine.figure("Engine Speed", f.ECU_Data[0], "RPM");         // caption, large figure, unit
//         engine.row("Throttle", f.throttle, "%");                     // caption, plain widget of its kind, unit
//         engine.boxes("Gain", each(f.gain));                          // an array side by side
//         Panel options = window->frame(f.Frame1);                     // a Frame control as a panel
//         options.column(each(f.mode));                                // option buttons downwards
//         window->set_body(window->across({engine, options}));         // or down({...}), nested as needed
//         window->set_footer(window->buttons({&f.update_button, &f.exit_button}));
//         window->demo_badge(f.show_demo_mode);
//         return window;
//     }
//
// Grid, Picture, ScrollBar: panel.add(f.inj_map, "Fuel map", 1) makes the widget and binds it. Gauge, StripChart, Shape
// and whatever has a widget of its own: window->binding().bind_custom(control, widget, update). A control that has no
// place on the screen: window->keep_hidden(control). Every control of the form must be bound one way or another.
#pragma once

#include "desktop/binding.h"
#include "desktop/panel.h"

#include <QMainWindow>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

class QBoxLayout;
class QScrollArea;
class QTabWidget;
class QVBoxLayout;

namespace ecu::desktop {

class FigureLabel;
class QtHost;

enum class WindowKind : std::uint8_t {
    view,   // a full window, resizable, its body scrolling when the screen is too small for it
    dialog, // a small window, as large as its content, in front of the active window
};

class FormWindow : public QMainWindow {
public:
    // Registers with the host, which must outlive the window; so must the form.
    FormWindow(platform::Form& form, QtHost& host, WindowKind kind = WindowKind::view);
    ~FormWindow() override;

    platform::Form& form() const { return form_; }
    QtHost& host() const { return host_; }
    Binding& binding() { return binding_; }

    Panel panel(const char* title = "");
    Panel frame(platform::Frame& control);
    // The control's widget, bound, for a place of the caller's own.
    QWidget* make(platform::Control& control, const Caption& name = "");
    FigureLabel* make_figure(platform::Label& control, const Caption& name, const char* widest);
    QTabWidget* tabs(platform::Tabs& control, const std::vector<std::pair<QString, QWidget*>>& pages);
    // The control gets the page that the user turns to, which comes first again at the next start.
    void follow_tabs(platform::Tabs& control, QTabWidget& tabs);
    // A bar whose filled part is the width of `fill` over the width of `track`.
    QWidget* progress(platform::Shape& track, platform::Shape& fill, const Caption& name);
    void keep_hidden(platform::Control& control);

    // Layout boxes without a frame. The parts share the room by `stretches` (1 each when not given).
    QWidget* across(std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches = {});
    QWidget* down(std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches = {});
    // Parts that keep their height, together at the top of the room they get.
    QWidget* stack(std::initializer_list<QWidget*> parts);
    // A row of buttons, at the right.
    QWidget* buttons(std::initializer_list<platform::Button*> row);

    void set_body(QWidget* body);
    void set_footer(QWidget* footer);        // below the body, never scrolled away
    void demo_badge(platform::Label& label); // at the right of the menu bar
    QWidget* link_strip(); // the view's line on the link; beside the first buttons, where it is not placed before
    QWidget* status(platform::Label& label);
    // The same for a text of any length: it takes the room there is, in two lines where one is too short, and its tip
    // has it whole. It never lays the window out again.
    QWidget* status_line(platform::Label& label); // in the status bar
    // Figures take the largest size between these at which everything fits the window.
    void scale_figures(double smallest_points, double largest_points);
    // Escape closes the window as its close button does. For windows whose closing loses nothing; a widget that uses
    // Escape itself, such as a cell being edited, still gets it first.
    void close_on_escape() { closes_on_escape_ = true; }

    // Where the focus goes, with its frame, each time the window opens: a button rather than a value that acts on the
    // running engine. Without this it stays where it was.
    void focus_first(std::function<platform::Control&()> which) { focus_first_ = std::move(which); }

    // Called by the host.
    void open();         // shows the window where it was last
    void put_away();     // hides it
    void show_caption(); // a title that is cleared, as on leaving, stays: Qt would put the program's name there

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // Enter presses the button that has the focus; Escape

private:
    QWidget* box(bool horizontal, std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches);
    void set_figure_points(double points);
    void fit_figures();
    QSize wanted_size() const;

    platform::Form& form_;
    QtHost& host_;
    WindowKind kind_;
    Binding binding_;
    QVBoxLayout* outer_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QWidget* body_ = nullptr;
    std::vector<FigureLabel*> figures_;
    std::pair<double, double> figure_points_{14, 14};
    QByteArray geometry_;
    std::function<platform::Control&()> focus_first_;
    bool opened_ = false;
    bool closes_on_escape_ = false;
    bool grown_unfitted_ = false; // a figure grew while the window was hidden
};

} // namespace ecu::desktop
