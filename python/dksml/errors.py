"""Exceptions raised for the library's status codes."""

from __future__ import annotations

from .enums import ExReturn, Return


class DkSmlError(Exception):
    """A call into libdksml answered something other than success.

    ``code`` is the library's status code, ``text`` its own message for it.
    """

    def __init__(self, code: int, text: str, function: str = "") -> None:
        self.code = code
        self.text = text
        self.function = function
        where = f"{function}: " if function else ""
        super().__init__(f"{where}{text} ({code})")


class NotSupported(DkSmlError):
    """The operation does not apply to this device (or its driver file is absent)."""


class DeviceNotAvailable(DkSmlError):
    """No device has the given index."""


# Status codes that get their own exception class; every other code raises DkSmlError.
_CLASS_BY_CODE: dict[int, type[DkSmlError]] = {
    Return.ERROR_NOT_SUPPORTED: NotSupported,
    Return.ERROR_DEVICE_NOT_AVAILABLE: DeviceNotAvailable,
}


def error_for(code: int, text: str, function: str = "") -> DkSmlError:
    return _CLASS_BY_CODE.get(code, DkSmlError)(code, text, function)


# The compatibility family has its own status numbers; only "not supported" shares a class.
_EX_CLASS_BY_CODE: dict[int, type[DkSmlError]] = {
    ExReturn.ERROR_NOT_SUPPORTED: NotSupported,
}


def ex_error_for(code: int, text: str, function: str = "") -> DkSmlError:
    """The exception for a dkSmlEx* status (``code`` is the DkSmlExReturn value)."""
    return _EX_CLASS_BY_CODE.get(code, DkSmlError)(code, text, function)
