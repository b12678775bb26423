# Sourced by the test scripts. Every end-to-end test writes a virtual host of
# about 4,000 small files into TMPDIR; on a disk-backed /tmp creating and
# removing them costs most of a second per test, on tmpfs a few milliseconds.
# Use /dev/shm when the caller chose no TMPDIR and it has room for many hosts
# (a container's default 64 MiB would not hold a parallel run).
if [ -z "${TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
  shm_free_kib=$(df -Pk /dev/shm 2>/dev/null | awk 'NR == 2 { print $4 }')
  if [ "${shm_free_kib:-0}" -ge 1048576 ]; then
    export TMPDIR=/dev/shm
  fi
  unset shm_free_kib
fi
