"""Runs zebcfg, and turns its answers into the results of a module."""

from __future__ import annotations

import base64
import json
import os

from ansible.module_utils.basic import AnsibleModule

NO_SUCH_ATTRIBUTE = 16
VALUE_EXISTS = 20
NO_SUCH_OBJECT = 32

COMMON = {
    "config": {"type": "path", "aliases": ["file"]},
    "bind_dn": {"type": "str"},
    "bind_pw": {"type": "str", "no_log": True},
    "keep": {"type": "int"},
    "force": {"type": "bool", "default": False},
    "executable": {"type": "str", "default": "zebcfg"},
}


def ldif_line(name, value):
    """A line of LDIF (RFC 2849), in base64 whatever the value is."""
    return "%s:: %s\n" % (name, base64.b64encode(value.encode("utf-8", "surrogateescape")).decode("ascii"))


def texts_of(values):
    """The values of an attribute, given as one or as a list."""
    if isinstance(values, (list, tuple)):
        return [str(value) for value in values]
    return [] if values is None else [str(values)]


class Zebcfg:
    """A module, and the tool that it runs.

    The parameters are not logged by the module's start, since values of attributes may be passwords: hide() makes
    those known first.
    """

    def __init__(self, argument_spec, **rest):
        self.module = AnsibleModule({**COMMON, **argument_spec}, supports_check_mode=True, no_log=True, **rest)
        self.params = self.module.params
        self.command = [self.module.get_bin_path(self.params["executable"], required=True), "-j", "-q"]
        if self.params["config"]:
            self.command += ["-F", self.params["config"]]
        if self.params["keep"] is not None:
            self.command += ["--keep", str(self.params["keep"])]
        if self.params["force"]:
            self.command += ["--force"]

    def hide(self, attributes):
        """Keeps the values of passwords out of all that the module says."""
        passwords = {each["name"].lower() for each in self.run("describe").answer if each["syntax"] == "password"}
        for name, values in attributes.items():
            if name.lower() in passwords:
                self.module.no_log_values.update(filter(None, texts_of(values)))

    def run(self, *arguments, ldif=None, dry=False, allowed=()):
        """Runs a command. Ends the module with a failure when its status is neither 0 nor one of those allowed."""
        command = self.command + (["-n"] if dry else []) + list(arguments)
        pipe = None
        if self.params["bind_dn"]:
            pipe, end = os.pipe()
            os.write(end, ("%s\n" % (self.params["bind_pw"] or "")).encode("utf-8"))
            os.close(end)
            command[1:1] = ["-D", self.params["bind_dn"], "-y", "/dev/fd/%d" % pipe]
        status, out, err = self.module.run_command(
            command,
            data=ldif,
            binary_data=True,
            pass_fds=[pipe] if pipe is not None else None,
            environ_update={"LC_ALL": "C.UTF-8", "LANGUAGE": "C"},
        )
        if pipe is not None:
            os.close(pipe)
        if status != 0 and status not in allowed:
            self.fail(status, err)
        return Answer(status, json.loads(out) if out.strip() else None)

    def fail(self, status, err):
        """Ends the module with the tool's message and what it knows."""
        report = {}
        for line in err.splitlines():
            try:
                report.update(json.loads(line))
            except ValueError:
                report.setdefault("error", line)
        text = report.pop("error", "zebcfg has failed")
        result = {name: report[name] for name in report if name not in ("note", "text")}
        if "attribute" in result and status == 21:
            rows = self.run("describe", result["attribute"], allowed=range(1, 256)).answer
            result.update({name: rows[0][name] for name in ("minimum", "maximum", "words", "mask") if rows and name in rows[0]})
        self.module.fail_json(msg=text, rc=status, **result)

    def change(self, *arguments, ldif=None):
        """Makes a change that is needed, or in check mode tries it, and ends the module."""
        diff = None
        if self.module.check_mode or self.module._diff:
            diff = self.run(*arguments, ldif=ldif, dry=True).answer
        if not self.module.check_mode:
            self.run(*arguments, ldif=ldif)
        self.done(True, (diff or {}).get("diff"))

    def done(self, is_changed, diff=None):
        """Ends the module."""
        result = {"changed": is_changed}
        if self.module._diff and diff:
            result["diff"] = {"prepared": diff}
        self.module.exit_json(**result)


class Answer:
    """The exit status of the tool, and what it has written."""

    def __init__(self, status, answer):
        self.status = status
        self.answer = answer
