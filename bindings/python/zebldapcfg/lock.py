"""The lock of zebcfg, which keeps its updates and other programs that take it away from a file."""

from __future__ import annotations

import fcntl
import os
import pwd
import stat
import time

from .errors import Busy

_mark = "zebcfg lock\n"
_pause = 0.02  # seconds between two attempts


def _stands_for(name: str, file: int) -> bool:
    try:
        return os.path.samestat(os.lstat(name), os.fstat(file))
    except FileNotFoundError:
        return False


def _lock_now(file: int) -> bool:
    try:
        fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        return True
    except BlockingIOError:
        return False


def _this_process() -> str:
    try:
        user = pwd.getpwuid(os.geteuid()).pw_name
    except KeyError:
        user = str(os.geteuid())
    return f"process {os.getpid()} of {user} since {time.strftime('%Y-%m-%d %H:%M:%S')}"


class FileLock:
    """Held until release(). The lock file, FILE.lock, names its holder; one that a killed process left is replaced."""

    def __init__(self, path: str, wait: float) -> None:
        """Waits that many seconds for another holder. Raises Busy, or OSError where the lock cannot be made."""
        real = os.path.realpath(path)
        self._name = real + ".lock"
        directory, base = os.path.split(self._name)
        self._fresh = os.path.join(directory, f".{base}.zebcfg-new")
        self._holder = "another program"
        self._file = -1
        end = time.monotonic() + wait
        while not self._try():
            if time.monotonic() >= end:
                raise self._busy(f"the file is being updated by {self._holder}, which holds {self._name}")
            time.sleep(_pause)

    def release(self) -> None:
        """Gives the lock up. A second call does nothing."""
        if self._file < 0:
            return
        if _stands_for(self._name, self._file):
            os.unlink(self._name)
        os.close(self._file)
        self._file = -1

    # It is made under another name, so that it is never seen without its text.
    def _try(self) -> bool:
        if not self._remove_leftover(self._name) or not self._remove_leftover(self._fresh):
            return False
        try:
            file = os.open(self._fresh, os.O_RDWR | os.O_CREAT | os.O_EXCL | os.O_CLOEXEC, 0o644)
        except FileExistsError:
            return False
        try:
            if _lock_now(file):
                os.write(file, (_mark + _this_process() + "\n").encode())
                os.fchmod(file, 0o644)  # Others have to read it, whatever the mask is.
                self._rename_to_free()
                if _stands_for(self._name, file):
                    self._file, file = file, -1
                    return True
                if _stands_for(self._fresh, file):
                    os.unlink(self._fresh)
            return False
        finally:
            if file >= 0:
                os.close(file)

    def _rename_to_free(self) -> None:
        try:
            os.link(self._fresh, self._name)
            os.unlink(self._fresh)
        except FileExistsError:
            pass

    # False while a process holds it.
    def _remove_leftover(self, path: str) -> bool:
        try:
            file = os.open(path, os.O_RDONLY | os.O_NONBLOCK | os.O_NOFOLLOW | os.O_CLOEXEC)
        except FileNotFoundError:
            return True
        try:
            is_regular = stat.S_ISREG(os.fstat(file).st_mode)
            text = os.read(file, 4096).decode(errors="replace") if is_regular else ""
            if text.startswith(_mark):
                self._holder = text.splitlines()[1] if text.count("\n") > 1 else self._holder
            elif path == self._name:
                raise self._busy(f"{path} is not a lock of zebcfg; remove it if nothing else needs it")
            if not is_regular or not _lock_now(file):
                return False
            if _stands_for(path, file):
                os.unlink(path)
            return True
        finally:
            os.close(file)

    def _busy(self, text: str) -> Busy:
        return Busy(51, 51, text, file=self._name)
