// Failures and notes on standard error.
#ifndef ZEBCFG_MESSAGES_H
#define ZEBCFG_MESSAGES_H

#include <string>
#include <vector>

struct Change;
struct Failure;

// How they are written, as the command line says it.
struct Messages {
    void report(const Failure& failure) const;
    // A note; say() is silent under --quiet.
    void say(const std::string& text) const;
    void warn(const std::string& text) const;
    // A note for the name of an attribute that looks misspelt.
    void hintAtName(const std::string& name) const;
    void hintAtNames(const std::vector<Change>& changes) const;

    bool isJson = false;
    bool isVerbose = false;
    bool isQuiet = false;
};

#endif
