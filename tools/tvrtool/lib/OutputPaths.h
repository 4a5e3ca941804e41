// The paths `tvrtool run` writes to, checked before the first frame: a run must not fail at its
// end over a path it could have refused at its start.
#pragma once

#include <string>

namespace tvrtool {

// Whether the file at `path` can be written: opened for writing (created and removed again when
// it did not exist). "" when it can, else the reason, for the user.
std::string checkWritableFile(const std::string& path);

// Creates the folder `dir` (and its parents) and sets `absolute` to its absolute path, as a data
// directory of the library must be given: without a blank. "" when it can take files, else the
// reason, for the user.
std::string prepareFolder(const std::string& dir, std::string& absolute);

}  // namespace tvrtool
