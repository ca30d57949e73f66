"""The C interface as it is: ffi and lib of cffi, with all calls of zebldapcfg(3).

One thread at a time may be inside the library, with whatever handle: a call is made while `lock` is held. The rest of
this package does the same.
"""

import threading

from ._native import ffi, lib

__all__ = ["ffi", "lib", "lock"]

lock = threading.RLock()
