#include "cfg.h"

const char* cfg_tree_view(CFG* cfg, int oem)
{
    if (cfg == nullptr)
        return nullptr;
    if (cfg->treeText == nullptr && cfg->file != nullptr)
        cfg->treeText = copyOfText([&] { return cfg->file->treeView(oem != 0); });
    return cfg->treeText;
}
