#include "vhost/vhost_gather.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "vhost/vhost_archive.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

// How one entry of the gather table is taken.
enum class Take {
    File,            // one file
    Directory,       // only the directory's presence (the library tests it to choose a path)
    Tree,            // a directory and everything in it; links are copied, never followed
    Pattern,         // '*' in path components; every match is taken as a file or a tree
    DeviceNode,      // a device node, recorded as an empty file (only its presence is read)
    LinkDirectory,   // links to device nodes: the links, and the nodes as empty files
    PciFunctions,    // every PCI function: its link, its files and those of its bridges
    ProcessClients,  // processes holding "/dev/dkcd" open: that descriptor link and "comm"
};

struct GatherRule {
    const char* hostPath;
    Take take;
};

// Everything the library reads outside the PCI function directories. A path
// that does not exist on a host is simply not taken.
constexpr std::array<GatherRule, 30> c_gatherTable{{
    // Driver presence, overrides.
    {"/proc/modules", Take::File},
    {"/opt/smi/etc/vendorid", Take::File},
    {"/opt/smi/etc/chipname", Take::File},
    // Driver class (layout nodes and links) and manager directories, both spellings.
    {"/sys/class/dravik/dkcd", Take::Directory},
    {"/sys/class/dkcd/dkcd", Take::Directory},
    {"/sys/class/dravik/dkcd/layout", Take::Tree},
    {"/sys/class/dkcd/dkcd/layout", Take::Tree},
    {"/sys/devices/virtual/dkcd/dkcd/manager", Take::Tree},
    {"/sys/devices/virtual/dravik/dkcd/manager", Take::Tree},
    // Driver debug files: register access and the per-process client directories.
    {"/sys/kernel/debug/dkcd/reg_dump", Take::File},
    {"/sys/kernel/debug/dkcd/select_gpu_id", Take::File},
    {"/sys/kernel/debug/dkcd/proc", Take::Tree},
    {"/dev/dkcd", Take::DeviceNode},
    {"/dev/dri/by-path", Take::LinkDirectory},
    {"/proc", Take::ProcessClients},
    // PCI functions and topology.
    {"/sys/bus/pci/devices", Take::PciFunctions},
    {"/sys/firmware/dmi/tables/DMI", Take::File},
    {"/lib/firmware/pptable.bin", Take::File},
    {"/sys/kernel/pci_switch_link/virtual_switch_links", Take::Tree},
    {"/opt/pci_switch_link/virtual_switch_links", Take::Tree},
    // CPU and NUMA layout.
    {"/sys/devices/system/node/online", Take::File},
    {"/sys/devices/system/node/possible", Take::File},
    {"/sys/devices/system/node/has_cpu", Take::File},
    {"/sys/devices/system/node/node*/cpulist", Take::Pattern},
    {"/sys/devices/system/node/node*/cpumap", Take::Pattern},
    {"/sys/devices/system/node/node*/distance", Take::Pattern},
    {"/sys/devices/system/cpu/online", Take::File},
    {"/sys/devices/system/cpu/possible", Take::File},
    {"/sys/devices/system/cpu/present", Take::File},
    {"/sys/devices/system/cpu/cpu*/topology", Take::Pattern},
}};

// What is taken from every PCI function directory and from each bridge above it.
constexpr std::array<const char*, 22> c_pciFunctionFiles{{
    "vendor", "device", "subsystem_vendor", "subsystem_device", "class", "revision",
    "numa_node", "local_cpulist", "local_cpus", "max_link_speed", "max_link_width",
    "current_link_speed", "current_link_width", "gpuvf", "sriov_totalvfs", "sriov_numvfs",
    "model", "roce_enable", "config", "aer_dev_correctable", "aer_dev_fatal", "aer_dev_nonfatal",
}};
// Driver files that start an action (resets, updates, bus writes, error
// injection, partition changes): never opened, even for reading.
constexpr std::array<std::string_view, 14> c_actionFiles{{
    "resetprofile", "updatepptable", "vfflr", "pfflr", "e2promreset", "testmode", "updatefw", "rasinject",
    "writesmbus", "writepmbus", "writedkmesmbus", "create", "remove", "setpcispeed",
}};
// The driver's per-die attribute directories and slice-GPU directory.
constexpr std::array<const char*, 3> c_pciFunctionTrees{{"smi", "smi1", "sgpu"}};
// Read only for its entries' names (an InfiniBand port exists or not).
constexpr const char* c_infinibandDir = "infiniband";
// Resolved by the library: the link and an empty directory at its target.
constexpr const char* c_driverLink = "driver";

constexpr const char* c_driverProcessDir = "/sys/kernel/debug/dkcd/proc/";
constexpr const char* c_deviceNode = "/dev/dkcd";
constexpr const char* c_sysDevices = "/sys/devices";
// Attribute and table files are small; anything larger is not what we want.
constexpr size_t c_maxFileBytes = 16u << 20;

bool IsNumber(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string ErrorText(int error) { return std::strerror(error); }

class Gatherer {
public:
    Gatherer(const GatherOptions& options, fs::path out) : m_options(options), m_out(std::move(out)) {}

    void Run() {
        for (const GatherRule& rule : c_gatherTable) Take(rule);
    }

    GatherSummary Summary() const { return m_summary; }

    void WriteManifest() const {
        std::vector<std::string> lines = m_lines;
        std::sort(lines.begin(), lines.end());
        std::ofstream manifest(m_out / c_manifestName, std::ios::trunc);
        manifest << "# dkvhost gather: the files and links of this host that the dksml library reads\n"
                 << "# source " << m_options.sourceRoot.string() << "\n"
                 << "# process names " << (m_options.keepProcessNames ? "kept" : "dropped") << "\n"
                 << "# kind\tpath\tdetail\n";
        for (const std::string& line : lines) manifest << line << "\n";
        if (!manifest) throw std::runtime_error("cannot write the manifest in " + m_out.string());
    }

private:
    fs::path Source(std::string_view hostPath) const { return m_options.sourceRoot / fs::path(hostPath).relative_path(); }
    fs::path Output(std::string_view hostPath) const { return m_out / fs::path(hostPath).relative_path(); }

    void Record(std::string_view kind, std::string_view hostPath, std::string_view detail) {
        m_lines.push_back(std::string(kind) + "\t" + std::string(hostPath) + "\t" + std::string(detail));
    }

    void RecordUnreadable(std::string_view hostPath, std::string_view why) {
        ++m_summary.unreadable;
        Record("unreadable", hostPath, why);
    }

    bool Exists(std::string_view hostPath) const {
        std::error_code error;
        return fs::symlink_status(Source(hostPath), error).type() != fs::file_type::not_found && !error;
    }

    bool IsDirectory(std::string_view hostPath) const {
        std::error_code error;
        return fs::is_directory(Source(hostPath), error);
    }

    bool IsProcessName(std::string_view hostPath) const {
        const fs::path path(hostPath);
        return path.filename() == "name" && hostPath.starts_with(c_driverProcessDir);
    }

    void Take(const GatherRule& rule) {
        switch (rule.take) {
            case Take::File: TakeFileIfPresent(rule.hostPath); break;
            case Take::Directory:
                if (IsDirectory(rule.hostPath)) fs::create_directories(Output(rule.hostPath));
                break;
            case Take::Tree: TakeTree(rule.hostPath); break;
            case Take::Pattern: TakePattern(rule.hostPath); break;
            case Take::DeviceNode: TakeDeviceNode(rule.hostPath); break;
            case Take::LinkDirectory: TakeLinkDirectory(rule.hostPath); break;
            case Take::PciFunctions: TakePciFunctions(rule.hostPath); break;
            case Take::ProcessClients: TakeProcessClients(rule.hostPath); break;
        }
    }

    void TakeFileIfPresent(const std::string& hostPath) {
        if (Exists(hostPath)) TakeFile(hostPath);
    }

    // Sysfs sizes are always 4096, so the file is read to its end, not to its size.
    void TakeFile(const std::string& hostPath) {
        const std::string name = fs::path(hostPath).filename().string();
        if (std::find(c_actionFiles.begin(), c_actionFiles.end(), name) != c_actionFiles.end()) {
            Record("skipped", hostPath, "action file");
            return;
        }
        if (!m_options.keepProcessNames && IsProcessName(hostPath)) {
            Record("dropped", hostPath, "process name");
            return;
        }
        const int fd = open(Source(hostPath).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            RecordUnreadable(hostPath, ErrorText(errno));
            return;
        }
        std::string content;
        char buffer[65536];
        int readError = 0;
        while (content.size() <= c_maxFileBytes) {
            const ssize_t got = read(fd, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) readError = errno;
            if (got <= 0) break;
            content.append(buffer, static_cast<size_t>(got));
        }
        close(fd);
        if (readError != 0) {
            RecordUnreadable(hostPath, ErrorText(readError));
            return;
        }
        if (content.size() > c_maxFileBytes) {
            RecordUnreadable(hostPath, "larger than " + std::to_string(c_maxFileBytes) + " bytes");
            return;
        }
        const fs::path placed = Output(hostPath);
        fs::create_directories(placed.parent_path());
        std::ofstream out(placed, std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!out) throw std::runtime_error("cannot write " + placed.string());
        ++m_summary.files;
        Record("file", hostPath, std::to_string(content.size()));
    }

    // A link is copied as it is when relative; an absolute target (a real
    // host's "/dev/dkcd") is rewritten relative so that it stays in the snapshot.
    // Returns the host path it points at.
    std::optional<std::string> TakeLink(const std::string& hostPath) {
        std::error_code error;
        fs::path target = fs::read_symlink(Source(hostPath), error);
        if (error) {
            RecordUnreadable(hostPath, error.message());
            return std::nullopt;
        }
        const fs::path linkDir = fs::path(hostPath).parent_path();
        const fs::path pointsAt = (target.is_absolute() ? target : (linkDir / target)).lexically_normal();
        if (target.is_absolute()) target = pointsAt.lexically_relative(linkDir);
        const fs::path placed = Output(hostPath);
        fs::create_directories(placed.parent_path());
        fs::remove(placed, error);
        fs::create_symlink(target, placed);
        ++m_summary.links;
        Record("link", hostPath, target.string());
        return pointsAt.string();
    }

    void TakeTree(const std::string& hostPath) {
        if (!IsDirectory(hostPath)) return;
        fs::create_directories(Output(hostPath));
        std::error_code error;
        fs::directory_iterator entries(Source(hostPath), error);
        if (error) {
            RecordUnreadable(hostPath, error.message());
            return;
        }
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : entries) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            const std::string child = hostPath + "/" + name;
            const fs::file_status status = fs::symlink_status(Source(child), error);
            if (fs::is_symlink(status)) {
                TakeLink(child);
            } else if (fs::is_directory(status)) {
                TakeTree(child);
            } else if (fs::is_regular_file(status)) {
                TakeFile(child);
            }
        }
    }

    void TakeFileOrTree(const std::string& hostPath) {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(Source(hostPath), error);
        if (fs::is_symlink(status)) {
            TakeLink(hostPath);
        } else if (fs::is_directory(status)) {
            TakeTree(hostPath);
        } else if (fs::is_regular_file(status)) {
            TakeFile(hostPath);
        }
    }

    void TakePattern(const std::string& pattern) {
        std::vector<std::string> matches{""};
        for (const fs::path& component : fs::path(pattern).relative_path()) {
            const std::string part = component.string();
            std::vector<std::string> next;
            for (const std::string& base : matches) {
                if (part.find('*') == std::string::npos) {
                    next.push_back(base + "/" + part);
                    continue;
                }
                std::error_code error;
                std::vector<std::string> names;
                for (const fs::directory_entry& entry : fs::directory_iterator(Source(base + "/"), error))
                    names.push_back(entry.path().filename().string());
                std::sort(names.begin(), names.end());
                for (const std::string& name : names)
                    if (fnmatch(part.c_str(), name.c_str(), 0) == 0) next.push_back(base + "/" + name);
            }
            matches = std::move(next);
        }
        for (const std::string& match : matches)
            if (Exists(match)) TakeFileOrTree(match);
    }

    void TakeDeviceNode(const std::string& hostPath) {
        if (!Exists(hostPath) || m_nodes.count(hostPath) != 0) return;
        m_nodes.insert(hostPath);
        const fs::path placed = Output(hostPath);
        fs::create_directories(placed.parent_path());
        std::ofstream emptyFile(placed, std::ios::trunc);
        Record("node", hostPath, "empty stand-in");
    }

    void TakeLinkDirectory(const std::string& hostPath) {
        if (!IsDirectory(hostPath)) return;
        fs::create_directories(Output(hostPath));
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(Source(hostPath), error)) {
            const std::string child = hostPath + "/" + entry.path().filename().string();
            if (!entry.is_symlink()) continue;
            if (std::optional<std::string> target = TakeLink(child)) TakeDeviceNode(*target);
        }
    }

    // The host path a link resolves to inside the source root; empty when it
    // leaves the root or does not resolve.
    std::optional<std::string> Resolve(const std::string& hostPath) const {
        std::error_code error;
        const fs::path root = fs::canonical(m_options.sourceRoot, error);
        if (error) return std::nullopt;
        const fs::path real = fs::canonical(Source(hostPath), error);
        if (error) return std::nullopt;
        const fs::path inside = real.lexically_relative(root);
        if (inside.empty() || *inside.begin() == "..") return std::nullopt;
        return "/" + inside.string();
    }

    void TakePciFunctions(const std::string& hostPath) {
        if (!IsDirectory(hostPath)) return;
        std::error_code error;
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(Source(hostPath), error))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        fs::create_directories(Output(hostPath));
        for (const std::string& name : names) {
            const std::string entry = hostPath + "/" + name;
            std::optional<std::string> real = entry;
            if (fs::is_symlink(fs::symlink_status(Source(entry), error))) {
                TakeLink(entry);
                real = Resolve(entry);
            }
            if (!real) {
                RecordUnreadable(entry, "link does not resolve inside the host");
                continue;
            }
            // The function itself, then every bridge up to the root complex.
            for (fs::path dir = *real; dir.string().starts_with(c_sysDevices) && dir != c_sysDevices;
                 dir = dir.parent_path()) {
                if (!m_functionsTaken.insert(dir.string()).second) break;
                TakePciFunctionFiles(dir.string());
                if (dir == dir.parent_path()) break;
            }
        }
    }

    void TakePciFunctionFiles(const std::string& dir) {
        fs::create_directories(Output(dir));
        for (const char* file : c_pciFunctionFiles) TakeFileIfPresent(dir + "/" + file);
        for (const char* tree : c_pciFunctionTrees) TakeTree(dir + "/" + tree);
        const std::string infiniband = dir + "/" + c_infinibandDir;
        if (IsDirectory(infiniband)) {
            std::error_code error;
            for (const fs::directory_entry& port : fs::directory_iterator(Source(infiniband), error)) {
                const std::string portPath = infiniband + "/" + port.path().filename().string();
                fs::create_directories(Output(portPath));
                Record("dir", portPath, "name only");
            }
        }
        const std::string driver = dir + "/" + c_driverLink;
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(Source(driver), error))) return;
        TakeLink(driver);
        if (std::optional<std::string> target = Resolve(driver)) fs::create_directories(Output(*target));
    }

    // Only the descriptors that resolve to the driver's node are taken: the
    // other descriptors, command lines and environments stay on the host.
    void TakeProcessClients(const std::string& hostPath) {
        std::error_code error;
        unsigned unlisted = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(Source(hostPath), error)) {
            const std::string pid = entry.path().filename().string();
            if (!IsNumber(pid)) continue;
            const std::string processDir = hostPath + "/" + pid;
            std::error_code fdError;
            fs::directory_iterator fds(Source(processDir + "/fd"), fdError);
            if (fdError) {
                ++unlisted;
                continue;
            }
            bool holdsNode = false;
            for (const fs::directory_entry& fd : fds) {
                const std::string fdPath = processDir + "/fd/" + fd.path().filename().string();
                std::error_code linkError;
                const fs::path target = fs::read_symlink(Source(fdPath), linkError);
                if (linkError) continue;
                const fs::path pointsAt =
                    target.is_absolute() ? target : (fs::path(fdPath).parent_path() / target).lexically_normal();
                if (pointsAt != c_deviceNode) continue;
                TakeLink(fdPath);
                holdsNode = true;
            }
            if (!holdsNode) continue;
            if (m_options.keepProcessNames) {
                TakeFileIfPresent(processDir + "/comm");
            } else {
                Record("dropped", processDir + "/comm", "process name");
            }
        }
        if (unlisted != 0) {
            m_summary.unreadable += unlisted;
            Record("unreadable", hostPath + "/*/fd", std::to_string(unlisted) + " processes not listable");
        }
        TakeDeviceNode(c_deviceNode);
    }

    const GatherOptions& m_options;
    fs::path m_out;
    GatherSummary m_summary;
    std::vector<std::string> m_lines;
    std::set<std::string> m_functionsTaken;
    std::set<std::string> m_nodes;
};

void GatherInto(const GatherOptions& options, const fs::path& dir, GatherSummary& summary) {
    Gatherer gatherer(options, dir);
    gatherer.Run();
    gatherer.WriteManifest();
    summary = gatherer.Summary();
}

}  // namespace

GatherSummary Gather(const GatherOptions& options, const fs::path& out) {
    std::error_code error;
    if (!fs::is_directory(options.sourceRoot, error))
        throw std::runtime_error("no such host root: " + options.sourceRoot.string());
    GatherSummary summary;
    if (IsArchiveName(out)) {
        ScratchDirectory scratch;
        GatherInto(options, scratch.Path(), summary);
        PackArchive(scratch.Path(), out);
        return summary;
    }
    // Never empty a directory that is not an earlier snapshot.
    if (fs::exists(out, error) && !fs::is_empty(out, error) && !fs::exists(out / c_manifestName, error))
        throw std::runtime_error(out.string() + " is not empty and holds no earlier snapshot");
    fs::remove_all(out, error);
    fs::create_directories(out);
    GatherInto(options, out, summary);
    return summary;
}

}  // namespace dksml::vhost
