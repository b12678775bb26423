#!/usr/bin/env bash
# Runs every libFuzzer target of the driver access layer for a fixed time.
#
#   fuzz/run_all.sh BUILD_DIR SECONDS_PER_TARGET
#
# BUILD_DIR is a build tree configured with clang and -DDKSML_BUILD_FUZZ=ON,
# for example:
#   CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DDKSML_BUILD_FUZZ=ON \
#     -DDKSML_BUILD_TESTS=OFF -DDKSML_BUILD_TOOLS=OFF -DDKSML_BUILD_BENCH=OFF
# The targets are (re)built first. Each target starts from the seeds in
# fuzz/corpus/<name>/ plus generated edge inputs (megabyte lines, NULs, lone
# colons, huge numbers) copied to a scratch corpus, so the repository is never
# written to. Crash inputs are kept in BUILD_DIR/fuzz-artifacts/. The script
# fails when any target crashes, leaks, times out or cannot be run.
set -u

if [ $# -ne 2 ]; then
    echo "usage: $0 BUILD_DIR SECONDS_PER_TARGET" >&2
    exit 2
fi
build_dir=$1
seconds=$2
case $seconds in
    ''|*[!0-9]*) echo "SECONDS_PER_TARGET must be a whole number" >&2; exit 2 ;;
esac

script_dir=$(cd "$(dirname "$0")" && pwd)
targets="lines keyvalue arrays conversions cpulist smbios dpm_version power_text process_dir"

if ! cmake --build "$build_dir" --target dksml_fuzz; then
    echo "fuzz: building the targets failed (is $build_dir configured with -DDKSML_BUILD_FUZZ=ON?)" >&2
    exit 1
fi

scratch=$(mktemp -d "${TMPDIR:-/tmp}/dksml-fuzz-XXXXXX")
trap 'rm -rf "$scratch"' EXIT
artifacts="$build_dir/fuzz-artifacts"
mkdir -p "$artifacts"

# Edge inputs shared by every target. The first byte is the target's control
# byte (counts, bases, buffer sizes); the rest is the text. The big ones
# (megabyte lines, huge numbers) are run once each, as a fixed regression
# check; the small ones seed the timed fuzzing, which is limited to inputs of
# 64 KiB so that it runs many inputs per second.
big="$scratch/big"
edge="$scratch/edge"
mkdir -p "$big" "$edge"
printf '\x05' > "$edge/empty"
printf '\x05:' > "$edge/lone-colon"
printf '\x05:::\n:\n\n:' > "$edge/colons"
printf '\x07a:\x00\x001\n\x00:\x00 2\n' > "$edge/nuls"
printf '\x09x: -99999999999999999999999 18446744073709551616 0x 0xg -0 1e99999\n' > "$edge/overflow"
printf '\x04GFX: 1500 1500\nMEM: not support\nSOC: 1200\n' > "$edge/showclocks"
{ printf '\x03v: '; head -c 1048576 /dev/zero | tr '\0' '9'; } > "$big/huge-number"
{ printf '\x03k:'; head -c 1048576 /dev/zero | tr '\0' ' '; printf '5'; } > "$big/megabyte-blanks"
{ printf '\x02'; head -c 1048576 /dev/zero | tr '\0' 'a'; } > "$big/megabyte-no-newline"
{ printf '\x01k: '; head -c 1048576 /dev/zero | tr '\0' '0'; printf '1 2:3'; } > "$big/megabyte-zeros"
{ printf '\x10'; head -c 65536 /dev/zero | tr '\0' '\n'; } > "$big/only-newlines"
{ printf '\x20'; head -c 1048576 /dev/zero | tr '\0' ':'; } > "$big/megabyte-colons"
{ printf '\x08'; head -c 1048576 /dev/zero; } > "$big/megabyte-nuls"

status=0
for name in $targets; do
    binary="$build_dir/fuzz/dksml_fuzz_$name"
    if [ ! -x "$binary" ]; then
        echo "fuzz: $binary is missing" >&2
        status=1
        continue
    fi
    corpus="$scratch/corpus-$name"
    mkdir -p "$corpus"
    cp "$edge"/* "$corpus"/
    if [ -d "$script_dir/corpus/$name" ]; then
        cp "$script_dir/corpus/$name"/* "$corpus"/ 2>/dev/null || true
    fi
    log="$scratch/$name.log"
    echo "fuzz: $name: fixed big inputs"
    if ! "$binary" -artifact_prefix="$artifacts/$name-" -rss_limit_mb=4096 -timeout=60 "$big"/* \
        > "$log" 2>&1; then
        echo "fuzz: $name FAILED on the fixed big inputs; last lines of its log:" >&2
        tail -n 40 "$log" >&2
        status=1
        continue
    fi
    echo "fuzz: $name for ${seconds}s"
    "$binary" "$corpus" \
        -max_total_time="$seconds" \
        -max_len=65536 \
        -timeout=25 \
        -rss_limit_mb=4096 \
        -print_final_stats=1 \
        -artifact_prefix="$artifacts/$name-" \
        > "$log" 2>&1
    rc=$?
    runs=$(grep -Eo 'stat::number_of_executed_units: *[0-9]+' "$log" | grep -Eo '[0-9]+$' || true)
    if [ $rc -ne 0 ]; then
        echo "fuzz: $name FAILED (exit $rc); last lines of its log:" >&2
        tail -n 40 "$log" >&2
        status=1
    else
        echo "fuzz: $name ok (${runs:-?} runs)"
    fi
done

if [ $status -ne 0 ]; then
    echo "fuzz: failures; crash inputs are in $artifacts" >&2
fi
exit $status
