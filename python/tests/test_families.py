"""The later export families through the module: processes, slices,
topology, links, versions and the compatibility family, on the "slices" and
"server" hosts, against `dksmi --json` and the attribute files."""

from __future__ import annotations

import unittest
from typing import Any, Callable

from test_dksml import VirtualHost, without_unexported

import dksml
from dksml import api

SGPU = "/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/"
SLICE_DEVICE = 1
PLAIN_DEVICE = 0


def process_rows(processes: list[dksml.Process]) -> list[dict[str, Any]]:
    """The records in the shape of dksmi's process list (less the namespace pid, which no record carries)."""
    return [{"pid": p.pid, "name": p.name,
             "gpus": [{"device_index": g.device_index, "bus_id": g.bus_id, "slice_id": g.slice_id,
                       "memory_domain": g.memory_domain, "memory_bytes": g.memory_bytes} for g in p.gpus]}
            for p in processes]


class SlicesHostTest(unittest.TestCase):
    host: VirtualHost

    def setUp(self) -> None:
        self.host = VirtualHost("slices")

    def tearDown(self) -> None:
        self.host.close()

    def test_snapshots_and_processes_equal_dksmi(self) -> None:
        expected = self.host.dksmi_json()
        self.assertEqual([d.snapshot() for d in dksml.devices()], without_unexported(expected["devices"]))
        shown = [{k: v for k, v in p.items() if k != "namespace_pid"} for p in expected["processes"]]
        self.assertEqual(process_rows(api.processes()), shown)
        users = [p["pid"] for p in shown if any(g["device_index"] == PLAIN_DEVICE for g in p["gpus"])]
        self.assertEqual([p.pid for p in api.device_processes(PLAIN_DEVICE)], users)
        # A slice parent answers for the processes whose first GPU is one of its slices.
        firsts = [p["pid"] for p in shown if p["gpus"][0]["device_index"] == SLICE_DEVICE]
        self.assertEqual([p.pid for p in api.device_processes(SLICE_DEVICE)], firsts)

    def test_older_record_versions_drop_the_newer_fields(self) -> None:
        newest = api.processes(3)
        for version, domain, slice_known in ((1, False, False), (2, True, False), (3, True, True)):
            with self.subTest(version=version):
                got = api.processes(version)
                self.assertEqual([p.pid for p in got], [p.pid for p in newest])
                for old, new in zip(got, newest):
                    self.assertEqual([g.memory_bytes for g in old.gpus], [g.memory_bytes for g in new.gpus])
                    self.assertEqual([g.memory_domain for g in old.gpus],
                                     [g.memory_domain if domain else 0 for g in new.gpus])
                    self.assertEqual([g.slice_id for g in old.gpus],
                                     [g.slice_id if slice_known else None for g in new.gpus])

    def test_slice_readings_match_the_attribute_files(self) -> None:
        self.assertEqual(api.slice_ids(SLICE_DEVICE), [0, 1, 3])
        self.assertEqual(api.slice_count(SLICE_DEVICE), 3)
        for slice_id in (0, 1, 3):
            with self.subTest(slice_id=slice_id):
                info = api.slice_info(SLICE_DEVICE, slice_id)
                directory = f"{SGPU}sgpu{slice_id}/"
                self.assertEqual(info.vram_quota, int(self.host.read(directory + "vram_quota")))
                self.assertEqual(info.compute_quota, int(self.host.read(directory + "sched_quota")))
                self.assertEqual(api.slice_alias(SLICE_DEVICE, slice_id), self.host.read(directory + "alias"))
        self.assertEqual(api.slice_annotation_id(SLICE_DEVICE, 0), "42")
        self.assertEqual(api.slice_annotation_id(SLICE_DEVICE, 3), "slice-three-long-annotation")
        self.assertEqual(api.slice_timeslice(SLICE_DEVICE), 20)
        self.assertEqual(api.slice_available_quota(SLICE_DEVICE).total_vram_quota, 65536)

    def test_slice_setters_write_the_driver_files(self) -> None:
        cases: list[tuple[Callable[[], None], str, str]] = [
            (lambda: api.set_slice_alias(SLICE_DEVICE, 1, "batch"), "sgpu1/alias", "batch"),
            (lambda: api.set_slice_vram_quota(SLICE_DEVICE, 1, 4096), "sgpu1/vram_quota", "4096\n"),
            (lambda: api.set_slice_compute_quota(SLICE_DEVICE, 1, 30), "sgpu1/sched_quota", "30\n"),
            (lambda: api.set_slice_timeslice(SLICE_DEVICE, 15), "sched_timeslice", "15\n"),
            (lambda: api.remove_slice(SLICE_DEVICE, 3), "remove", "3\n"),
            (lambda: api.set_slice_mode(PLAIN_DEVICE, True), "../../../0000:17:01.0/0000:1b:00.0/model", "sgpu\n"),
        ]
        for action, file, text in cases:
            with self.subTest(file=file):
                action()
                self.assertEqual(self.host.read(SGPU + file), text)

    def test_refusals_raise_their_classes(self) -> None:
        cases: list[tuple[Callable[[], object], type[dksml.DkSmlError], int]] = [
            (lambda: api.slice_info(PLAIN_DEVICE, 0), dksml.NotSupported, 3),
            (lambda: api.slice_mode(4242), dksml.DeviceNotAvailable, 6),
            (lambda: api.create_slice(SLICE_DEVICE, 8192, 20), dksml.DkSmlError, 4),  # no driver makes the slice
            (lambda: api.ex_handle_by_bus_id("0000:ff:00.0"), dksml.DkSmlError, dksml.ExReturn.ERROR_INVALID_ARGUMENT),
        ]
        for call, kind, code in cases:
            with self.subTest(code=code), self.assertRaises(kind) as raised:
                call()
            self.assertEqual(raised.exception.code, code)
            self.assertTrue(raised.exception.text)

    def test_compatibility_family_counts_dies_and_slices(self) -> None:
        api.ex_init()
        try:
            # Device 0 has two dies, device 1 three slices; handles are one per die.
            self.assertEqual(api.ex_device_count(), 5)
            names = [api.ex_name(api.ex_handle_by_index(i)) for i in range(3)]
            self.assertEqual(names, [api.device_info(0).name] * 2 + [api.device_info(1).name])
            with self.assertRaises(dksml.DkSmlError):
                api.ex_handle_by_index(3)
            handle = api.ex_handle_by_bus_id("0000:1b:00.0")
            self.assertEqual(api.ex_pci_info(handle).bus_id, "0000:1b:00.0")
            self.assertEqual(api.ex_library_version(), self.host.dksmi_json()["library_version"])
        finally:
            api.ex_shutdown()


class ServerFamiliesTest(unittest.TestCase):
    host: VirtualHost

    @classmethod
    def setUpClass(cls) -> None:
        cls.host = VirtualHost("server")

    @classmethod
    def tearDownClass(cls) -> None:
        cls.host.close()

    def test_topology_and_affinity(self) -> None:
        count = api.device_count()
        for index in range(count):
            self.assertEqual(api.topology(index, index), dksml.TopologyLevel.SAME_DEVICE)
            self.assertTrue(api.cpu_affinity(index))
            self.assertTrue(api.node_affinity(index))
        levels = {api.topology(a, b) for a in range(count) for b in range(count) if a != b}
        self.assertNotIn(dksml.TopologyLevel.SAME_DEVICE, levels)

    def test_versions_and_levels_match_dksmi(self) -> None:
        expected = {d["index"]: d for d in self.host.dksmi_json()["devices"]}
        for device in dksml.devices():
            with self.subTest(device=device.index):
                shown = expected[device.index]
                self.assertEqual(dksml.api.die_versions(device.index).compute_stack
                                 if shown["versions"]["compute_stack"] else None,
                                 shown["versions"]["compute_stack"])
                for name, level in (shown["dies"][0]["performance_levels"] or {}).items():
                    ip = dksml.DpmIp[name.upper()]
                    if level["max"] is not None:
                        self.assertEqual(api.max_perf_level(device.index, ip, 0), level["max"])

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
