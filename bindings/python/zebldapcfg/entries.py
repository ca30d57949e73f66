"""The entries that a search finds."""

from __future__ import annotations

from collections.abc import Iterator, Mapping
from typing import Any, NamedTuple

from ._native import ffi, lib


class Result(NamedTuple):
    """What the entries of a search share: the records, which live as long as one of them, and their encoding."""

    records: Any
    encoding: str

    def decoded(self, text: bytes) -> str:
        return text.decode(self.encoding, "surrogateescape")


class Entry(Mapping[str, tuple[str, ...]]):
    """An entry: its DN, and its attributes with their values. Names are taken without regard to case.

    It lives on after the configuration is closed. Its texts are made when they are first asked for.
    """

    __slots__ = ("_record", "_result", "_attributes")

    def __init__(self, record: Any, result: Result) -> None:
        self._record = record
        self._result = result
        self._attributes: dict[str, tuple[str, tuple[str, ...]]] | None = None

    @property
    def dn(self) -> str:
        """The DN, as the library writes it."""
        return self._result.decoded(ffi.string(self._record.text))

    # By their names in small letters. One call fetches all texts: a call for each would take several times as long.
    def _read(self) -> dict[str, tuple[str, tuple[str, ...]]]:
        if self._attributes is not None:
            return self._attributes
        size = ffi.new("size_t *")
        block = lib.textsBelow(self._record, size)
        if not block:
            raise MemoryError
        texts = self._result.decoded(ffi.unpack(block, size[0])).split("\0")
        lib.free(block)
        self._attributes = {}
        at = 0
        while at < len(texts) - 1:
            name, count = texts[at], int(texts[at + 1])
            at += 2 + count
            self._attributes[name.lower()] = name, tuple(texts[at - count : at])
        return self._attributes

    def __getitem__(self, name: str) -> tuple[str, ...]:
        return self._read()[name.lower()][1]

    def __iter__(self) -> Iterator[str]:
        return (name for name, _ in self._read().values())

    def __len__(self) -> int:
        return len(self._read())

    def __repr__(self) -> str:
        return f"<Entry {self.dn!r}>"
