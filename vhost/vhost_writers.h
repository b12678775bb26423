// The three parts of a host tree, each written from the validated profile.
#pragma once

#include <filesystem>
#include <string>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {

// The real directory of a PCI function under /sys/devices (host path).
std::string PciDevicePath(const DeviceSpec& device);

// /sys/devices, /sys/bus/pci (links, drivers) and the per-die attribute directories.
void WritePciTree(const std::filesystem::path& root, const HostSpec& host);

// /sys/class/dravik/dkcd/layout/nodes with the link records.
void WriteLayout(const std::filesystem::path& root, const HostSpec& host);

// /proc, /dev, the driver manager directory, debugfs and the profile's extra files.
void WriteSystemFiles(const std::filesystem::path& root, const HostSpec& host);

// The compute stack's libraries under /opt (vhost_compute_stack_writer.cpp).
void WriteComputeStack(const std::filesystem::path& root, const HostSpec& host);

}  // namespace dksml::vhost
