// Text between the models (UTF-8) and Qt.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace ecu::desktop {

inline QString qt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

// A caption as a screen reader says it: no access key, no trailing "=" or ":".
inline QString spoken(QString caption) {
    caption.remove('&');
    while (caption.endsWith('=') || caption.endsWith(':') || caption.endsWith(' ')) {
        caption.chop(1);
    }
    return caption;
}

} // namespace ecu::desktop
