// A small log of when the program started and what ended it: its own exit, a signal, an exception that nobody caught,
// a fault of the machine's. Kept in the user's folder for such files, never longer than two files of 256 kB. A log that
// cannot be written keeps nobody from working: it is left out.
#pragma once

#include <filesystem>
#include <string_view>

namespace ecu::adapters::program_log {

// $XDG_STATE_HOME/NAME, else ~/.local/state/NAME; on Windows the folder for local data of programs.
std::filesystem::path folder_for(std::string_view name);

// Opens NAME.log in `folder`, tells there if the run before left no word of its end, and from now on notes uncaught
// exceptions, deadly signals and Qt's warnings. Returns the file, empty when there is none.
std::filesystem::path open(const std::filesystem::path& folder, std::string_view name, std::string_view version);

void note(std::string_view text);

// The last line of a run; what ends the program after it adds no other.
void note_end(int status, std::string_view reason);

} // namespace ecu::adapters::program_log
