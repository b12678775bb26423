"""A self-contained PEP 517 build backend for the dksml package.

The package is pure Python with no dependencies, so its wheel is a zip of the
package directory and three metadata files. Building it here, with the
standard library only, lets `pip install ./python` work on machines without
access to a package index (a build backend from the index is not needed).
"""

from __future__ import annotations

import base64
import hashlib
import io
import tarfile
import zipfile
from pathlib import Path
from typing import Any, Optional

NAME = "dksml"
VERSION = "2.0.0"
SUMMARY = "Python bindings of libdksml.so.2, the system-management library for the maker's GPUs"
ROOT = Path(__file__).resolve().parent.parent
PACKAGE = ROOT / NAME
DIST_INFO = f"{NAME}-{VERSION}.dist-info"
WHEEL_NAME = f"{NAME}-{VERSION}-py3-none-any.whl"

METADATA = (
    f"Metadata-Version: 2.1\nName: {NAME}\nVersion: {VERSION}\nSummary: {SUMMARY}\nRequires-Python: >=3.9\n"
)
WHEEL = "Wheel-Version: 1.0\nGenerator: dksml_build\nRoot-Is-Purelib: true\nTag: py3-none-any\n"


def _package_files() -> list[Path]:
    return sorted(p for p in PACKAGE.rglob("*") if p.is_file() and "__pycache__" not in p.parts)


def _record_line(name: str, data: bytes) -> str:
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}"


def get_requires_for_build_wheel(config_settings: Optional[dict[str, Any]] = None) -> list[str]:
    return []


def get_requires_for_build_sdist(config_settings: Optional[dict[str, Any]] = None) -> list[str]:
    return []


def build_wheel(wheel_directory: str, config_settings: Optional[dict[str, Any]] = None,
                metadata_directory: Optional[str] = None) -> str:
    entries = [(f"{NAME}/{p.relative_to(PACKAGE).as_posix()}", p.read_bytes()) for p in _package_files()]
    entries += [(f"{DIST_INFO}/METADATA", METADATA.encode()), (f"{DIST_INFO}/WHEEL", WHEEL.encode())]
    record = [_record_line(name, data) for name, data in entries] + [f"{DIST_INFO}/RECORD,,"]
    entries.append((f"{DIST_INFO}/RECORD", ("\n".join(record) + "\n").encode()))
    with zipfile.ZipFile(Path(wheel_directory) / WHEEL_NAME, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, data in entries:
            wheel.writestr(name, data)
    return WHEEL_NAME


def build_sdist(sdist_directory: str, config_settings: Optional[dict[str, Any]] = None) -> str:
    base = f"{NAME}-{VERSION}"
    archive = f"{base}.tar.gz"
    files = [ROOT / "pyproject.toml", ROOT / "README.md", *_package_files(), *sorted((ROOT / "build_backend").glob("*.py"))]
    with tarfile.open(Path(sdist_directory) / archive, "w:gz") as sdist:
        for path in files:
            sdist.add(path, arcname=f"{base}/{path.relative_to(ROOT).as_posix()}")
        info = tarfile.TarInfo(f"{base}/PKG-INFO")
        data = METADATA.encode()
        info.size = len(data)
        sdist.addfile(info, io.BytesIO(data))
    return archive
