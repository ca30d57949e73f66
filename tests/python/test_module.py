"""The Python module, on copies of the sample file."""

import doctest
import gc
import os
import pathlib
import re
import resource
import subprocess
import sys
import threading

import pytest
import zebldapcfg
from zebldapcfg import Add, Delete, Option, Replace, Scope, raw

ROOT = "cn=Configuration"
FILE = "zebslapd.conf"
LOCK = pathlib.Path(FILE + ".lock")


@pytest.fixture
def config():
    with zebldapcfg.open(FILE) as opened:
        yield opened


def values(config, name):
    return config.search(ROOT, Scope.BASE)[0].get(name)


def zebcfg(*arguments):
    return subprocess.run([os.environ["ZEBCFG"], "-F", FILE, *arguments], capture_output=True, text=True, check=False)


def python(code, **environment):
    return subprocess.run(
        [sys.executable, "-c", code], env={**os.environ, **environment}, capture_output=True, text=True, check=True
    ).stdout


def test_the_documentation():
    failed, tried = doctest.testfile(os.environ["DOCUMENTATION"], module_relative=False)
    assert (failed, tried > 0) == (0, True)


def test_every_call_is_reachable():
    exported = re.findall(r"^ {4}(\w+);", pathlib.Path(os.environ["VERSION_SCRIPT"]).read_text(), re.MULTILINE)
    assert len(exported) == 42
    assert [name for name in exported if not hasattr(raw.lib, name)] == []


@pytest.mark.parametrize(
    "changes, name, left",
    [
        ({"zeb-slapdPort": Replace("1")}, "zeb-slapdPort", ("1",)),
        ({"zeb-slapdPort": [Delete("389"), Add("2")]}, "ZEB-SLAPDPORT", ("2",)),
        ({"description": Add("é", "ü")}, "description", ("Hauptverzeichnis für Köln, Zürich und Genève", "é", "ü")),
        ({"description": Replace("é".encode(), b"b")}, "description", ("é", "b")),
        ({"description": Delete()}, "description", None),
        ({"zeb-slapdAdminPW": Replace("geheim")}, "zeb-slapdAdminPW", ("geheim",)),
    ],
)
def test_changes(config, changes, name, left):
    config.modify(ROOT, changes)
    assert values(config, name) == left
    config.bind()
    assert values(config, name) == left


FAILURES = [
    ("no entry", lambda c: c.search("cn=x"), zebldapcfg.NoSuchObject, {"code": 32, "line": 0}),
    ("bad DN", lambda c: c.search("x"), zebldapcfg.InvalidDNSyntax, {"extended": 1013, "value": "x"}),
    (
        "range",
        lambda c: c.modify(ROOT, {"zeb-slapdPort": Replace("70000")}),
        zebldapcfg.InvalidSyntax,
        {"extended": 1015, "entry": ROOT, "attribute": "zeb-slapdPort", "value": "70000", "minimum": 1, "maximum": 65535},
    ),
    (
        "choice",
        lambda c: c.modify(ROOT, {"zeb-slapdPwEncryption": Replace("x")}),
        zebldapcfg.InvalidSyntax,
        {"extended": 1017, "choices": ("none", "imask", "crypt", "sha")},
    ),
    ("no attribute", lambda c: c.modify(ROOT, {"seeAlso": Delete()}), zebldapcfg.NoSuchAttribute, {"code": 16}),
    ("children", lambda c: c.delete(ROOT), zebldapcfg.NotAllowedOnNonLeaf, {"code": 66}),
    ("login", lambda c: c.bind("cn=admin, o=Example", "x"), zebldapcfg.InvalidCredentials, {"code": 49}),
    ("name", lambda c: c.set_option(Option.BACKUP_FILE, ""), zebldapcfg.InvalidSyntax, {"code": 21}),
    ("file", lambda c: zebldapcfg.open("missing/file"), zebldapcfg.ConnectError, {"code": 91, "extended": 1003}),
    ("locked", lambda c: zebldapcfg.open(FILE), zebldapcfg.Busy, {"code": 51}),
]


@pytest.mark.parametrize("label, call, kind, fields", FAILURES, ids=[row[0] for row in FAILURES])
def test_failures(config, label, call, kind, fields):
    with pytest.raises(kind) as caught:
        call(config)
    assert {name: getattr(caught.value, name) for name in fields} == fields


def test_a_bad_line_is_named(directory):
    (directory / FILE).write_text("version: 1\n\ndn: nonsense\n")
    with pytest.raises(zebldapcfg.InvalidDNSyntax) as caught:
        zebldapcfg.open(FILE)
    assert (caught.value.line, caught.value.file) == (3, os.path.abspath(FILE))
    assert not LOCK.exists()


def test_a_refused_password_is_not_in_the_message(config):
    with pytest.raises(zebldapcfg.InvalidSyntax) as caught:
        config.modify(ROOT, {"zeb-slapdAdminPW": Replace("s3cr3t" * 9)})
    assert "s3cr3t" not in str(caught.value)
    assert "s3cr3t" in caught.value.value


@pytest.mark.parametrize(
    "call",
    [
        lambda c: c.search("a\0"),
        lambda c: c.search("", filter="a\0"),
        lambda c: c.search("", attributes=["a\0"]),
        lambda c: c.modify(ROOT, {"a\0": Delete()}),
        lambda c: c.modify(ROOT, {"cn": Add(b"a\0")}),
        lambda c: c.bind("cn=x", "\0"),
        lambda c: c.set_option(Option.BACKUP_FILE, "a\0"),
    ],
)
def test_a_nul_is_refused(config, call):
    with pytest.raises(ValueError, match="NUL"):
        call(config)


def test_results_outlive_their_handle():
    config = zebldapcfg.open(FILE)
    entries = config.search(ROOT)
    config.close()
    config.close()
    gc.collect()
    assert len(entries) > 50
    assert {"cn", "objectclass"} <= {name.lower() for name in entries[-1]}
    for use in (lambda: config.search(""), config.flush, config.outline, lambda: config.name):
        with pytest.raises(ValueError, match="closed"):
            use()


def test_entries_come_and_go(config):
    dn = "cn=New, " + ROOT
    config.add(dn, {"objectclass": ["top"], "cn": "New"})
    config.add("cn=Below, " + dn, {"cn": "Below"})
    assert "cn=Below" in config.outline()
    assert b"\xc4 cn=Below" in config.oem_outline()
    config.delete(dn, recursive=True)
    assert config.option(Option.DELETE_NON_LEAVES) is False
    assert config.search(ROOT, filter="cn=New") == []


def test_the_lock_is_that_of_the_tool(directory):
    LOCK.write_text("zebcfg lock\nprocess 1 of nobody since yesterday\n")  # left by a process that was killed
    with zebldapcfg.open(FILE):
        assert "process %d of " % os.getpid() in LOCK.read_text()
        refused = zebcfg("--wait=0", "set", ROOT, "zeb-slapdPort=1")
        assert (refused.returncode, "process %d of " % os.getpid() in refused.stderr) == (51, True)
    assert not LOCK.exists()
    assert zebcfg("set", ROOT, "zeb-slapdPort=1").returncode == 0
    LOCK.write_text("mine\n")
    with pytest.raises(zebldapcfg.Busy, match="not a lock of zebcfg"):
        zebldapcfg.open(FILE)
    assert LOCK.read_text() == "mine\n"
    zebldapcfg.open(FILE, lock=False).close()


def test_the_locale_of_the_process():
    code = "import locale, zebldapcfg; zebldapcfg.open('zebslapd.conf', lock=False); print(locale.localeconv()['decimal_point'])"
    locales = {"LOCPATH": os.environ["LOCALES"], "LC_ALL": "tr_TR.UTF-8"}
    assert python("import locale; locale.setlocale(locale.LC_ALL, ''); print(locale.localeconv()['decimal_point'])", **locales) == ",\n"
    assert python(code, **locales) == ".\n"


def test_text_is_in_the_encoding_of_the_locale(directory):
    (directory / FILE).write_text("version: 1\n\ndn: cn=a\ncn: a\ndescription: Köln\n", encoding="iso-8859-1")
    code = "import zebldapcfg; print(ascii(zebldapcfg.open('zebslapd.conf').search('cn=a', filter='cn=*')[0]['description']))"
    assert python(code, LOCPATH=os.environ["LOCALES"], LC_ALL="de_CH.ISO-8859-1", PYTHONUTF8="0") == "('K\\xf6ln',)\n"


def test_threads_share_a_configuration(config):
    failed = []

    def work(number):
        try:
            for turn in range(50):
                config.modify(ROOT, {"zeb-slapdPort": Replace(str(number * 100 + turn))})
                with pytest.raises(zebldapcfg.NoSuchObject) as caught:
                    config.search(f"cn={number}")
                assert caught.value.code == 32
        except BaseException as failure:
            failed.append(failure)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(1, 5)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failed == []


def test_nothing_leaks(config):
    def use(count):
        for _ in range(count):
            config.search(ROOT, Scope.BASE)[0].get("cn")
            with pytest.raises(zebldapcfg.NoSuchObject):
                config.search("cn=x")
            config.option(Option.CONFIG_FILE)
        gc.collect()
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss  # KB

    before = use(5_000)
    assert use(30_000) - before < 1_000
