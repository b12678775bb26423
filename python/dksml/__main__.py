"""`python3 -m dksml`: the devices of this host, one line each, then the limited ones."""

from __future__ import annotations

import sys
from typing import Optional

from . import api, devices, limited_devices
from .errors import DkSmlError


def _shown(value: Optional[object], unit: str = "") -> str:
    return "N/A" if value is None else f"{value}{unit}"


def main() -> int:
    status = api.init_status()
    if status != 0:
        print(f"dksml: {api.error_string(status)} ({int(status)})", file=sys.stderr)
        return 1
    print(f"{'Index':<6}{'Name':<12}{'Bus id':<15}{'Dies':<6}{'Hot spot':<10}{'Fan':<10}{'Xcore MHz'}")
    for device in devices():
        snapshot = device.snapshot()
        dies = snapshot["dies"]
        xcore = dies[0]["clocks_mhz"]["xcore"] if dies and dies[0]["clocks_mhz"] else None
        print(f"{device.index:<6}{device.name:<12}{device.bus_id:<15}{_shown(snapshot['die_count']):<6}"
              f"{_shown(snapshot['hotspot_temperature_c'], ' C'):<10}{_shown(snapshot['fan_rpm'], ' rpm'):<10}"
              f"{_shown(' '.join(str(v) for v in xcore) if xcore else None)}")
    try:
        limited = limited_devices()
    except DkSmlError:
        limited = []
    for entry in limited:
        reason = api.unavailable_reason(entry.index)
        print(f"{entry.index:<6}{'(limited)':<12}{entry.bus_id:<15}{reason.text} ({reason.reason})")
    return 0


if __name__ == "__main__":
    sys.exit(main())
