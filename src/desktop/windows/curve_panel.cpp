#include "desktop/windows/curve_panel.h"

#include "calibration/encoding.h"
#include "desktop/box_marks.h"
#include "desktop/curve_layout.h"
#include "desktop/curve_view.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "platform/leading_number.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpression>

#include <algorithm>

namespace ecu::desktop {

namespace {

using maps::CorrectionCurve;
using maps::Frm2d;

constexpr int smallest_figures = 9; // pixels
constexpr int largest_figures = 17;
constexpr int least_box_width = 40;

class CurvePlot final : public QWidget {
public:
    CurvePlot(FormWindow& window, Frm2d& form, const CorrectionCurve& curve)
        : boxes_(form.*curve.boxes), title_(qt(curve.title)), over_(qt(curve.over) + ", " + qt(curve.unit)),
          widest_(widest_text(*curve.table)) {
        platform::Picture& picture = form.*curve.graph;
        graph_ = new CurveView(picture);
        graph_->setParent(this);
        window.binding().bind_custom(
            picture, graph_, [this](platform::Property) { graph_->update(); }, "Graph of " + title_);
        if (picture.tool_tip().empty()) {
            graph_->setToolTip(title_ + " over " + over_);
        }
        for (std::size_t i = 0; i < edits_.size(); ++i) {
            edits_[i] = static_cast<QLineEdit*>(window.make(boxes_[i], std::string_view(curve.title)));
            edits_[i]->setParent(this);
            edits_[i]->setAlignment(Qt::AlignCenter);
            edits_[i]->installEventFilter(this);
        }
        for (std::size_t i = 0; i < captions_.size(); ++i) {
            bind_caption(window, (form.*curve.axis)[i], i, qt(curve.unit));
        }
    }

    QSize sizeHint() const override { return {9 * 62, least_curve_height(line(), box()) + 50}; }
    QSize minimumSizeHint() const override { return {9 * least_box_width, least_curve_height(line(), box())}; }

protected:
    void resizeEvent(QResizeEvent*) override {
        const CurveLayout layout = curve_layout(size(), line(), box());
        const QFont figures = figures_for(layout.boxes.front().width());
        graph_->setGeometry(layout.graph);
        for (std::size_t i = 0; i < edits_.size(); ++i) {
            edits_[i]->setFont(figures);
            edits_[i]->setGeometry(layout.boxes[i]);
            captions_[i]->setGeometry(layout.captions[i]);
        }
    }

    void paintEvent(QPaintEvent*) override {
        const QRect place = curve_layout(size(), line(), box()).title;
        QPainter painter(this);
        QFont bold = font();
        bold.setWeight(QFont::DemiBold);
        painter.setFont(bold);
        painter.setPen(isEnabled() ? theme::accent(QPalette()) : theme::muted_text(QPalette()));
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, title_);
        painter.setFont(font());
        painter.setPen(theme::muted_text(QPalette()));
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, over_);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (key.matches(QKeySequence::Paste)) {
            return spread(static_cast<std::size_t>(std::ranges::find(edits_, watched) - edits_.begin()));
        }
        if (key.key() == Qt::Key_C && key.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier)) {
            copy_all();
            return true;
        }
        return false;
    }

private:
    static QString widest_text(const calibration::Table& row) {
        const QString low = qt(calibration::shown(row, 0, {}));
        const QString high = qt(calibration::shown(row, 255, {}));
        return low.size() > high.size() ? low : high;
    }

    // The place on the axis is part of what a box is called.
    void bind_caption(FormWindow& window, platform::Label& axis, std::size_t i, const QString& unit) {
        auto* label = new QLabel(this);
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        captions_[i] = label;
        window.binding().bind_custom(
            axis, label,
            [this, &axis, label, i, unit](platform::Property property) {
                if (property == platform::Property::text) {
                    label->setText(qt(axis.text()));
                    edits_[i]->setAccessibleName(title_ + " at " + qt(axis.text()) + " " + unit);
                }
            },
            over_);
        label->setToolTip(over_);
    }

    int line() const { return fontMetrics().height(); }
    int box() const { return fontMetrics().height() + 7; }

    QFont figures_for(int width) const {
        QFont font = theme::figure_font(10);
        font.setWeight(QFont::Normal);
        for (int pixels = std::min(largest_figures, box() - 8); pixels >= smallest_figures; --pixels) {
            font.setPixelSize(pixels);
            if (QFontMetrics(font).horizontalAdvance(widest_) + 10 <= width) {
                break;
            }
        }
        return font;
    }

    void copy_all() const {
        QStringList texts;
        for (const platform::TextBox& box : boxes_) {
            texts.append(qt(box.text()));
        }
        QApplication::clipboard()->setText(texts.join('\t') + '\n');
    }

    // Several copied cells go into as many boxes from this one on; a blank one, or one that is no number, leaves its
    // box alone. A single one is the box's own affair.
    bool spread(std::size_t from) {
        static const QRegularExpression between(QStringLiteral("\t|\r?\n"));
        const QStringList cells = QApplication::clipboard()->text().split(between);
        int refused = 0;
        std::size_t first = 0;
        for (qsizetype k = 0; cells.size() > 1 && k < cells.size(); ++k) {
            const std::size_t i = from + static_cast<std::size_t>(k);
            const std::string entry = platform::entry_text(cells[k].toStdString());
            if (i < edits_.size() && platform::is_number(entry)) {
                boxes_[i].set_text(entry);
            } else if (i < edits_.size() && !entry.empty()) {
                first = refused++ == 0 ? i : first;
            }
        }
        if (refused > 0) {
            tell_not_pasted(refused, cells[static_cast<qsizetype>(first - from)], *edits_[first]);
        }
        return cells.size() > 1;
    }

    Frm2d::Nine& boxes_;
    QString title_;
    QString over_;
    QString widest_;
    CurveView* graph_ = nullptr;
    std::array<QLineEdit*, 9> edits_{};
    std::array<QLabel*, 9> captions_{};
};

} // namespace

QWidget* make_curve_panel(FormWindow& window, Frm2d& form, const CorrectionCurve& curve) {
    Panel panel = window.panel();
    panel.layout()->setContentsMargins(theme::margin, 0, theme::margin, theme::gap);
    panel.add(new CurvePlot(window, form, curve), 1);
    return panel;
}

} // namespace ecu::desktop
