#!/usr/bin/python

from __future__ import annotations

DOCUMENTATION = r"""
module: zebldapcfg_entry
short_description: Add or delete an entry of the configuration of a directory server
description:
  - Adds an entry that is missing, or deletes one. An entry that exists keeps its attributes; to change them, use
    M(zeb.ldapcfg.zebldapcfg_attrs).
extends_documentation_fragment: [zeb.ldapcfg.zebcfg]
options:
  dn:
    description: The DN of the entry.
    type: str
    required: true
  attributes:
    description: The attributes of a new entry, each with a value or a list of values.
    type: dict
    default: {}
  objectClass:
    description: The object classes of a new entry, needed for I(state=present) unless I(attributes) has them.
    type: list
    elements: str
  recursive:
    description: With I(state=absent), delete the entries below as well.
    type: bool
    default: false
  state:
    description: Whether the entry is to be there.
    type: str
    choices: [present, absent]
    default: present
"""

EXAMPLES = r"""
- name: A plug-in of our own
  zeb.ldapcfg.zebldapcfg_entry:
    config: /etc/zebslapd.conf
    dn: cn=Audit Trail, cn=Plug-ins, cn=Configuration
    objectClass: zeb-slapdPluginEntry
    attributes:
      cn: Audit Trail
      zeb-slapdPlugin: audit /usr/lib/zebslapd/libtrail.so trailInit

- name: No referrals
  zeb.ldapcfg.zebldapcfg_entry:
    config: /etc/zebslapd.conf
    dn: cn=Referrals, cn=Configuration
    recursive: true
    state: absent
"""

RETURN = r""" # """

from ansible_collections.zeb.ldapcfg.plugins.module_utils.zebcfg import NO_SUCH_OBJECT, Zebcfg, ldif_line, texts_of


def main():
    tool = Zebcfg(
        {
            "dn": {"type": "str", "required": True},
            "attributes": {"type": "dict", "default": {}},
            "objectClass": {"type": "list", "elements": "str"},
            "recursive": {"type": "bool", "default": False},
            "state": {"type": "str", "choices": ["present", "absent"], "default": "present"},
        }
    )
    dn = tool.params["dn"]
    attributes = dict(tool.params["attributes"])
    if tool.params["objectClass"]:
        attributes["objectclass"] = tool.params["objectClass"]
    tool.hide(attributes)
    found = tool.run("search", "-b", dn, "-s", "base", "(objectclass=*)", "1.1", allowed=[NO_SUCH_OBJECT])
    is_there = found.status == 0
    if is_there == (tool.params["state"] == "present"):
        tool.done(False)
    if is_there:
        tool.change("delete", *(["-r", "--yes"] if tool.params["recursive"] else []), dn)
    if not any(name.lower() == "objectclass" for name in attributes):
        tool.module.fail_json(msg="a new entry needs objectClass")
    lines = [ldif_line("dn", dn)] + [ldif_line(name, text) for name in attributes for text in texts_of(attributes[name])]
    tool.change("add", ldif="".join(lines))


if __name__ == "__main__":
    main()
