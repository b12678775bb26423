// "dksmi set": changes device settings. Each setting is one row of a table
// (option, value syntax, how to apply it), so new settings are new rows.
#pragma once

namespace dksmi {

// argv[0] is "set"; returns the exit code.
int RunSet(int argc, char** argv);

}  // namespace dksmi
