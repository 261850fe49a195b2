#include "desktop/access_keys.h"

#include <set>

namespace ecu::desktop {

namespace {

// Where the ampersand of the access key stands; a doubled one is a plain ampersand.
qsizetype place_of_key(const QString& text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '&') {
            if (text[i + 1] != '&') {
                return i;
            }
            ++i;
        }
    }
    return -1;
}

} // namespace

QChar access_key(const QString& text) {
    const qsizetype at = place_of_key(text);
    return at < 0 ? QChar() : text[at + 1].toUpper();
}

QStringList distinct_access_keys(const QStringList& texts) {
    std::set<QChar> claimed;
    QList<qsizetype> losers;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        const QChar key = access_key(texts[i]);
        if (!key.isNull() && !claimed.insert(key).second) {
            losers.append(i);
        }
    }
    QStringList result = texts;
    for (const qsizetype i : losers) {
        QString& text = result[i];
        text.remove(place_of_key(text), 1);
        for (qsizetype at = 0; at < text.size(); ++at) {
            if (text[at].isLetterOrNumber() && claimed.insert(text[at].toUpper()).second) {
                text.insert(at, '&');
                break;
            }
        }
    }
    return result;
}

} // namespace ecu::desktop
