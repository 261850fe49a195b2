// Message boxes and file dialogs. File dialogs are the platform's own where it has one; Qt's own off screen and under
// ECU_QT_FILE_DIALOG=1.
#pragma once

#include "platform/dialogs.h"

#include <QString>

namespace ecu::desktop {

class QtDialogs final : public platform::Dialogs {
public:
    platform::Answer message_box(const platform::MessageBox& box) override;
    std::string open_file(const platform::FileDialog& dialog) override;
    std::string save_file(const platform::FileDialog& dialog) override;
};

// "Setup Files (*.set)|" as Qt wants it; the pattern also matches upper case where the file system tells them apart.
QString qt_filter(const std::string& filter);

} // namespace ecu::desktop
