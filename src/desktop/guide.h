// The guide in a window of its own: F1 in any window opens that window's page, named as its form is. The pages are
// those of docs/guide, built into the program, so that the installed console and the web show the same.
#pragma once

#include "shell/frm_ecu.h"

#include <QMainWindow>
#include <QPointer>

class QAction;
class QLineEdit;
class QTextBrowser;

namespace ecu::desktop {

class GuideWindow final : public QMainWindow {
public:
    GuideWindow();
    // The page of that name, or the contents when there is none.
    void show_page(const QString& name);
    QString page() const; // its name
    QTextBrowser& browser() { return *browser_; }

protected:
    void keyPressEvent(QKeyEvent* event) override; // Escape closes

private:
    void find_next();

    QTextBrowser* browser_;
    QLineEdit* words_;
};

class Guide final : public QObject {
public:
    explicit Guide(shell::FrmEcu& main);
    ~Guide() override;
    // In front of a window that holds all others, if there is one: otherwise the guide could not be used.
    void open(const QString& page);
    GuideWindow* window() { return window_.get(); } // none before the first opening
    static bool has_page(const QString& name);
    static QStringList pages();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override; // of the application: F1

private:
    std::unique_ptr<GuideWindow> window_;
};

} // namespace ecu::desktop
