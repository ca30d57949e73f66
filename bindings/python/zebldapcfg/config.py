"""A configuration file that is open."""

from __future__ import annotations

import locale
from collections.abc import Callable, Iterable, Mapping, Sequence
from enum import IntEnum
from types import TracebackType
from typing import Any, Union

from .changes import Add, Change, Value
from .entries import Entry, Result
from .errors import Error
from .lock import FileLock
from .raw import ffi, lib, lock as _calls

Changes = Mapping[str, Union[Change, Sequence[Change]]]
Values = Mapping[str, Union[Value, Iterable[Value]]]


class Scope(IntEnum):
    """Which entries a search looks at, seen from its base."""

    BASE = lib.LDAP_SCOPE_BASE
    ONELEVEL = lib.LDAP_SCOPE_ONELEVEL
    SUBTREE = lib.LDAP_SCOPE_SUBTREE


class Option(IntEnum):
    """The options of a handle; SHOW_SOURCE and SHOW_STACK belong to the process."""

    STORED_FLAG_0 = lib.CFG_OPT_STORED_FLAG_0
    STORED_FLAG_1 = lib.CFG_OPT_STORED_FLAG_1
    SHOW_SOURCE = lib.CFG_OPT_SHOW_SOURCE
    SHOW_STACK = lib.CFG_OPT_SHOW_STACK
    DELETE_NON_LEAVES = lib.CFG_OPT_DELETE_NON_LEAVES
    CONFIG_FILE = lib.CFG_OPT_CONFIG_FILE
    BACKUP_FILE = lib.CFG_OPT_BACKUP_FILE


_names = (Option.CONFIG_FILE, Option.BACKUP_FILE)


def _decoded(pointer: Any, encoding: str) -> str | None:
    return ffi.string(pointer).decode(encoding, "surrogateescape") if pointer else None


def _static(call: Callable[[], Any]) -> str | None:
    with _calls:
        return _decoded(call(), locale.nl_langinfo(locale.CODESET))


def error_text(code: int) -> str:
    """The text of a result code or an extended code."""
    return _static(lambda: lib.cfg_err2string(code)) or ""


def install_path() -> str | None:
    """The install location, if there is one."""
    return _static(lib.getInstallPath)


def default_file() -> str | None:
    """The default configuration file, if there is an install location."""
    return _static(lib.getDefaultConfigFilename)


def _unbind(handle: Any) -> None:
    with _calls:
        lib.cfg_unbind(handle)


def _free(result: Any) -> None:
    with _calls:
        lib.cfg_msgfree(result)


class Config:
    """A configuration file that is open: made by open(), closed by close() or at the end of a with statement.

    Texts are str, in the encoding of the locale that the process had when this was made. A failure raises Error, an
    argument with a NUL ValueError, and so does every use after close(). Threads may share it.
    """

    def __init__(self, name: str | None, backup: str | None, guard: FileLock | None) -> None:
        self._guard = guard
        with _calls:
            handle = lib.initInOwnLocale()
            if not handle:
                raise MemoryError
            self._handle = ffi.gc(handle, _unbind)
            self._encoding = locale.nl_langinfo(locale.CODESET)
        self.set_option(Option.CONFIG_FILE, name)
        self.set_option(Option.BACKUP_FILE, backup)

    def __enter__(self) -> Config:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, raised: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def close(self) -> None:
        """Releases the handle and the lock. What has been found stays. A second call does nothing."""
        if self._handle is not None:
            ffi.release(self._handle)
            self._handle = None
        if self._guard is not None:
            self._guard.release()

    def bind(self, dn: str | None = None, password: str | None = None) -> None:
        """Reads the file and logs in, without arguments anonymously."""
        self._call(lib.cfg_bind_s, self._given(dn), self._given(password), lib.LDAP_AUTH_SIMPLE)

    def search(
        self,
        base: str,
        scope: Scope = Scope.SUBTREE,
        filter: str = "(objectclass=*)",
        attributes: Iterable[str] | None = None,
    ) -> list[Entry]:
        """The entries that pass a test on one attribute, with these attributes or all. Parents come first."""
        found = ffi.new("CFGMessage **")
        names, keep = self._texts(attributes) if attributes is not None else (ffi.NULL, None)
        self._call(lib.cfg_search_s, self._given(base), scope, self._given(filter), names, 0, found)
        del keep
        record = found[0]
        result = Result(ffi.gc(record, _free), self._encoding)
        entries = []
        for dn in result.texts(lib.dnsOf, record):
            entries.append(Entry(dn, record, result))
            record = record.next
        return entries

    def add(self, dn: str, attributes: Values) -> None:
        """Adds an entry, or adds the attributes to one that is there."""
        rows = [
            (name, Add(*([values] if isinstance(values, (str, bytes)) else values)))
            for name, values in attributes.items()
        ]
        self._update(lib.cfg_add_s, dn, rows)

    def modify(self, dn: str, changes: Changes) -> None:
        """Changes attributes of an entry, in the order given. Those before one that fails stay applied in memory."""
        rows = [
            (name, each)
            for name, change in changes.items()
            for each in ([change] if isinstance(change, Change) else change)
        ]
        self._update(lib.cfg_modify_s, dn, rows)

    def delete(self, dn: str, recursive: bool = False) -> None:
        """Deletes an entry, if recursive with all below it."""
        with _calls:
            before = self.option(Option.DELETE_NON_LEAVES)
            self.set_option(Option.DELETE_NON_LEAVES, recursive)
            try:
                self._call(lib.cfg_delete_s, self._given(dn))
            finally:
                self.set_option(Option.DELETE_NON_LEAVES, before)

    def flush(self) -> None:
        """Writes the file, after reading it again if it has changed."""
        self._call(lib.cfg_flush_s)

    def outline(self) -> str:
        """The tree in memory as a printable outline."""
        return self._outline(0).decode(self._encoding, "surrogateescape")

    def oem_outline(self) -> bytes:
        """The same with the line-drawing characters of code page 437."""
        return self._outline(1)

    def option(self, option: Option) -> bool | str | None:
        """An option: a file name or None, or a flag."""
        with _calls:
            if option not in _names:
                flag = ffi.new("int *")
                lib.cfg_get_option(self._open(), option, flag)
                return bool(flag[0])
            name = ffi.new("char **")
            lib.cfg_get_option(self._open(), option, name)
            text = _decoded(name[0], self._encoding)
            lib.cfg_memfree(name[0])
            return text

    def set_option(self, option: Option, value: bool | str | None) -> None:
        """Sets an option. A file name counts from the next bind on."""
        if option in _names:
            if not isinstance(value, (str, type(None))):
                raise TypeError("the option is a file name or None")
            self._call(lib.cfg_set_option, option, self._given(value))
        else:
            self._call(lib.cfg_set_option, option, ffi.cast("void *", int(bool(value))))

    @property
    def name(self) -> str | None:
        """The full name of the configuration file."""
        with _calls:
            return _decoded(lib.cfg_get_file_name(self._open()), self._encoding)

    def _open(self) -> Any:
        if self._handle is None:
            raise ValueError("the configuration is closed")
        return self._handle

    def _encoded(self, text: Value) -> bytes:
        made = text if isinstance(text, bytes) else text.encode(self._encoding, "surrogateescape")
        if b"\0" in made:
            raise ValueError("a text with a NUL")
        return made

    def _given(self, text: str | None) -> Any:
        return ffi.NULL if text is None else self._encoded(text)

    # An array of texts that ends with a null, and what keeps them alive.
    def _texts(self, texts: Iterable[Value]) -> tuple[Any, list[Any]]:
        keep = [ffi.new("char[]", self._encoded(each)) for each in texts]
        return ffi.new("char *[]", [*keep, ffi.NULL]), keep

    def _call(self, call: Callable[..., int], *arguments: Any) -> None:
        with _calls:
            code = call(self._open(), *arguments)
            failure = self._failure(code) if code != 0 else None
        if failure is not None:
            raise failure

    def _failure(self, code: int) -> Error:
        handle = self._open()

        def text(pointer: Any) -> str | None:
            return _decoded(pointer, self._encoding)

        extended = lib.cfg_get_exterror(handle)
        names = lib.cfg_get_enum(handle)
        choices: list[str] = []
        while names and names[len(choices)]:
            choices.append(text(names[len(choices)]) or "")
        return Error.classes.get(code, Error)(
            code,
            extended,
            text(lib.cfg_err2string(extended)) or "",
            file=text(lib.cfg_get_file_name(handle)),
            line=lib.cfg_get_file_line(handle),
            entry=text(lib.cfg_get_entry(handle)) or None,
            attribute=text(lib.cfg_get_attribute(handle)),
            value=text(lib.cfg_get_value(handle)) or None,
            minimum=lib.cfg_get_minimum(handle),
            maximum=lib.cfg_get_maximum(handle),
            choices=tuple(choices),
            mask=lib.cfg_get_bitmask(handle),
            is_single=bool(lib.cfg_get_is_single(handle)),
            report=text(lib.cfg_dump_exception(handle)),
        )

    def _update(self, call: Callable[..., int], dn: str, rows: Iterable[tuple[str, Change]]) -> None:
        keep: list[Any] = []
        records = [self._record(name, change, keep) for name, change in rows]
        self._call(call, self._given(dn), ffi.new("LDAPMod *[]", [*records, ffi.NULL]))
        del keep

    def _record(self, name: str, change: Change, keep: list[Any]) -> Any:
        record = ffi.new("LDAPMod *")
        names, texts = self._texts([name])
        record.mod_op = change.operation
        record.mod_type = names[0]
        values, more = self._texts(change.values)
        if change.values and all(isinstance(each, bytes) for each in change.values):
            record.mod_op |= lib.LDAP_MOD_BVALUES
            binaries = [ffi.new("struct berval *", {"bv_val": each}) for each in more]
            more += binaries
            values = ffi.new("struct berval *[]", [*binaries, ffi.NULL])
            record.mod_vals.modv_bvals = values
        elif any(isinstance(each, bytes) for each in change.values):
            raise TypeError("the values of a change are all text or all bytes")
        elif change.values:
            record.mod_vals.modv_strvals = values
        keep += [record, names, texts, values, more]
        return record

    def _outline(self, oem: int) -> bytes:
        with _calls:
            lib.cfg_reset(self._open())
            outline = lib.cfg_tree_view(self._open(), oem)
            if outline:
                text: bytes = ffi.string(outline)
                return text
        raise ValueError("there is no outline: the file is not bound, or memory is exhausted")


# Where the directory is missing, the bind says so.
def _lock(path: str | None, wait: float) -> FileLock | None:
    try:
        return FileLock(path, wait) if path else None
    except FileNotFoundError:
        return None


def open(
    name: str | None = None,
    *,
    backup: str | None = None,
    dn: str | None = None,
    password: str | None = None,
    lock: bool = True,
    wait: float = 0,
) -> Config:
    """Reads a configuration file, the default one without a name, and logs in.

    Opening may rewrite the file, and an update is no single step. So the lock of zebcfg is held until close(), unless
    lock is False; another holder is waited for as many seconds, and then Busy is raised. backup: the name that the old
    file is moved to before each write.
    """
    guard = _lock(name if name is not None else default_file(), wait) if lock else None
    try:
        config = Config(name, backup, guard)
    except BaseException:
        if guard is not None:
            guard.release()
        raise
    try:
        config.bind(dn, password)
    except BaseException:
        config.close()
        raise
    return config
