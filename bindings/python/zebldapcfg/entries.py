"""The entries that a search finds."""

from __future__ import annotations

from collections.abc import Callable, Iterator, Mapping
from typing import Any, NamedTuple

from ._native import ffi, lib


class Result(NamedTuple):
    """What the entries of a search share: the records, which live as long as one of them, and their encoding."""

    records: Any
    encoding: str

    def texts(self, fetch: Callable[[Any, Any], Any], record: Any) -> list[str]:
        """The texts that a call puts into one block, each with a NUL. A call for each would take several times as long."""
        size = ffi.new("size_t *")
        block = fetch(record, size)
        if not block:
            raise MemoryError
        texts: bytes = ffi.unpack(block, size[0])
        lib.free(block)
        return texts.decode(self.encoding, "surrogateescape").split("\0")[:-1]


class Entry(Mapping[str, tuple[str, ...]]):
    """An entry: its DN, and its attributes with their values. Names are taken without regard to case.

    It lives on after the configuration is closed. Its attributes are made when one is first asked for.
    """

    __slots__ = ("dn", "_record", "_result", "_attributes")

    def __init__(self, dn: str, record: Any, result: Result) -> None:
        self.dn = dn
        self._record = record
        self._result = result
        self._attributes: dict[str, tuple[str, tuple[str, ...]]] | None = None

    # By their names in small letters.
    def _read(self) -> dict[str, tuple[str, tuple[str, ...]]]:
        if self._attributes is not None:
            return self._attributes
        texts = self._result.texts(lib.textsBelow, self._record)
        self._attributes = {}
        at = 0
        while at < len(texts):
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
