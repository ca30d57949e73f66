# The options that all modules have.
class ModuleDocFragment:
    DOCUMENTATION = r"""
options:
  config:
    description: The configuration file. Without it, that of C(ZEBCFG_FILE) or of the install location.
    type: path
    aliases: [file]
  bind_dn:
    description: DN of the administrator, to log in with. Without it nobody logs in, and none is needed.
    type: str
  bind_pw:
    description: Password of I(bind_dn).
    type: str
  keep:
    description: The number of backups that are kept.
    type: int
  force:
    description: Make a change that is refused only because of what it may break.
    type: bool
    default: false
  executable:
    description: The name of C(zebcfg), where it is not found by the search path.
    type: str
    default: zebcfg
requirements:
  - zebcfg
attributes:
  check_mode:
    support: full
    description: Says what would change, and changes nothing.
  diff_mode:
    support: full
    description: Shows the lines that change, with passwords hidden.
author:
  - zebldapcfg maintainers (@zebldapcfg)
"""
