#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "vhost/vhost_archive.h"
#include "vhost/vhost_gather.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

// Texts up to this size are shown in full, others only as "differs".
constexpr size_t c_shownTextBytes = 200;

struct Entry {
    bool isLink = false;
    std::string content;  // file text, or link target
};

using Tree = std::map<std::string, Entry>;

// Every file and link of a snapshot by host path (the manifest left out).
Tree ReadTree(const fs::path& root) {
    Tree tree;
    std::error_code error;
    for (fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, error), end;
         !error && it != end; it.increment(error)) {
        const fs::path relative = it->path().lexically_relative(root);
        if (relative == c_manifestName) continue;
        const std::string hostPath = "/" + relative.string();
        if (it->is_symlink()) {
            tree[hostPath] = Entry{true, fs::read_symlink(it->path()).string()};
        } else if (it->is_regular_file()) {
            std::ifstream in(it->path(), std::ios::binary);
            tree[hostPath] = Entry{false, std::string(std::istreambuf_iterator<char>(in), {})};
        }
    }
    if (error) throw std::runtime_error("cannot read snapshot " + root.string() + ": " + error.message());
    return tree;
}

// A snapshot directory, unpacked first when it is an archive.
class OpenedSnapshot {
public:
    explicit OpenedSnapshot(const fs::path& path) {
        if (IsArchiveName(path)) {
            m_scratch = std::make_unique<ScratchDirectory>();
            UnpackArchive(path, m_scratch->Path());
            m_root = m_scratch->Path();
        } else {
            if (!fs::is_directory(path)) throw std::runtime_error("no such snapshot: " + path.string());
            m_root = path;
        }
    }
    const fs::path& Root() const { return m_root; }

private:
    std::unique_ptr<ScratchDirectory> m_scratch;
    fs::path m_root;
};

std::string Shown(const Entry& entry) {
    if (entry.isLink) return "-> " + entry.content;
    if (entry.content.size() > c_shownTextBytes || entry.content.find('\0') != std::string::npos)
        return "(" + std::to_string(entry.content.size()) + " bytes)";
    std::string text = entry.content;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    std::string indented;
    for (char c : text) indented += c == '\n' ? std::string("\n      ") : std::string(1, c);
    return indented;
}

}  // namespace

unsigned DiffSnapshots(const fs::path& a, const fs::path& b, std::ostream& report) {
    const OpenedSnapshot first(a);
    const OpenedSnapshot second(b);
    const Tree left = ReadTree(first.Root());
    const Tree right = ReadTree(second.Root());
    unsigned differences = 0;
    auto l = left.begin();
    auto r = right.begin();
    while (l != left.end() || r != right.end()) {
        if (r == right.end() || (l != left.end() && l->first < r->first)) {
            report << "only in A: " << (l++)->first << "\n";
            ++differences;
            continue;
        }
        if (l == left.end() || r->first < l->first) {
            report << "only in B: " << (r++)->first << "\n";
            ++differences;
            continue;
        }
        if (l->second.isLink != r->second.isLink || l->second.content != r->second.content) {
            report << "differs:   " << l->first << "\n"
                   << "  A:  " << Shown(l->second) << "\n"
                   << "  B:  " << Shown(r->second) << "\n";
            ++differences;
        }
        ++l;
        ++r;
    }
    return differences;
}

}  // namespace dksml::vhost
