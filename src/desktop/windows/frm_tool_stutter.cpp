// The stutter table: two patterns of 32 engine events, each drawn as marks beside the four boxes that hold it, and the
// generator below.
#include "configuration/stutter_tool.h"
#include "desktop/theme.h"
#include "desktop/windows/frm_tool_pages.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

namespace ecu::desktop {

namespace {

using configuration::FrmTool;

// A full mark is a skip, an empty one a hit; a gap parts the events of one box from those of the next.
class StutterMarks final : public QWidget {
public:
    StutterMarks(const QString& name, std::array<const platform::TextBox*, configuration::words_of_pattern> boxes)
        : boxes_(boxes) {
        setAccessibleName(name + ", drawn");
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setToolTip("The 32 engine events of the pattern, the first at the left: full is a skip, empty a hit");
    }
    QSize sizeHint() const override {
        return {configuration::stutter_events * pitch + configuration::words_of_pattern * group_gap, pitch + 4};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        std::array<std::string_view, configuration::words_of_pattern> texts;
        std::ranges::transform(boxes_, texts.begin(), [](const auto* box) { return std::string_view(box->text()); });
        const auto marks = configuration::stutter_marks(texts);
        QPainter painter(this);
        painter.setPen(theme::muted_text(QPalette()));
        for (std::size_t i = 0; i < marks.size(); ++i) {
            const int event = static_cast<int>(i);
            const QRect field(event * pitch + event / configuration::events_of_word * group_gap, 2, pitch - 2,
                              pitch - 1);
            painter.setBrush(marks[i] ? QBrush(theme::accent(QPalette())) : QBrush(Qt::NoBrush));
            painter.drawRect(field);
        }
    }

private:
    static constexpr int pitch = 9;
    static constexpr int group_gap = 6;
    std::array<const platform::TextBox*, configuration::words_of_pattern> boxes_;
};

QWidget* pattern(FormWindow& window, FrmTool& f, int which) {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    const QString name = "Stutter " + QString::number(which + 1);
    layout->addWidget(new QLabel(name));
    std::array<const platform::TextBox*, configuration::words_of_pattern> boxes{};
    std::vector<QLineEdit*> edits;
    for (std::size_t n = 0; n < boxes.size(); ++n) {
        platform::TextBox& box = f.box("STUT", which * configuration::words_of_pattern + static_cast<int>(n));
        const QString spoken = name + ", events from " + QString::number(n * configuration::events_of_word + 1);
        auto* edit = qobject_cast<QLineEdit*>(window.make(box, Caption(spoken.toStdString())));
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance("00000") + 14);
        layout->addWidget(edit);
        boxes[n] = &box;
        edits.push_back(edit);
    }
    auto* marks = new StutterMarks(name, boxes);
    for (const QLineEdit* edit : edits) {
        QObject::connect(edit, &QLineEdit::textChanged, marks, [marks] { marks->update(); });
    }
    layout->addSpacing(theme::margin);
    layout->addWidget(marks);
    layout->addStretch(1);
    return line;
}

QWidget* in_line(std::initializer_list<QWidget*> widgets) {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets) {
        layout->addWidget(widget);
    }
    layout->addStretch(1);
    return line;
}

} // namespace

Panel stutter_panel(FormWindow& window, FrmTool& f) {
    Panel panel = window.panel("Stutter Generator Tool");
    panel.add(pattern(window, f, 0));
    panel.add(pattern(window, f, 1));
    const auto narrow = [&](platform::TextBox& box, const char* name) {
        QWidget* edit = window.make(box, name);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance("0000") + 14);
        return edit;
    };
    panel.add(in_line({new QLabel("Skips"), narrow(f.skip_fire_bits, "Skips"), new QLabel("Hits"),
                       narrow(f.fire_bits, "Hits"), window.make(f.make_stutter_text[0]),
                       window.make(f.make_stutter_text[1])}));
    QWidget* text = window.make(f.stutter_text, "Bit pattern");
    text->setMinimumWidth(text->fontMetrics().horizontalAdvance(QString(36, '0')));
    panel.add(in_line({new QLabel("Bit Pattern"), text}));
    panel.add(in_line(
        {window.make(f.create_stutter_patterns_from_text[0]), window.make(f.create_stutter_patterns_from_text[1])}));
    return panel;
}

} // namespace ecu::desktop
