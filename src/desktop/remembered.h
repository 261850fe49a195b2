// What the console remembers from one start to the next for the user, not for the engine: theme, sizes and places of
// the windows, tabs, the plotter's channels and interval. It lies in a file of the user's own configuration, never in
// the folder of the session, whose files belong to an engine. Without a file, as in tests and after --fresh, it is
// empty at the start and gone at the end.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <map>
#include <memory>

class QSettings;

namespace ecu::desktop {

class Remembered {
public:
    Remembered();
    explicit Remembered(const QString& file);
    ~Remembered();
    Remembered(const Remembered&) = delete;
    Remembered& operator=(const Remembered&) = delete;

    // Where the file of this user is.
    static QString file_of_user();

    // An invalid QVariant where nothing is remembered.
    QVariant value(const QString& key) const;
    void set_value(const QString& key, const QVariant& value);

    // A window's size and place, as QWidget::saveGeometry gives it, for the screens as they are arranged now: at a desk
    // and beside the engine the same laptop has different ones.
    QByteArray geometry(const QString& window) const;
    void set_geometry(const QString& window, const QByteArray& geometry);

private:
    std::unique_ptr<QSettings> file_;
    std::map<QString, QVariant> values_; // when there is no file
};

} // namespace ecu::desktop
