// Files of the system, and the descriptors of the C runtime that stand for them.
#ifndef ZEBCFG_HANDLE_H
#define ZEBCFG_HANDLE_H

#include <string>

#include <windows.h>

// What others may do with an open file: all, for the name of a file is free again only when it is closed.
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Sets errno for what the last call has failed with. Gives false. ETXTBSY: another program has the file open, or it is
// removed and will be gone once that is no longer so.
bool failed() noexcept;

// A descriptor that owns the handle; negative, with the reason in errno, for an invalid one.
int descriptorOf(HANDLE handle) noexcept;
HANDLE handleOf(int descriptor) noexcept;

// The name of an open file; empty when it cannot be told.
std::string nameOf(HANDLE handle);

// A security descriptor in its self-relative form that lets in this user alone, also to what is made in a directory.
std::string privateDescriptor();
// The directory for temporary files, with its separator. Throws Failure when there is none that can be named.
std::string temporaryDirectory();

// Six characters for a name that is probably free.
std::string anyCharacters();

// Opens a file with a security descriptor for one that is made, unless that is empty. Negative with the reason in
// errno.
int openFile(const std::string& name, DWORD access, DWORD share, DWORD disposition, DWORD flags,
             std::string descriptor = {});

#endif
