#include "desktop/remembered.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

namespace ecu::desktop {

namespace {

// One name for one arrangement of screens, whatever their order.
QString key_of_geometry(const QString& window) {
    QStringList screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect area = screen->geometry();
        screens.append(QString("%1x%2+%3+%4").arg(area.width()).arg(area.height()).arg(area.x()).arg(area.y()));
    }
    screens.sort();
    return "windows/" + screens.join('_') + '/' + window;
}

} // namespace

Remembered::Remembered() = default;

Remembered::Remembered(const QString& file) : file_(std::make_unique<QSettings>(file, QSettings::IniFormat)) {}

Remembered::~Remembered() = default;

QString Remembered::file_of_user() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/ecu-console/console.ini";
}

QVariant Remembered::value(const QString& key) const {
    if (file_) {
        return file_->value(key);
    }
    const auto found = values_.find(key);
    return found == values_.end() ? QVariant() : found->second;
}

void Remembered::set_value(const QString& key, const QVariant& value) {
    if (file_) {
        file_->setValue(key, value);
    } else {
        values_[key] = value;
    }
}

QByteArray Remembered::geometry(const QString& window) const { return value(key_of_geometry(window)).toByteArray(); }

void Remembered::set_geometry(const QString& window, const QByteArray& geometry) {
    set_value(key_of_geometry(window), geometry);
}

} // namespace ecu::desktop
