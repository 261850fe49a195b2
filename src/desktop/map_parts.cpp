#include "desktop/map_parts.h"

#include "desktop/grid_delegate.h"
#include "desktop/theme.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QScrollArea>

#include <array>

namespace ecu::desktop {

namespace {

constexpr QSize swatch_size(16, 14);

struct StateText {
    const char* name;
    const char* meaning;
};
constexpr std::array<StateText, 4> state_texts{
    {{"pending", "Entered and not sent yet: Update sends it"},
     {"in the controller", "The controller has told or confirmed this value"},
     {"not read", "No reply has told this value: it is not sent, and \"Read again\" asks for it"},
     {"not confirmed", "Entered, but not taken by the controller, which may hold another value"}}};

QPixmap picture_of(CellState state) {
    QPixmap picture(swatch_size);
    const bool yellow = state == CellState::pending || state == CellState::unread;
    picture.fill(theme::to_qt(yellow ? platform::pending : platform::confirmed));
    QPainter painter(&picture);
    switch (state) {
    case CellState::pending:
        paint_pending_mark(painter, picture.rect());
        break;
    case CellState::confirmed:
        break;
    case CellState::unread:
        painter.fillRect(picture.rect(), theme::hatching());
        break;
    case CellState::unconfirmed:
        paint_unconfirmed_mark(painter, picture.rect());
        break;
    }
    return picture;
}

QLabel* framed(std::function<QPixmap()> picture) {
    auto* label = new QLabel;
    theme::in_each(*label, [label, draw = std::move(picture)] { label->setPixmap(draw()); });
    label->setFrameShape(QFrame::Box);
    label->setFixedSize(swatch_size + QSize(2, 2));
    return label;
}

} // namespace

AxisMarker::AxisMarker(bool upward, QWidget* parent) : QWidget(parent), upward_(upward) {
    setFixedSize(size, size);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void AxisMarker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::accent(QPalette()));
    const double end = size - 0.5;
    const double middle = size / 2.0;
    if (upward_) {
        painter.drawPolygon(QPolygonF({{middle, 0.5}, {end, end}, {0.5, end}}));
    } else {
        painter.drawPolygon(QPolygonF({{end, middle}, {0.5, end}, {0.5, 0.5}}));
    }
}

QPixmap pending_picture() { return picture_of(CellState::pending); }

QLabel* swatch(platform::Colour colour) {
    return framed([colour] {
        QPixmap picture(swatch_size);
        picture.fill(theme::to_qt(colour));
        return picture;
    });
}

QLabel* muted_label(const QString& text) {
    auto* label = new QLabel(text);
    theme::mute(*label);
    return label;
}

void keep_focus_in_sight(QScrollArea& area) {
    QObject::connect(qApp, &QApplication::focusChanged, &area, [&area](QWidget*, QWidget* now) {
        if (now != nullptr && area.isAncestorOf(now) && QApplication::mouseButtons() == Qt::NoButton) {
            area.ensureWidgetVisible(now, 0, theme::margin);
        }
    });
}

QWidget* cell_legend(std::initializer_list<CellState> states, const std::vector<QWidget*>& scale) {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    for (const CellState state : states) {
        const auto& [name, meaning] = state_texts.at(static_cast<std::size_t>(state));
        for (QWidget* part : {static_cast<QWidget*>(framed([state] { return picture_of(state); })),
                              static_cast<QWidget*>(muted_label(QStringLiteral(" ") + QString::fromUtf8(name)))}) {
            part->setToolTip(QString::fromUtf8(meaning));
            row->addWidget(part);
        }
        row->addSpacing(theme::gap);
    }
    row->addStretch(1);
    if (!scale.empty()) {
        row->addWidget(muted_label("low "));
        for (QWidget* box : scale) {
            row->addWidget(box);
        }
        row->addWidget(muted_label(" high"));
    }
    return holder;
}

} // namespace ecu::desktop
