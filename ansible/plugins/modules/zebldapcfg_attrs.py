#!/usr/bin/python

from __future__ import annotations

DOCUMENTATION = r"""
module: zebldapcfg_attrs
short_description: Add, delete or set values of an entry of the configuration of a directory server
description:
  - Changes attributes of an entry that exists. Values are compared as the attribute compares them, DNs as DNs for
    one, and order does not count.
extends_documentation_fragment: [zeb.ldapcfg.zebcfg]
options:
  dn:
    description: The DN of the entry.
    type: str
    required: true
  attributes:
    description: The attributes, each with a value or a list of values.
    type: dict
    required: true
  state:
    description:
      - With C(present) the values are added that are missing.
      - With C(absent) the values are deleted that are there.
      - With C(exact) each attribute gets exactly these values; an empty list deletes it.
    type: str
    choices: [present, absent, exact]
    default: present
"""

EXAMPLES = r"""
- name: The port
  zeb.ldapcfg.zebldapcfg_attrs:
    config: /etc/zebslapd.conf
    dn: cn=Configuration
    attributes:
      zeb-slapdPort: 1389
    state: exact

- name: One more suffix
  zeb.ldapcfg.zebldapcfg_attrs:
    config: /etc/zebslapd.conf
    dn: cn=Directory, cn=RDBM, cn=Backends, cn=Configuration
    attributes:
      zeb-slapdSuffix: [o=Example, o=Another]
"""

RETURN = r"""
minimum:
  description: After a refused value, the least number or length that the attribute takes.
  returned: failure
  type: int
maximum:
  description: After a refused value, the greatest number or length that the attribute takes.
  returned: failure
  type: int
words:
  description: After a refused value, the words that the attribute takes.
  returned: failure
  type: list
  elements: str
"""

from ansible_collections.zeb.ldapcfg.plugins.module_utils.zebcfg import (
    NO_SUCH_ATTRIBUTE,
    VALUE_EXISTS,
    Zebcfg,
    ldif_line,
    texts_of,
)


def record(dn, parts):
    """A record of LDIF that changes an entry: an operation, an attribute and its values for each part."""
    lines = [ldif_line("dn", dn), "changetype: modify\n"]
    for operation, name, values in parts:
        lines += ["%s: %s\n" % (operation, name)] + [ldif_line(name, value) for value in values] + ["-\n"]
    return "".join(lines)


def parts_needed(tool, dn, operation, attributes, done_already):
    """One part for each value that is not as it should be: a dry run of the others ends with done_already."""
    parts = [(operation, name, [value]) for name in attributes for value in attributes[name]]
    tried = [(part, tool.run("modify", ldif=record(dn, [part]), dry=True, allowed=[done_already])) for part in parts]
    return [part for part, answer in tried if answer.status == 0]


def parts_exact(tool, dn, attributes):
    """All attributes, unless they have exactly these values."""
    wanted = {name: values for name, values in attributes.items() if values}
    surplus = [("delete", name, []) for name, values in attributes.items() if not values]
    deletes = [
        part
        for part in surplus
        if tool.run("modify", ldif=record(dn, [part]), dry=True, allowed=[NO_SUCH_ATTRIBUTE]).status == 0
    ]
    lines = [ldif_line("dn", dn)] + [ldif_line(name, value) for name in wanted for value in wanted[name]]
    is_met = not wanted or not tool.run("apply", ldif="".join(lines), dry=True).answer["changed"]
    return deletes + ([] if is_met else [("replace", name, wanted[name]) for name in wanted])


def main():
    tool = Zebcfg(
        {
            "dn": {"type": "str", "required": True},
            "attributes": {"type": "dict", "required": True},
            "state": {"type": "str", "choices": ["present", "absent", "exact"], "default": "present"},
        }
    )
    dn = tool.params["dn"]
    attributes = {name: texts_of(values) for name, values in tool.params["attributes"].items()}
    tool.hide(attributes)
    tool.run("search", "-b", dn, "-s", "base", "(objectclass=*)", "1.1")  # The entry has to be there.
    if tool.params["state"] == "present":
        parts = parts_needed(tool, dn, "add", attributes, VALUE_EXISTS)
    elif tool.params["state"] == "absent":
        parts = parts_needed(tool, dn, "delete", attributes, NO_SUCH_ATTRIBUTE)
    else:
        parts = parts_exact(tool, dn, attributes)
    if not parts:
        tool.done(False)
    tool.change("modify", ldif=record(dn, parts))


if __name__ == "__main__":
    main()
