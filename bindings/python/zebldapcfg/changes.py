"""Changes of one attribute."""

from __future__ import annotations

from typing import ClassVar, Union

from ._native import lib

Value = Union[str, bytes]


class Change:
    """Values that are added, deleted or put in place of others: text, or all of them bytes."""

    operation: ClassVar[int]

    def __init__(self, *values: Value) -> None:
        self.values = values

    def __repr__(self) -> str:
        return f"{type(self).__name__}({', '.join(map(repr, self.values))})"


class Add(Change):
    """Adds values."""

    operation = lib.LDAP_MOD_ADD


class Delete(Change):
    """Deletes values, or without values the attribute."""

    operation = lib.LDAP_MOD_DELETE


class Replace(Change):
    """Puts values in place of all that the attribute has; without values it deletes the attribute."""

    operation = lib.LDAP_MOD_REPLACE
