// The three parts of a host tree, each written from the validated profile.
#pragma once

#include <filesystem>
#include <string>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {

// The real directory of a PCI function under /sys/devices (host path).
std::string PciDevicePath(const DeviceSpec& device);

// /sys/devices, /sys/bus/pci (links, drivers, bridges, config spaces) and the
// per-die attribute directories.
void WritePciTree(const std::filesystem::path& root, const HostSpec& host);

// /sys/class/dravik/dkcd/layout/nodes with the link records.
void WriteLayout(const std::filesystem::path& root, const HostSpec& host);

// The firmware's SMBIOS table with a system slot per physical GPU.
void WriteFirmwareTables(const std::filesystem::path& root, const HostSpec& host);

// /proc, /dev, the driver manager directory, debugfs and the profile's extra files.
void WriteSystemFiles(const std::filesystem::path& root, const HostSpec& host);

// The driver's client directory of one process ("nspid", "name", "vram_<n>",
// "ringbuf/<i>/") at `dir`, a host path ending in '/' (vhost_process_writer.cpp).
void WriteClientDirectory(const std::filesystem::path& root, const std::string& dir, const ProcessSpec& process);

// The "model" file, "sgpu" tree and slice layout nodes of devices in slice
// mode (vhost_sgpu_writer.cpp).
void WriteSliceGpus(const std::filesystem::path& root, const HostSpec& host);
// The compute stack's libraries under /opt (vhost_compute_stack_writer.cpp).
void WriteComputeStack(const std::filesystem::path& root, const HostSpec& host);

}  // namespace dksml::vhost
