// The handle of the exported calls, and the frame that they share.
#ifndef CFG_H
#define CFG_H

#include "LDIF_Exception.h"
#include "LDIF_File.h"
#include "platform.h"
#include "zebldapcfg.h"

// A plain record on the C heap, all zero at first. It owns what it points at: the texts are C heap, file and exception
// objects. It is bound while configFile and file are set.
struct CFG {
    int lastError;              // result of the last operation
    unsigned int flags;         // the flag options of the handle
    char* configFile;           // name of the configuration file; null until it is set
    char* backupFile;           // name of the backup file; null for none
    LDIF_File* file;            // null until a bind has succeeded
    LDIF_Exception* exception;  // failure of the last operation; null when there is none or it has no details
    char* dumpText;             // report of exception, once somebody has asked for it
    char* treeText;             // outline, once somebody has asked for it
};

constexpr unsigned int flagStored0 = 1;
constexpr unsigned int flagStored1 = 2;
constexpr unsigned int flagDeleteNonLeaves = 4;

inline bool isBound(const CFG& cfg) noexcept
{
    return cfg.configFile != nullptr && cfg.file != nullptr;
}

// Keeps the exception being handled in the handle, which holds none, and gives its code. Without memory for the
// details, just the code is kept.
int keepFailure(CFG& cfg, const char* systemError, SourcePos pos) noexcept;

// The code of the exception being handled.
int failureCode() noexcept;

// Runs body on a handle that is cleared. Gives body's result, or the code of what it threw, with details in the handle;
// anything but an LDIF_Exception counts as 80 with the text systemError. lastError is the same. Nothing escapes.
template <typename Body>
int framed(CFG& cfg, const char* systemError, Body body, SourcePos pos) noexcept
{
    try {
        const LocaleHold hold;
        return cfg.lastError = body();
    } catch (...) {
        return keepFailure(cfg, systemError, pos);
    }
}

// Clears the handle and runs body on the bound file. Gives 0, or 89 without a handle or a bound file, or the code of
// what body threw.
template <typename Body>
int guarded(CFG* cfg, const char* systemError, Body body, SourcePos pos = SourcePos::here()) noexcept
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    if (!isBound(*cfg))
        return cfg->lastError = CFG_PARAM_ERROR;
    const auto run = [&]() -> int {
        body(*cfg->file);
        return LDAP_SUCCESS;
    };
    return framed(*cfg, systemError, run, pos);
}

// A copy on the C heap of the text that makeText gives, or null when it throws or memory is exhausted.
template <typename MakeText>
char* copyOfText(MakeText makeText) noexcept
{
    try {
        return copyText(makeText().c_str());
    } catch (...) {
        return nullptr;  // These calls say no more than that there is no text.
    }
}

// A DN that a caller gave. Throws std::invalid_argument for null, and LDIF_Exception (34) for a bad one.
LDIF_DN dnOf(const char* text);

#endif
