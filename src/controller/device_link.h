// The symbolic link that gives the pseudo-terminal a name which stays the same from run to run.
#pragma once

#include <string>

namespace ecu::controller {

// Makes `path` a link to `device`. A link that an earlier run left, pointing to a pseudo-terminal or to nothing, is
// replaced in one step; anything else at that place is left alone. Returns an empty text or what is wrong.
std::string make_device_link(const std::string& path, const std::string& device);
// Removes the link unless somebody has pointed it elsewhere meanwhile.
void remove_device_link(const std::string& path, const std::string& device);

} // namespace ecu::controller
