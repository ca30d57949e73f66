// Lets chosen calls of the C library fail, fall short or end the process, and counts the memory that is in use.
// A program that names this library before others has its calls, and theirs, led through here; so has any program
// that is started with it in LD_PRELOAD. Nothing is counted and nothing fails until a plan is armed.
#ifndef FAULTS_H
#define FAULTS_H

#include <filesystem>
#include <iterator>

// The calls that a plan concerns: any of these, joined.
enum FaultCalls : unsigned {
    faultMemory = 1,  // malloc, calloc, realloc, aligned_alloc, mmap
    faultOpen = 2,
    faultRead = 4,
    faultWrite = 8,
    faultClose = 16,
    faultRename = 32,
    faultUnlink = 64,
    faultStat = 128,    // stat, lstat, fstat
    faultOwner = 256,   // fchown
    faultMode = 512,    // fchmod
    faultFiles = 0x3FE  // all but the memory
};

enum class Fault {
    error,  // the call does nothing (close closes) and fails with the plan's error; memory fails with ENOMEM
    half,   // a read or write takes half of its bytes, at least one; fstat tells an eighth of the size; other calls go
            // well
    kill    // behind the same, the process ends by SIGKILL
};

struct FaultPlan {
    unsigned calls;  // FaultCalls
    long first;      // the number of the call that is met first, from 1; 0 for none
    bool lasts;      // whether those behind it are met too
    Fault fault;
    int error;  // the errno of Fault::error
};

void armFaults(const FaultPlan& plan);

// Ends the plan. Gives the number of its calls that have been made.
long disarmFaults();

// Whether the plan meets an allocation that is about to be made elsewhere than in the C library.
bool isMemoryMet();

// Blocks of memory that the process has and has not released. AddressSanitizer has the C library's memory to itself:
// with it this is always 0, and only the plan of a program that asks isMemoryMet concerns memory.
long liveBlocks();

// Looks in all memory that is released from now on for the first and last bytes of a text, narrow and wide; null ends
// it. Gives how many blocks had them so far.
long watchReleases(const char* text);

// How many files have been opened so that programs which are started would have them.
long inheritedFiles();

inline long openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

#endif
