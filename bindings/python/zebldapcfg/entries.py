"""The entries that a search finds."""

from __future__ import annotations

from collections.abc import Iterator, Mapping
from functools import cached_property
from typing import Any

from ._native import ffi


class Entry(Mapping[str, tuple[str, ...]]):
    """An entry: its DN, and its attributes with their values. Names are taken without regard to case.

    It lives on after the configuration is closed. Its texts are made when they are first asked for.
    """

    def __init__(self, record: Any, result: Any, encoding: str) -> None:
        self._record = record
        self._result = result  # keeps the records alive
        self._encoding = encoding

    def _text(self, pointer: Any) -> str:
        text: str = ffi.string(pointer).decode(self._encoding, "surrogateescape")
        return text

    @cached_property
    def dn(self) -> str:
        """The DN, as the library writes it."""
        return self._text(self._record.text)

    @cached_property
    def _attributes(self) -> dict[str, tuple[str, tuple[str, ...]]]:
        attributes = {}
        attribute = self._record.child
        while attribute:
            name = self._text(attribute.text)
            values = []
            value = attribute.child
            while value:
                if value.text:
                    values.append(self._text(value.text))
                value = value.next
            attributes[name.lower()] = name, tuple(values)
            attribute = attribute.next
        return attributes

    def __getitem__(self, name: str) -> tuple[str, ...]:
        return self._attributes[name.lower()][1]

    def __iter__(self) -> Iterator[str]:
        return (name for name, _ in self._attributes.values())

    def __len__(self) -> int:
        return len(self._attributes)

    def __repr__(self) -> str:
        return f"<Entry {self.dn!r}>"
