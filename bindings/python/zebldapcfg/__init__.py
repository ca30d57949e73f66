"""The configuration file of an LDAP directory server.

Opening a file may rewrite it, and a change through this module is no single step: while it lasts no whole file has the
name. So open() takes the lock of zebcfg, which keeps other programs that respect it away, until close().

    with zebldapcfg.open("zebslapd.conf", backup="zebslapd.conf.bak") as config:
        for entry in config.search("cn=Configuration", Scope.SUBTREE, "zeb-slapdPort=*"):
            print(entry.dn, entry["zeb-slapdPort"])
        config.modify("cn=Configuration", {"zeb-slapdPort": Replace("1389")})
"""

from . import raw
from .changes import Add, Change, Delete, Replace, Value
from .config import Config, Option, Scope, default_file, error_text, install_path, open
from .entries import Entry
from .errors import (
    AuthUnknown,
    Busy,
    ConnectError,
    DamagedEncodedPassword,
    Error,
    InsufficientAccess,
    InvalidCredentials,
    InvalidDNSyntax,
    InvalidEncodedPassword,
    InvalidSyntax,
    InvalidText,
    NoMemory,
    NoSuchAttribute,
    NoSuchObject,
    NotAllowedOnNonLeaf,
    NotSupported,
    ObjectClassViolation,
    Other,
    ParamError,
)

__all__ = [
    "Add",
    "AuthUnknown",
    "Busy",
    "Change",
    "Config",
    "ConnectError",
    "DamagedEncodedPassword",
    "Delete",
    "Entry",
    "Error",
    "InsufficientAccess",
    "InvalidCredentials",
    "InvalidDNSyntax",
    "InvalidEncodedPassword",
    "InvalidSyntax",
    "InvalidText",
    "NoMemory",
    "NoSuchAttribute",
    "NoSuchObject",
    "NotAllowedOnNonLeaf",
    "NotSupported",
    "ObjectClassViolation",
    "Option",
    "Other",
    "ParamError",
    "Replace",
    "Scope",
    "Value",
    "default_file",
    "error_text",
    "install_path",
    "open",
    "raw",
]
