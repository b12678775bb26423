"""The slice family, process record versions and the compatibility family's
slice counting through the module on the "slices" host, against `dksmi --json`
and the attribute files (the server's families are in test_dksml)."""

from __future__ import annotations

import unittest
from typing import Callable

from test_dksml import VirtualHost, process_rows

import dksml
from dksml import api

SGPU = "/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/"
SLICE_DEVICE = 1
PLAIN_DEVICE = 0


class SlicesHostTest(unittest.TestCase):
    host: VirtualHost

    def setUp(self) -> None:
        self.host = VirtualHost("slices")
        self.addCleanup(self.host.close)

    def test_device_processes_follow_dksmi(self) -> None:
        """The process list itself is compared in test_dksml."""
        shown = self.host.dksmi_json()["processes"]
        users = [p["pid"] for p in shown if any(g["device_index"] == PLAIN_DEVICE for g in p["gpus"])]
        self.assertEqual([p.pid for p in api.device_processes(PLAIN_DEVICE)], users)
        # A slice parent answers for the processes whose first GPU is one of its slices.
        firsts = [p["pid"] for p in shown if p["gpus"][0]["device_index"] == SLICE_DEVICE]
        self.assertEqual([p.pid for p in api.device_processes(SLICE_DEVICE)], firsts)

    def test_older_record_versions_drop_the_newer_fields(self) -> None:
        """Pids, names, bus ids and memory as in the newest version; the memory
        domain comes with version 2, the slice id with 3."""
        newest = process_rows(api.processes(3))
        for version in (1, 2):
            with self.subTest(version=version):
                unknown: dict[str, int | None] = {"slice_id": None}
                if version == 1:
                    unknown["memory_domain"] = 0
                expected = [dict(p, gpus=[dict(g, **unknown) for g in p["gpus"]]) for p in newest]
                self.assertEqual(process_rows(api.processes(version)), expected)

    def test_slice_readings_outside_the_snapshot(self) -> None:
        """Ids, quotas and aliases are in the snapshot compared in test_dksml."""
        self.assertEqual(api.slice_count(SLICE_DEVICE), 3)
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

    def test_refusals_raise_their_classes_with_the_library_text(self) -> None:
        ex = api.ex_error_string
        cases: list[tuple[Callable[[], object], type[dksml.DkSmlError], int, Callable[[int], str]]] = [
            (lambda: api.slice_info(PLAIN_DEVICE, 0), dksml.NotSupported, 3, api.error_string),
            (lambda: api.fan(4242), dksml.DeviceNotAvailable, 6, api.error_string),
            (lambda: api.clocks(PLAIN_DEVICE, 2), dksml.DkSmlError, 7, api.error_string),  # two dies
            (lambda: api.create_slice(SLICE_DEVICE, 8192, 20), dksml.DkSmlError, 4, api.error_string),  # no driver
            (lambda: api.ex_handle_by_bus_id("0000:ff:00.0"), dksml.DkSmlError, 2, ex),
        ]
        for call, kind, code, text in cases:
            with self.subTest(code=code), self.assertRaises(kind) as raised:
                call()
            self.assertEqual(raised.exception.code, code)
            self.assertEqual(raised.exception.text, text(code))

    def test_compatibility_family_counts_dies_and_slices(self) -> None:
        api.ex_init()
        try:
            # Device 0 has two dies, device 1 three slices; handles are one per die.
            self.assertEqual(api.ex_device_count(), 5)
            names = [api.ex_name(api.ex_handle_by_index(i)) for i in range(3)]
            self.assertEqual(names, [api.device_info(0).name] * 2 + [api.device_info(1).name])
            with self.assertRaises(dksml.DkSmlError):
                api.ex_handle_by_index(3)
            self.assertEqual(api.ex_library_version(), self.host.dksmi_json()["library_version"])
        finally:
            api.ex_shutdown()


if __name__ == "__main__":
    unittest.main()
