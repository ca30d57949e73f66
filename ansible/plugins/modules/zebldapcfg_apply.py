#!/usr/bin/python

from __future__ import annotations

DOCUMENTATION = r"""
module: zebldapcfg_apply
short_description: Make the configuration of a directory server match LDIF
description:
  - Adds the entries that are missing, and gives each attribute that the LDIF names exactly the values given there.
  - Other attributes and entries stay, unless I(prune) is set.
  - Nothing is written when the configuration matches already.
extends_documentation_fragment: [zeb.ldapcfg.zebcfg]
options:
  content:
    description: The LDIF. It is not logged, since it may hold passwords.
    type: str
  src:
    description: A file on the managed machine that holds the LDIF.
    type: path
  prune:
    description: Remove what the LDIF does not name, attributes of its entries and other entries below I(base).
    type: bool
    default: false
  base:
    description: With I(prune), the DN of the entry below which entries are removed.
    type: str
"""

EXAMPLES = r"""
- name: The whole configuration, as the template has it
  zeb.ldapcfg.zebldapcfg_apply:
    config: /etc/zebslapd.conf
    content: "{{ lookup('ansible.builtin.template', 'zebslapd.ldif.j2') }}"
    prune: true
"""

RETURN = r"""
line:
  description: After a failure, the line of the LDIF or of the file that is at fault.
  returned: failure
  type: int
"""

from ansible_collections.zeb.ldapcfg.plugins.module_utils.zebcfg import Zebcfg


def main():
    tool = Zebcfg(
        {
            "content": {"type": "str", "no_log": True},
            "src": {"type": "path"},
            "prune": {"type": "bool", "default": False},
            "base": {"type": "str"},
        },
        required_one_of=[("content", "src")],
        mutually_exclusive=[("content", "src")],
    )
    arguments = ["apply", "-f", tool.params["src"] or "-"]
    if tool.params["prune"]:
        arguments.append("--prune")
    if tool.params["base"]:
        arguments += ["-b", tool.params["base"]]
    answer = tool.run(*arguments, ldif=tool.params["content"], dry=tool.module.check_mode).answer
    tool.done(answer["changed"], answer.get("diff"))


if __name__ == "__main__":
    main()
