// Command line of dksml-exporter.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace dksml::exporter {

struct ExporterOptions {
    std::string listen = "127.0.0.1:9489";
    double collectTimeoutSeconds = 5.0;
    double rediscoverIntervalSeconds = 300.0;  // 0: only on SIGHUP
    bool perProcess = false;
    std::string webRoot;  // directory of the "/" page; empty: next to the binary
};

// Parses argv; prints help, version or the error and returns the exit code in
// `exitCode` when the program should stop.
std::optional<ExporterOptions> ParseOptions(int argc, char** argv, int& exitCode);

std::chrono::milliseconds ToMilliseconds(double seconds);

}  // namespace dksml::exporter
