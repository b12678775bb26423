#include "features/topology/dk_node_links.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "driver/dk_text.h"

namespace dksml {
namespace {

// The driver gives a link's far end as a 32-bit id whose low half is the node.
constexpr uint32_t c_linkNodeModulus = 65536;

// "key value" lines; false for a line that is not one.
bool SplitKeyValue(std::string_view line, std::string_view& key, std::string_view& value) {
    line = TrimView(line, " \t\r");
    const size_t blank = line.find_first_of(" \t");
    if (blank == std::string_view::npos) return false;
    key = line.substr(0, blank);
    value = TrimView(line.substr(blank + 1), " \t");
    return true;
}

bool ParseLinkProperties(std::string_view text, DkLinkAttr& link) {
    bool hasTo = false, hasType = false;
    DkTextLines lines(text);
    std::string_view line, key, value;
    while (lines.Next(line)) {
        unsigned long number = 0;
        if (!SplitKeyValue(line, key, value) || !stoul_nt(value, number)) continue;
        if (key == "to") {
            link.to = static_cast<uint32_t>(number % c_linkNodeModulus);
            hasTo = true;
        } else if (key == "type") {
            link.type = static_cast<uint32_t>(number);
            hasType = true;
        } else if (key == "distance") {
            link.distance = static_cast<uint32_t>(number);
        }
    }
    return hasTo && hasType;
}

// One link directory: its numbered entries listed through one descriptor and
// each entry's "properties" opened relative to it.
void ReadLinkDirectory(int nodeDirFd, const char* name, std::vector<DkLinkAttr>& links) {
    const int fd = ::openat(nodeDirFd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    DIR* dir = ::fdopendir(fd);
    if (dir == nullptr) {
        ::close(fd);
        return;
    }
    std::vector<uint32_t> numbers;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view entryName = entry->d_name;
        unsigned int number = 0;
        if (IsNumber(entryName) && stoui_nt(entryName, number)) numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    std::string text;
    char properties[32];
    for (uint32_t number : numbers) {
        std::snprintf(properties, sizeof properties, "%u/properties", number);
        DkLinkAttr link;
        if (ReadFileTextAt(::dirfd(dir), properties, text) == DK_SML_SUCCESS && ParseLinkProperties(text, link))
            links.push_back(link);
    }
    ::closedir(dir);
}

}  // namespace

void ReadNodeLinks(int nodeDirFd, std::vector<DkLinkAttr>& direct, std::vector<DkLinkAttr>& indirect) {
    if (nodeDirFd < 0) return;
    ReadLinkDirectory(nodeDirFd, "direct_links", direct);
    ReadLinkDirectory(nodeDirFd, "indirect_links", indirect);
}

}  // namespace dksml
