// What the command line prints of two calibrations compared and of a file looked through: a line a difference or
// finding, or one JSON object.
#pragma once

#include "calibration/compare.h"
#include "calibration/file_check.h"

#include <QJsonObject>

#include <string>

namespace ecu::cli {

// One line a difference, then the counts. `name_a` and `name_b` as the user gave them.
std::string as_text(const calibration::Comparison& comparison, const calibration::Snapshot& a,
                    const calibration::Snapshot& b, const std::string& name_a, const std::string& name_b);
std::string as_json(const calibration::Comparison& comparison, const calibration::Snapshot& a,
                    const calibration::Snapshot& b);

std::string as_text(const calibration::CheckReport& report, const std::string& name);
std::string as_json(const calibration::CheckReport& report);

// {"key": "MAPM", "index": 7, "row": 9, "column": 1}
QJsonObject key_object(const calibration::FileKey& key);

// Reads the file. Throws Failure when it can't be.
std::string text_of_file(const std::string& name);

} // namespace ecu::cli
