// Helpers shared by the driver access layer tests: a temporary directory with
// small file utilities.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "support/dk_shipped_profiles.h"

namespace dksml::test {

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "dksml-driver-XXXXXX").string();
        char* made = mkdtemp(pattern.data());
        if (made == nullptr) throw std::runtime_error("mkdtemp failed");
        m_path = made;
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::string operator/(std::string_view name) const { return (m_path / name).string(); }

    // Creates the file (and its parents) with exactly `content`.
    std::string Write(std::string_view name, std::string_view content) const {
        const std::filesystem::path p = m_path / name;
        std::filesystem::create_directories(p.parent_path());
        std::ofstream out(p, std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        return p.string();
    }
    std::string Mkdir(std::string_view name) const {
        const std::filesystem::path p = m_path / name;
        std::filesystem::create_directories(p);
        return p.string();
    }

private:
    std::filesystem::path m_path;
};

// Sets or unsets an environment variable for a scope and restores it.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name)) m_old = old;
        Set(value);
    }
    ~ScopedEnv() { Set(m_old ? m_old->c_str() : nullptr); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    void Set(const char* value) const {
        value != nullptr ? setenv(m_name.c_str(), value, 1) : unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_old;
};

// Runs `fn` and returns the DkSmlReturn it throws, or -1 when it does not throw.
template <typename Fn>
int ThrownCode(Fn&& fn) {
    try {
        fn();
    } catch (DkSmlReturn code) {
        return static_cast<int>(code);
    }
    return -1;
}

}  // namespace dksml::test
