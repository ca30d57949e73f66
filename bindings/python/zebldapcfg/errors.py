"""Failures of the library: a class for each result code that it gives."""

from __future__ import annotations

from dataclasses import dataclass
from typing import ClassVar


@dataclass(eq=False, repr=False)
class Error(Exception):
    """A call has failed.

    code: the result code. extended: the most specific code that is known, else the result code.
    file, line: the configuration file, and the line there, from 1; 0 where no line applies.
    entry, attribute, value: what the failure concerns, or None. The value of a refused password is its clear text:
        str() leaves it out.
    minimum, maximum, choices, mask, is_single: the limits of the attribute's type; 0 and () mean none.
    report: all that the library knows of the failure, several lines.
    """

    code: int
    extended: int
    text: str
    file: str | None = None
    line: int = 0
    entry: str | None = None
    attribute: str | None = None
    value: str | None = None
    minimum: int = 0
    maximum: int = 0
    choices: tuple[str, ...] = ()
    mask: int = 0
    is_single: bool = False
    report: str | None = None

    classes: ClassVar[dict[int, type[Error]]] = {}

    def __init_subclass__(cls, code: int) -> None:
        Error.classes[code] = cls

    def __str__(self) -> str:
        codes = f"({self.code}, {self.extended})" if self.extended != self.code else f"({self.code})"
        place = f" at {self.file}:{self.line}" if self.line else ""
        subject = ": ".join(each for each in (self.entry, self.attribute) if each)
        return f"{subject}: {self.text} {codes}{place}" if subject else f"{self.text} {codes}{place}"

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), (self.code, self.extended, self.text), self.__dict__


class NoSuchAttribute(Error, code=16):
    """The entry lacks the attribute."""


class InvalidSyntax(Error, code=21):
    """The syntax of the attribute refuses the value, or a name is empty or too long."""


class NoSuchObject(Error, code=32):
    """There is no such entry."""


class InvalidDNSyntax(Error, code=34):
    """This is no DN."""


class InvalidCredentials(Error, code=49):
    """The login is refused."""


class InsufficientAccess(Error, code=50):
    """The file cannot be written, or not moved to its backup."""


class Busy(Error, code=51):
    """Somebody else holds the lock of the file."""


class ObjectClassViolation(Error, code=65):
    """An attribute stands outside an entry."""


class NotAllowedOnNonLeaf(Error, code=66):
    """The entry has others below it."""


class Other(Error, code=80):
    """Something unexpected has failed, or there is no default file."""


class AuthUnknown(Error, code=86):
    """The method of the login is unknown."""


class ParamError(Error, code=89):
    """An argument is missing or unknown."""


class NoMemory(Error, code=90):
    """There is not enough memory."""


class ConnectError(Error, code=91):
    """The configuration file cannot be found or read."""


class NotSupported(Error, code=92):
    """A value has no such form."""


class InvalidText(Error, code=162):
    """The locale cannot convert a text."""


class InvalidEncodedPassword(Error, code=202):
    """An encoded password is none that the codec has made."""


class DamagedEncodedPassword(Error, code=203):
    """An encoded password has been damaged."""
