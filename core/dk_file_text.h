// Small file probes shared by discovery and the device object. Paths are
// filesystem paths (HostPath already applied).
#pragma once

#include <string>

namespace dksml {

// First line without surrounding blanks; empty when unreadable or empty.
std::string ReadFirstLine(const std::string& path);

// The first line as an unsigned number ("0x" accepted in base 0).
bool ReadFirstNumber(const std::string& path, unsigned int& value, int base);

bool DirectoryOpens(const std::string& path);

// ReadFirstNumber for `name` relative to the directory descriptor `dirFd`,
// read into this thread's scratch text: one open, one read, no allocation
// once the scratch has grown. Discovery reads every PCI function's id files
// this way.
bool ReadFirstNumberAt(int dirFd, const char* name, unsigned int& value, int base);

}  // namespace dksml
