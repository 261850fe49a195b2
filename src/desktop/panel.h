// A titled box of rows, the building block of the windows: caption, control, unit. A Panel is a handle that is copied
// freely; the widget behind it belongs to the window. See form_window.h for how a window is written.
#pragma once

#include "platform/control.h"

#include <QGroupBox>
#include <QString>

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

class QGridLayout;

namespace ecu::desktop {

class FormWindow;

// What stands beside a control: a fixed text, or a label control whose text the program changes.
class Caption {
public:
    Caption(const char* text) : text_(QString::fromUtf8(text)) {}
    Caption(std::string_view text) : text_(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))) {}
    Caption(platform::Label& label) : label_(&label) {}
    platform::Label* label() const { return label_; }
    QString text() const;
    bool empty() const { return label_ == nullptr && text_.isEmpty(); }

private:
    QString text_;
    platform::Label* label_ = nullptr;
};

// The elements of a control array as pointers, for boxes() and buttons().
template <typename Array> std::vector<platform::Control*> each(Array& controls) {
    std::vector<platform::Control*> result;
    for (auto& control : controls) {
        result.push_back(&control);
    }
    return result;
}

// The painted box itself: a rounded field with its title in the corner.
class PanelBox final : public QGroupBox {
public:
    explicit PanelBox(const QString& title, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
};

class Panel {
public:
    Panel(FormWindow& window, QGroupBox* box);
    operator QWidget*() const; // NOLINT: a panel is used wherever a widget is
    QGridLayout* layout() const { return layout_; }

    // One row: caption, the control's widget, unit. Returns the widget.
    QWidget* row(const Caption& name, platform::Control& control, const Caption& unit = "");
    // The same with the text as a large figure. `widest` is the widest text to make room for.
    QWidget* figure(const Caption& name, platform::Label& control, const Caption& unit = "",
                    const char* widest = "00000.00");
    // Several controls side by side behind one caption.
    void boxes(const Caption& name, std::span<platform::Control* const> controls, const Caption& unit = "");
    // A table: header() gives the titles of its columns and the widest text to make room for in each; figures() is a
    // row, a caption and one figure per label. A figure is spoken of by its row and column. A title that stands twice
    // is spoken of with the title before it.
    struct Column {
        const char* title;
        const char* widest;
    };
    void header(std::initializer_list<Column> columns);
    void figures(const Caption& name, std::initializer_list<platform::Label*> labels);
    // Check boxes, option buttons, buttons: one after the other, downwards or side by side.
    void column(std::span<platform::Control* const> controls);
    void side_by_side(std::span<platform::Control* const> controls);
    // Any widget across the whole width; `stretch` gives it the height that is left over.
    QWidget* add(QWidget* widget, int stretch = 0);
    QWidget* add(platform::Control& control, const Caption& name = "", int stretch = 0);
    void note(const char* text); // a muted line of explanation
    // Goes on beside the rows so far, from the top; for panels that are wide rather than high.
    void next_column();
    // Takes up the height that is left over, so that the rows stay together at the top.
    void fill();
    // The rows share that height instead.
    void spread();

private:
    QWidget* caption_widget(const Caption& caption, bool unit);
    QString spoken_column(std::size_t column) const;
    QWidget* between(const Caption& name, platform::Control& control, QWidget* field, const Caption& unit);
    void place(QWidget* name, QWidget* field, QWidget* unit);

    FormWindow* window_;
    QGroupBox* box_;
    QGridLayout* layout_;
    int row_ = 0;
    int header_rows_ = 0;
    std::vector<Column> columns_;
    int first_column_ = 0;
};

} // namespace ecu::desktop
