// Results as JSON: one object a line.
#pragma once

#include <QJsonDocument>
#include <QJsonObject>

#include <charconv>
#include <string>
#include <string_view>

namespace ecu::cli {

inline std::string json_line(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() + "\n";
}

inline QString json_text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The shortest number that reads back as the same single-precision one.
inline double json_number(float value) {
    char text[32];
    const char* end = std::to_chars(text, text + sizeof text, value).ptr;
    double out = 0;
    std::from_chars(text, end, out);
    return out;
}

} // namespace ecu::cli
