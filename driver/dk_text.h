// Text access and parsing helpers: the only code that turns the driver's
// attribute text into numbers. Their acceptance rules, separators and status
// codes are the library's contract with the driver.
//
// Hot paths read a file with one open/read/close into a buffer and walk it as
// std::string_view lines (DkTextLines); no streams, no regex, no exceptions on
// success. The helpers are split by family; this header includes them all:
//   dk_text_lines.h      line cursor, value extractors, trimming
//   dk_text_files.h      existence checks, environment, whole-file read/write
//   dk_text_numbers.h    number extraction, one-value-per-line readers, stoi
//   dk_text_key_value.h  "label: value" parsing
//   dk_text_bits.h       bit and list helpers
//   dk_text_unused.h     kept for completeness, no caller in the library
//                        (the throwing GetValue family among them)
#pragma once

#include "driver/dk_text_bits.h"
#include "driver/dk_text_files.h"
#include "driver/dk_text_key_value.h"
#include "driver/dk_text_lines.h"
#include "driver/dk_text_numbers.h"
#include "driver/dk_text_unused.h"
