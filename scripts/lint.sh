#!/usr/bin/env bash
# clang-tidy (checks in .clang-tidy, every warning an error) with the compile
# commands of an existing build directory.
#   scripts/lint.sh [BUILD_DIR]         the library's sources (api, core, driver,
#                                       features) and the headers they include
#   scripts/lint.sh --all [BUILD_DIR]   also tools/ and vhost/
# CI runs the first form: a library file takes about 4 s of CPU, a tool file
# built on CLI11, fmt and nlohmann-json 10 to 18 s, which would triple the step.
set -euo pipefail
cd "$(dirname "$0")/.."
dirs=('api/*.cpp' 'core/*.cpp' 'driver/*.cpp' 'features/*.cpp')
if [[ "${1:-}" == --all ]]; then
  dirs+=('tools/*.cpp' 'vhost/*.cpp')
  shift
fi
build_dir="${1:-build}"
[[ -f "$build_dir/compile_commands.json" ]] || { echo "lint: no $build_dir/compile_commands.json (configure first)" >&2; exit 2; }
mapfile -t files < <(git ls-files "${dirs[@]}")
# The tools' precompiled headers are gcc's, which clang cannot read: check from
# a copy of the compile commands without them (the sources include what they use).
db=$(mktemp -d)
python3 - "$build_dir/compile_commands.json" "$db/compile_commands.json" <<'PY'
import json, re, sys
entries = json.load(open(sys.argv[1]))
for e in entries:
    e["command"] = re.sub(r" -Winvalid-pch| -include \S*cmake_pch\.hxx", "", e["command"])
json.dump(entries, open(sys.argv[2], "w"))
PY
log=$(mktemp)
status=0
# gcc-only warning flags in the compile commands are unknown to clang.
run-clang-tidy -p "$db" -j"${DKSML_LINT_JOBS:-$(nproc)}" -quiet \
  -extra-arg=-Wno-unknown-warning-option "${files[@]/#/$PWD/}" >"$log" 2>&1 || status=$?
grep -v -e '^[0-9]* warnings\? generated\.$' -e '^clang-tidy-14 ' "$log" || true
rm -rf "$log" "$db"
[[ $status -eq 0 ]] && echo "lint: ${#files[@]} files clean"
exit "$status"
