#include "real_tools_support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace dksml::realtools {
namespace {

// lspci -v looks up kernel modules of the build machine through libkmod; on
// a container without /lib/modules it says so. That note is about the
// machine running the test, not about the tree under test.
bool IsBuildMachineNote(const std::string& line) {
    return line.find("Unable to load libkmod resources") != std::string::npos;
}

std::string Slurp(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string Attribute(const std::string& tag, const std::string& name) {
    const std::string key = " " + name + "=\"";
    const size_t at = tag.find(key);
    if (at == std::string::npos) return "";
    const size_t start = at + key.size();
    return tag.substr(start, tag.find('"', start) - start);
}

}  // namespace

std::string MissingTool(const std::string& tool) {
    if (RunTool("command -v " + tool).status == 0) return "";
    return tool + " is not installed (scripts/install-deps.sh installs pciutils and hwloc-nox)";
}

ToolRun RunTool(const std::string& command) {
    char errTemplate[] = "/tmp/dksml-tool-stderr-XXXXXX";
    const int errFd = mkstemp(errTemplate);
    ToolRun run;
    if (errFd < 0) return run;
    close(errFd);
    FILE* pipe = popen((command + " 2>" + errTemplate).c_str(), "r");
    if (pipe != nullptr) {
        char buffer[4096];
        size_t got = 0;
        while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, got);
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::istringstream errors(Slurp(errTemplate));
    for (std::string line; std::getline(errors, line);) {
        if (!line.empty() && !IsBuildMachineNote(line)) run.errorLines.push_back(line);
    }
    std::remove(errTemplate);
    return run;
}

std::string Lspci(const std::filesystem::path& root, const std::string& options) {
    return "lspci -A linux-sysfs -O sysfs.path=" + (root / "sys/bus/pci").string() + " " + options;
}

std::string Lstopo(const std::filesystem::path& root, const std::string& options, bool onlyLinux) {
    return std::string(onlyLinux ? "HWLOC_COMPONENTS=-x86 " : "") + "HWLOC_FSROOT=" + root.string() +
           " lstopo-no-graphics " + options;
}

std::vector<HwlocObject> ParseHwlocXml(const std::string& xml) {
    // Two passes: first collect, then link ancestors (the vector must not move).
    struct Raw {
        HwlocObject object;
        std::vector<size_t> ancestors;
    };
    std::vector<Raw> raw;
    std::vector<size_t> open;
    for (size_t at = xml.find('<'); at != std::string::npos; at = xml.find('<', at + 1)) {
        if (xml.compare(at, 9, "</object>") == 0) {
            if (!open.empty()) open.pop_back();
            continue;
        }
        if (xml.compare(at, 8, "<object ") != 0) continue;
        const std::string tag = xml.substr(at, xml.find('>', at) - at + 1);
        Raw entry;
        entry.object.type = Attribute(tag, "type");
        entry.object.busId = Attribute(tag, "pci_busid");
        entry.object.cpuset = Attribute(tag, "cpuset");
        const std::string osIndex = Attribute(tag, "os_index");
        entry.object.osIndex = osIndex.empty() ? -1 : std::stoi(osIndex);
        entry.ancestors = open;
        raw.push_back(entry);
        if (tag.size() < 2 || tag[tag.size() - 2] != '/') open.push_back(raw.size() - 1);
    }
    std::vector<HwlocObject> objects;
    objects.reserve(raw.size());
    for (const Raw& entry : raw) objects.push_back(entry.object);
    for (size_t i = 0; i < raw.size(); ++i) {
        for (const size_t ancestor : raw[i].ancestors) objects[i].ancestors.push_back(&objects[ancestor]);
    }
    return objects;
}

std::vector<unsigned> HwlocSetCpus(const std::string& set) {
    std::vector<std::string> words;
    std::istringstream in(set);
    for (std::string word; std::getline(in, word, ',');) words.push_back(word);
    std::vector<unsigned> cpus;
    for (size_t i = 0; i < words.size(); ++i) {
        const unsigned long value = std::strtoul(words[i].c_str(), nullptr, 16);
        const unsigned base = static_cast<unsigned>((words.size() - 1 - i) * 32);
        for (unsigned bit = 0; bit < 32; ++bit) {
            if (value & (1ul << bit)) cpus.push_back(base + bit);
        }
    }
    std::sort(cpus.begin(), cpus.end());
    return cpus;
}

}  // namespace dksml::realtools
