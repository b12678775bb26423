// The process scan's directory parsing, driven through a temporary tree: the
// input becomes a client directory (one "NAME=CONTENT" line per entry), which
// is listed with DkDirList and whose names and contents go through the
// parsers the scan uses (pid and slice directory names, the "vram_" numbers,
// "nspid" and the memory files). The scan itself needs discovery's device
// maps and is left to the end-to-end tests.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "features/process/dk_dir_list.h"
#include "fuzz_common.h"

using namespace dksml;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t c_maxEntries = 64;
constexpr std::size_t c_maxNameLength = 200;

const fs::path& ClientDir() {
    static const fs::path dir = [] {
        char pattern[] = "/tmp/dksml-fuzz-proc-XXXXXX";
        const char* made = mkdtemp(pattern);
        if (made == nullptr) std::abort();
        return fs::path(made) / "4242";
    }();
    return dir;
}

bool UsableName(std::string_view name) {
    return !name.empty() && name.size() <= c_maxNameLength && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

// The reference: every digit of `text` up to the first non-digit, in 128 bits.
bool Reference(std::string_view text, uint64_t limit, uint64_t& value) {
    unsigned __int128 result = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits) {
        result = result * 10 + static_cast<unsigned>(text[digits] - '0');
        if (result > limit) return false;
    }
    value = static_cast<uint64_t>(result);
    return digits > 0;
}

void CheckNumber(std::string_view text, uint64_t limit) {
    uint64_t got = 0, expected = 0;
    const bool ok = ParseLeadingDecimal(text, limit, got);
    fuzz::Check(ok == Reference(text, limit, expected), "ParseLeadingDecimal accepts what the reference accepts");
    if (ok) fuzz::Check(got == expected && got <= limit, "ParseLeadingDecimal value");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);
    const fs::path& dir = ClientDir();
    std::error_code ec;
    fs::remove_all(dir, ec);
    fs::create_directories(dir);

    std::set<std::string> written;
    std::string_view rest = in.text;
    while (!rest.empty() && written.size() < c_maxEntries) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::size_t equals = line.find('=');
        const std::string_view name = line.substr(0, equals);
        const std::string_view content = equals == std::string_view::npos ? std::string_view() : line.substr(equals + 1);
        if (!UsableName(name) || written.count(std::string(name)) != 0) continue;
        const int fd = open((dir / std::string(name)).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (fd < 0) continue;
        const bool complete = write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size());
        close(fd);
        if (complete) written.emplace(name);
    }

    DkDirList list(dir.string());
    fuzz::Check(list.Opened(), "the client directory lists");
    fuzz::Check(list.Size() == written.size(), "every entry is listed once, dots left out");
    for (std::size_t i = 0; i < list.Size(); ++i) {
        const std::string name(list.Name(i));
        fuzz::Check(written.count(name) == 1, "listed names are the written ones");
        if (i > 0) fuzz::Check(strverscmp(std::string(list.Name(i - 1)).c_str(), name.c_str()) <= 0, "version order");

        // A pid or slice directory: digits only, 32 bits.
        uint32_t id = 0;
        const bool decimal = ParseDecimalName(name, id);
        uint64_t expected = 0;
        const bool allDigits = name.find_first_not_of("0123456789") == std::string::npos;
        fuzz::Check(decimal == (allDigits && Reference(name, UINT32_MAX, expected)), "decimal names");
        if (decimal) fuzz::Check(id == expected, "decimal name value");
        // "vram_<n>": the number after the prefix, 32 bits.
        const std::size_t vram = name.find("vram_");
        if (vram != std::string::npos) CheckNumber(std::string_view(name).substr(vram + 5), UINT32_MAX);

        // File contents: "nspid" (32 bits) and memory figures (64 bits), after leading blanks.
        std::string content;
        const int fd = open((dir / name).c_str(), O_RDONLY);
        fuzz::Check(fd >= 0, "a written entry opens");
        char buffer[4096];
        for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;) content.append(buffer, static_cast<std::size_t>(n));
        close(fd);
        std::string_view view(content);
        while (!view.empty() && (view.front() == ' ' || view.front() == '\t' || view.front() == '\n'))
            view.remove_prefix(1);
        CheckNumber(view, UINT32_MAX);
        CheckNumber(view, UINT64_MAX);
    }
    return 0;
}
