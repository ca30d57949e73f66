"""module.py [ENTRIES]: what the Python module costs beside the calls of the C library that it makes."""

import os
import sys
import tempfile
import time

import zebldapcfg
from zebldapcfg.raw import ffi, lib

ROUNDS = 9


def best(call):
    """The shortest of some rounds, in milliseconds. What a round gives is released before the next."""
    times = []
    for _ in range(ROUNDS):
        begin = time.perf_counter()
        given = call()
        times.append(time.perf_counter() - begin)
        del given
    return 1000 * min(times)


def main(entries):
    with tempfile.TemporaryDirectory() as directory:
        name = os.path.join(directory, "zebslapd.conf")
        with open(name, "w", encoding="ascii") as file:
            file.write("version: 1\n\ndn: cn=Configuration\nobjectclass: top\n\n")
            for number in range(entries):
                file.write(
                    f"dn: cn=entry {number}, cn=Configuration\ncn: entry {number}\nobjectclass: top\n"
                    f"zeb-slapdPort: {number % 60000 + 1}\nzeb-slapdSuffix: ou=part {number}, o=Example\n\n"
                )
        with zebldapcfg.open(name) as config:
            handle = zebldapcfg.raw.lib.cfg_init()
            lib.cfg_set_option(handle, lib.CFG_OPT_CONFIG_FILE, ffi.new("char[]", name.encode()))
            lib.cfg_bind_s(handle, ffi.NULL, ffi.NULL, lib.LDAP_AUTH_SIMPLE)

            def search():
                result = ffi.new("CFGMessage **")
                lib.cfg_search_s(handle, b"", lib.LDAP_SCOPE_SUBTREE, b"(objectclass=*)", ffi.NULL, 0, result)
                return ffi.gc(result[0], lib.cfg_msgfree)

            of_library = best(search)
            rows = [
                ("search", lambda: config.search("")),
                ("search, and read all DNs", lambda: [entry.dn for entry in config.search("")]),
                ("search, and read all values", lambda: [dict(entry) for entry in config.search("")]),
            ]
            print(f"{entries} entries: cfg_search_s {of_library:.1f} ms")
            for label, call in rows:
                spent = best(call)
                print(f"{label:30}{spent:8.1f} ms{spent / of_library:8.2f} x cfg_search_s")
            lib.cfg_unbind(handle)


if __name__ == "__main__":
    main(int(sys.argv[1]) if len(sys.argv) > 1 else 30_000)
