#!/usr/bin/env bash
# Gathers every shipped virtual host as a directory and as a .tar.gz, replays
# both, and requires dksmi's JSON and tables to be byte for byte the same as on
# the original tree (fields named "timestamp..." aside).
set -euo pipefail
dkvhost=$1 dksmi=$2 profiles=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

show() {  # ROOT OUT: dksmi's JSON and text views of ROOT, exit codes included
  local root=$1 out=$2
  { DK_SMI_FSROOT=$root "$dksmi" --json || echo "exit $?"; } 2>&1 | grep -v '"timestamp' >"$out.json"
  { DK_SMI_FSROOT=$root "$dksmi" || echo "exit $?"; } >"$out.txt" 2>&1
}

for file in "$profiles"/*.json; do
  profile=$(basename "$file" .json)
  host=$work/$profile-host
  "$dkvhost" write "$profile" "$host" >/dev/null
  "$dkvhost" gather "$work/$profile-dir" --root "$host" >/dev/null
  "$dkvhost" gather "$work/$profile.tar.gz" --root "$host" >/dev/null
  mkdir "$work/$profile-tar"
  tar -xzf "$work/$profile.tar.gz" -C "$work/$profile-tar"
  show "$host" "$work/$profile-original"
  for replay in dir tar; do
    show "$work/$profile-$replay" "$work/$profile-$replay-view"
    for kind in json txt; do
      if ! cmp -s "$work/$profile-original.$kind" "$work/$profile-$replay-view.$kind"; then
        echo "FAIL: $profile replayed from the $replay snapshot shows something else ($kind):"
        diff "$work/$profile-original.$kind" "$work/$profile-$replay-view.$kind" | head -20
        exit 1
      fi
    done
  done
  # The two forms of the snapshot hold the same files.
  "$dkvhost" diff "$work/$profile-dir" "$work/$profile.tar.gz" >/dev/null
  echo "ok: $profile"
done
