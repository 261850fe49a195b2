// Access keys of texts that stand beside each other: the letter behind an ampersand, pressed with Alt or in the open
// menu. Where two texts claim the same letter the first one keeps it, and the other's ampersand moves to a letter of
// its own that nobody claims, or goes.
#pragma once

#include <QStringList>

namespace ecu::desktop {

QChar access_key(const QString& text); // upper case; null without one
QStringList distinct_access_keys(const QStringList& texts);

} // namespace ecu::desktop
