#include "diagnostics/picture_file.h"

namespace ecu::diagnostics {

namespace {

constexpr int end_key = 35;
constexpr int home_key = 36;

} // namespace

int step_of(const platform::KeyPress& key, int count) {
    switch (key.code) {
    case platform::key::left:
        return -1;
    case platform::key::right:
        return 1;
    case home_key:
        return -count;
    case end_key:
        return count;
    default:
        return 0;
    }
}

void save_picture_of(const platform::Picture& picture, const platform::Ports& ports, std::string_view name) {
    const std::string path = ports.dialogs.save_file({.title = "Save the drawing as a picture",
                                                      .default_extension = "png",
                                                      .filter = "Picture (*.png)|",
                                                      .initial_name = std::string(name)});
    if (!path.empty() && !(picture.save_as_image && picture.save_as_image(path))) {
        ports.dialogs.message_box(
            {.text = "The picture " + path + " could not be written. Choose another name or folder.",
             .icon = platform::Icon::warning});
    }
}

} // namespace ecu::diagnostics
