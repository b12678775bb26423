// The compute-stack version, asked of the stack's own libraries at run time.
// Both are optional: a host without them answers "unknown" and
// DK_SML_ERROR_LOAD_LIBRARY. These are shared libraries the stack installs,
// not driver files, so they are loaded here (under the host root) rather than
// read through the driver data handler.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "core/dk_host_root.h"
#include "features/version/dk_version.h"
#include "features/version/dk_version_text.h"

namespace dksml {
namespace {

// The runtime of the training line and the SDK of the inference line.
constexpr const char c_vornPathVariable[] = "VORN_PATH";
constexpr std::string_view c_vornDefaultDir = "/opt/vorn/";
constexpr const char c_runtimeLibrary[] = "/lib/libvrruntime.so";
constexpr const char c_runtimeSymbol[] = "vrRuntimeGetFullVersion";
constexpr std::string_view c_sdkLibrary = "/opt/dkq7/lib/libdksdk.so";
constexpr const char c_sdkSymbol[] = "vrGetVersion";
constexpr std::size_t c_sdkTextLength = 64;

// int vrRuntimeGetFullVersion(int* majorMinor, int* patch, int* build)
using RuntimeVersionFn = int (*)(int*, int*, int*);
// int vrGetVersion(char* text, unsigned int length)
using SdkVersionFn = int (*)(char*, unsigned int);

// The stack's libraries are loaded, asked and closed one caller at a time:
// they do not promise to be thread-safe, and a load racing an unload in the
// dynamic loader is otherwise ordered only by the loader's private lock.
std::mutex& StackLibraryLock() {
    static std::mutex lock;
    return lock;
}

// Closes the library on every path; holds the stack lock while it is open.
class DkLoadedLibrary {
public:
    explicit DkLoadedLibrary(const std::string& path)
        : m_lock(StackLibraryLock()), m_handle(dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL)) {}
    ~DkLoadedLibrary() {
        if (m_handle != nullptr) dlclose(m_handle);
    }
    DkLoadedLibrary(const DkLoadedLibrary&) = delete;
    DkLoadedLibrary& operator=(const DkLoadedLibrary&) = delete;

    template <typename Fn>
    Fn Find(const char* symbol) const {
        return m_handle == nullptr ? nullptr : reinterpret_cast<Fn>(dlsym(m_handle, symbol));
    }

private:
    std::lock_guard<std::mutex> m_lock;
    void* m_handle;
};

// VORN_PATH is used as given; the default directory is a host path.
std::string RuntimeLibraryPath() {
    const char* configured = secure_getenv(c_vornPathVariable);
    std::string path = configured != nullptr ? std::string(configured) : HostPath(c_vornDefaultDir);
    return path + c_runtimeLibrary;
}

}  // namespace

DkSmlReturn DkVersion::GetVornVersion(char* buffer, uint32_t size) {
    if (buffer == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn runtime = GetDkkVornVersion(buffer, size);
    if (runtime == DK_SML_SUCCESS) return runtime;
    return GetDkqVornVersion(buffer, size);
}

// 2030, 5, 17 reads "2.3.5.17": the first number is major * 1000 + minor * 10.
DkSmlReturn DkVersion::GetDkkVornVersion(char* buffer, uint32_t size) {
    if (buffer == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    PutText(c_unknown, buffer, size);
    const DkLoadedLibrary library(RuntimeLibraryPath());
    const auto getVersion = library.Find<RuntimeVersionFn>(c_runtimeSymbol);
    if (getVersion == nullptr) return DK_SML_ERROR_LOAD_LIBRARY;
    int majorMinor = 0;
    int patch = 0;
    int build = 0;
    if (getVersion(&majorMinor, &patch, &build) != 0) return DK_SML_ERROR_LOAD_LIBRARY;
    char text[64];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", majorMinor / 1000, (majorMinor % 1000) / 10, patch, build);
    return AnswerWholeText(text, buffer, size);
}

DkSmlReturn DkVersion::GetDkqVornVersion(char* buffer, uint32_t size) {
    if (buffer == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    PutText(c_unknown, buffer, size);
    const DkLoadedLibrary library(HostPath(c_sdkLibrary));
    const auto getVersion = library.Find<SdkVersionFn>(c_sdkSymbol);
    if (getVersion == nullptr) return DK_SML_ERROR_LOAD_LIBRARY;
    char text[c_sdkTextLength] = {};
    if (getVersion(text, sizeof text) != 0) return DK_SML_ERROR_LOAD_LIBRARY;
    text[sizeof text - 1] = '\0';
    return AnswerWholeText(text, buffer, size);
}

}  // namespace dksml
