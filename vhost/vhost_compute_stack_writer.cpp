// Installs the compute stack's version libraries at their default paths:
// the runtime of the training line and the SDK of the inference line.
#include <set>
#include <stdexcept>

#include "vhost/vhost_writers.h"

#ifndef DKVHOST_RUNTIME_DIR
#error "DKVHOST_RUNTIME_DIR must name the directory of the built runtime variants"
#endif

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

const std::set<std::string> c_runtimeVariants{"absent", "present", "no_symbol", "failing"};
const std::set<std::string> c_sdkVariants{"absent", "present"};
constexpr const char* c_runtimeTarget = "opt/vorn/lib/libvrruntime.so";
constexpr const char* c_sdkTarget = "opt/dkq7/lib/libdksdk.so";

std::string VariantOf(const nlohmann::json& section, const char* key, const std::set<std::string>& allowed) {
    std::string variant = section.value(key, std::string("absent"));
    if (!allowed.contains(variant))
        throw std::runtime_error(std::string("profile: compute_stack.") + key + ": unknown variant \"" + variant + "\"");
    return variant;
}

void Install(const fs::path& root, const std::string& builtDir, const char* name, const char* target) {
    const fs::path source = fs::path(DKVHOST_RUNTIME_DIR) / builtDir / name;
    const fs::path destination = root / target;
    fs::create_directories(destination.parent_path());
    fs::copy_file(source, destination, fs::copy_options::overwrite_existing);
}

}  // namespace

ComputeStackSpec ParseComputeStack(const nlohmann::json& section) {
    if (!section.is_object()) throw std::runtime_error("profile: compute_stack: must be an object");
    for (const auto& [key, value] : section.items()) {
        if (key != "runtime" && key != "sdk") throw std::runtime_error("profile: compute_stack: unknown key \"" + key + "\"");
    }
    return ComputeStackSpec{VariantOf(section, "runtime", c_runtimeVariants), VariantOf(section, "sdk", c_sdkVariants)};
}

void WriteComputeStack(const fs::path& root, const HostSpec& host) {
    if (host.computeStack.runtime != "absent")
        Install(root, host.computeStack.runtime, "libvrruntime.so", c_runtimeTarget);
    if (host.computeStack.sdk != "absent") Install(root, "sdk", "libdksdk.so", c_sdkTarget);
}

}  // namespace dksml::vhost
