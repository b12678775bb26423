"""The Python module on the shipped virtual hosts, against `dksmi --json` and
the attribute files the host wrote.

Run with DKSML_LIBRARY (the built library), DKSMI and DKVHOST (the tools) set;
CTest does this."""

from __future__ import annotations

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from typing import Any

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

import dksml  # noqa: E402
from dksml import api  # noqa: E402

DKSMI = os.environ.get("DKSMI", "dksmi")
DKVHOST = os.environ.get("DKVHOST", "dkvhost")

def process_rows(processes: list[dksml.Process]) -> list[dict[str, Any]]:
    """The records in the shape of dksmi's process list (less the namespace pid, which no record carries)."""
    return [{"pid": p.pid, "name": p.name,
             "gpus": [{"device_index": g.device_index, "bus_id": g.bus_id, "slice_id": g.slice_id,
                       "memory_domain": g.memory_domain, "memory_bytes": g.memory_bytes} for g in p.gpus]}
            for p in processes]


class VirtualHost:
    """A shipped profile written into a temporary directory; the library rediscovers on it."""

    def __init__(self, profile: str) -> None:
        self._dir = tempfile.TemporaryDirectory(prefix="dksml-py-")
        self.root = Path(self._dir.name) / profile
        subprocess.run([DKVHOST, "write", profile, str(self.root)], check=True, stdout=subprocess.DEVNULL)
        os.environ["DK_SMI_FSROOT"] = str(self.root)
        self.status = api.init_status(1)

    def read(self, host_path: str) -> str:
        return (self.root / host_path.lstrip("/")).read_text()

    def dksmi_json(self) -> dict[str, Any]:
        out = subprocess.run([DKSMI, "--json"], env=dict(os.environ), stdout=subprocess.PIPE, check=False)
        result: dict[str, Any] = json.loads(out.stdout)
        return result

    def close(self) -> None:
        self._dir.cleanup()


class SnapshotTest(unittest.TestCase):
    def test_every_host_equals_dksmi_json(self) -> None:
        """Device snapshots (keys in dksmi's order), limited devices and processes."""
        for profile in ("server", "guest", "slices"):
            host = VirtualHost(profile)
            self.addCleanup(host.close)
            with self.subTest(profile=profile):
                self.assertEqual(host.status, dksml.Return.SUCCESS)
                expected = host.dksmi_json()
                got = [list(d.snapshot().items()) for d in dksml.devices()]
                # No native export answers the power mode (dksmi reads it through the
                # library's power service): the one key of dksmi's device object the module cannot give.
                devices = [[(k, v) for k, v in d.items() if k != "power_mode"] for d in expected["devices"]]
                self.assertEqual(got, devices)
                limited = []
                for d in dksml.limited_devices():
                    reason = api.unavailable_reason(d.index)
                    limited.append({"index": d.index, "bus_id": d.bus_id, "vendor_id": d.vendor_id,
                                    "device_id": d.device_id, "is_virtual_function": d.is_virtual_function,
                                    "unavailable_reason": {"code": reason.reason, "text": reason.text}})
                self.assertEqual(limited, expected["limited_devices"])
                shown = [{k: v for k, v in p.items() if k != "namespace_pid"} for p in expected["processes"]]
                self.assertEqual(process_rows(api.processes()), shown)

    def test_a_host_without_gpus_reports_no_device(self) -> None:
        host = VirtualHost("empty")
        self.addCleanup(host.close)
        self.assertEqual(host.status, dksml.Return.ERROR_NO_DEVICE)
        with self.assertRaises(dksml.DkSmlError) as none:
            api.init(1)
        self.assertEqual(none.exception.code, 2)
        with self.assertRaises(dksml.DkSmlError):
            list(dksml.devices())


class ServerHostTest(unittest.TestCase):
    host: VirtualHost

    @classmethod
    def setUpClass(cls) -> None:
        cls.host = VirtualHost("server")
        cls.addClassCleanup(cls.host.close)

    def test_readings_outside_the_snapshot_match_the_attribute_files(self) -> None:
        """Dies, fans and the virtual-function links are in the snapshots compared above."""
        for device in dksml.devices():
            if device.role == dksml.VirtualizationMode.VF:
                continue
            smi = f"/sys/bus/pci/devices/{device.bus_id}/smi/"
            with self.subTest(device=device.index):
                isa = self.host.read(smi + "showisaversion").split(":")[1].strip()
                version = api.isa_version(device.index)
                self.assertEqual(f"{version.major}.{version.minor}", isa)
                vm_rows = self.host.read(smi + "showvmread").splitlines()
                self.assertEqual(api.die_voltage_monitor_raw(device.index, 0),
                                 [[int(v) for v in row.split(":")[1].split()] for row in vm_rows])
                self.assertTrue(api.real_path(device.index).endswith("/" + device.bus_id))

    def test_module_main_lists_the_devices_dksmi_shows(self) -> None:
        out = subprocess.run([sys.executable, "-m", "dksml"], env=dict(os.environ), stdout=subprocess.PIPE,
                             check=True, text=True, cwd=str(Path(__file__).resolve().parents[1])).stdout
        lines = out.splitlines()[1:]
        expected = self.host.dksmi_json()
        shown = [line for line in lines if "(limited)" not in line]
        self.assertEqual(len(shown), len(expected["devices"]))
        for line, device in zip(shown, expected["devices"]):
            self.assertTrue(line.startswith(f"{device['index']:<6}{device['name']:<12}{device['bus_id']:<15}"), line)
        self.assertEqual(len(lines) - len(shown), len(expected["limited_devices"]))

    def test_topology_and_affinity(self) -> None:
        """The whole matrix and the affinities are pinned by dksmi's golden topo transcripts."""
        for index in range(api.device_count()):
            self.assertEqual(api.topology(index, index), dksml.TopologyLevel.SAME_DEVICE)
            self.assertTrue(api.cpu_affinity(index))
            self.assertTrue(api.node_affinity(index))

    def test_compatibility_readings_agree_with_the_native_ones(self) -> None:
        api.ex_init()
        try:
            for index in range(api.device_count()):
                info = api.device_info(index)
                with self.subTest(device=index):
                    handle = api.ex_handle_by_bus_id(info.bus_id)
                    self.assertEqual(api.ex_pci_info(handle).bus_id, info.bus_id)
                    self.assertEqual(api.ex_uuid(handle), api.ex_uuid(api.ex_handle_by_uuid(api.ex_uuid(handle))))
                    # A handle is die 0 of the device; both families refuse a board without memory figures.
                    try:
                        native = api.memory(index, 0)
                    except dksml.NotSupported:
                        self.assertRaises(dksml.NotSupported, api.ex_memory, handle)
                        continue
                    self.assertEqual(api.ex_memory(handle).total_bytes, native.vram.total_kib * 1024)
        finally:
            api.ex_shutdown()


if __name__ == "__main__":
    unittest.main()
