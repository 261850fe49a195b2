#include "desktop/guide.h"

#include "desktop/theme.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolBar>
#include <QWindow>

// In a library the linker takes only what is asked for by name.
static void take_pages_in() { Q_INIT_RESOURCE(guide); }

namespace ecu::desktop {

namespace {

const QString folder = QStringLiteral(":/guide/");
const QString ending = QStringLiteral(".md");
const QString contents = QStringLiteral("index");

QUrl url_of(const QString& page) { return QUrl("qrc" + folder + page + ending); }

// Pictures no wider than the window, and pages by their links.
class Pages final : public QTextBrowser {
protected:
    QVariant loadResource(int type, const QUrl& name) override {
        if (type != QTextDocument::ImageResource) {
            return QTextBrowser::loadResource(type, name);
        }
        const QImage image(":" + name.path());
        const int room = std::max(200, viewport()->width() - 64);
        return image.width() > room ? QVariant(image.scaledToWidth(room, Qt::SmoothTransformation)) : QVariant(image);
    }
};

} // namespace

GuideWindow::GuideWindow() : browser_(new Pages), words_(new QLineEdit) {
    setObjectName("guide");
    setWindowTitle("Guide");
    browser_->setObjectName("guide_text");
    browser_->setAccessibleName("Guide");
    browser_->setOpenExternalLinks(true);
    browser_->setFrameShape(QFrame::NoFrame);
    browser_->document()->setDocumentMargin(theme::margin * 2);
    setCentralWidget(browser_);
    auto* bar = addToolBar("Pages");
    bar->setMovable(false);
    const auto tool = [&](const char* text, const QKeySequence& key, const char* tip, auto action) {
        QAction* item = bar->addAction(text);
        item->setShortcut(key);
        item->setToolTip(QString("%1 (%2)").arg(tip, key.toString(QKeySequence::NativeText)));
        connect(item, &QAction::triggered, this, action);
        return item;
    };
    QAction* back =
        tool("&Back", QKeySequence(Qt::ALT | Qt::Key_Left), "The page before", [this] { browser_->backward(); });
    QAction* forth = tool("&Forward", QKeySequence(Qt::ALT | Qt::Key_Right), "The page that you came back from",
                          [this] { browser_->forward(); });
    tool("&Contents", QKeySequence(Qt::ALT | Qt::Key_Home), "All pages", [this] { show_page(contents); });
    tool("&Keys", QKeySequence(Qt::CTRL | Qt::Key_Slash), "All keys on one page", [this] { show_page("keys"); });
    back->setEnabled(false);
    forth->setEnabled(false);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(browser_, &QTextBrowser::forwardAvailable, forth, &QAction::setEnabled);
    words_->setPlaceholderText("Find in this page");
    words_->setAccessibleName("Find in this page");
    words_->setToolTip("Enter finds the next place (Ctrl+F)");
    words_->setMaximumWidth(240);
    bar->addWidget(words_);
    auto* find = new QAction(this);
    find->setShortcut(QKeySequence::Find);
    addAction(find);
    connect(find, &QAction::triggered, words_, [this] { words_->setFocus(Qt::ShortcutFocusReason); });
    connect(words_, &QLineEdit::returnPressed, this, [this] { find_next(); });
    resize(880, 640);
}

void GuideWindow::show_page(const QString& name) {
    browser_->setSource(url_of(Guide::has_page(name) ? name : contents), QTextDocument::MarkdownResource);
}

QString GuideWindow::page() const { return browser_->source().fileName().chopped(ending.size()); }

void GuideWindow::find_next() {
    if (!browser_->find(words_->text())) {
        browser_->moveCursor(QTextCursor::Start); // from the beginning again
        browser_->find(words_->text());
    }
}

void GuideWindow::keyPressEvent(QKeyEvent* event) {
    event->key() == Qt::Key_Escape ? static_cast<void>(close()) : QMainWindow::keyPressEvent(event);
}

Guide::Guide(shell::FrmEcu& main) {
    take_pages_in();
    main.menu_view_guide.clicked = [this] { open(contents); };
    main.menu_view_keys.clicked = [this] { open("keys"); };
    qApp->installEventFilter(this);
}

Guide::~Guide() = default;

QStringList Guide::pages() {
    QStringList names;
    for (const QString& file : QDir(folder).entryList({"*" + ending})) {
        names.append(file.chopped(ending.size()));
    }
    return names;
}

bool Guide::has_page(const QString& name) { return QFile::exists(folder + name + ending); }

void Guide::open(const QString& page) {
    if (!window_) {
        window_ = std::make_unique<GuideWindow>();
        window_->winId(); // so that it can be told whose front it stands in
    }
    const QWidget* holding = QApplication::activeModalWidget();
    QWindow* behind = holding != nullptr ? holding->windowHandle() : nullptr;
    if (window_->windowHandle()->transientParent() != behind) {
        window_->hide(); // whether it is held is found out as it shows
        window_->windowHandle()->setTransientParent(behind);
    }
    window_->show_page(page);
    window_->show();
    window_->raise();
    window_->activateWindow();
    window_->browser().setFocus();
}

// An open menu takes all clicks: it is closed first, and the page is that of the window below it.
bool Guide::eventFilter(QObject* watched, QEvent* event) {
    const auto* asked = qobject_cast<const QWidget*>(watched);
    if (asked == nullptr || (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)) {
        return false;
    }
    const auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier) {
        return false;
    }
    event->accept();
    if (event->type() == QEvent::KeyPress) {
        const QWidget* window = asked->window();
        while (QWidget* menu = QApplication::activePopupWidget()) {
            menu->close();
            window = QApplication::activeWindow();
        }
        open(window != nullptr ? window->objectName() : contents); // of the guide itself: the contents
    }
    return true;
}

} // namespace ecu::desktop
