#include "core/dk_file_text.h"

#include <dirent.h>
#include <string_view>

#include "driver/dk_text.h"

namespace dksml {

std::string ReadFirstLine(const std::string& path) {
    std::string text;
    if (ReadFileText(path, text) != DK_SML_SUCCESS) return {};
    DkTextLines lines(text);
    std::string_view line;
    if (!lines.Next(line)) return {};
    return std::string(TrimView(line, " \t\r"));
}

bool ReadFirstNumber(const std::string& path, unsigned int& value, int base) {
    std::string line = ReadFirstLine(path);
    return !line.empty() && stoui_nt(line, value, base);
}

bool ReadFirstNumberAt(int dirFd, const char* name, unsigned int& value, int base) {
    thread_local std::string scratch;
    if (ReadFileTextAt(dirFd, name, scratch) != DK_SML_SUCCESS) return false;
    DkTextLines lines(scratch);
    std::string_view line;
    if (!lines.Next(line)) return false;
    line = TrimView(line, " \t\r");
    return !line.empty() && stoui_nt(line, value, base);
}

bool DirectoryOpens(const std::string& path) {
    DIR* dir = opendir(path.c_str());
    if (dir == nullptr) return false;
    closedir(dir);
    return true;
}

}  // namespace dksml
