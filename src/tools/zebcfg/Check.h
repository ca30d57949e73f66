// What is wrong with a configuration file, all at once. Every rule is the library's: it is asked about a copy.
#ifndef ZEBCFG_CHECK_H
#define ZEBCFG_CHECK_H

#include <string>
#include <vector>

class LiveFile;

enum class Severity { note, warning, error };

struct Finding {
    Severity severity;
    int line;  // 0 for the file as a whole
    std::string text;
    int code = 0;
    int extended = 0;
    std::string advice;     // what is allowed there and what to do
    std::string attribute;  // or empty
};

// In the order of the lines. An error is what ends a load or would be quarantined by it.
std::vector<Finding> check(const std::string& text, const std::string& shownName);
// What can be said of the file itself: its mode, and damage.
std::vector<Finding> checkFile(const LiveFile& file, const std::string& backupName);

bool hasErrors(const std::vector<Finding>& findings);
// The finding in one line: "FILE:LINE: SEVERITY: TEXT (CODE); ADVICE".
std::string toLine(const Finding& finding, const std::string& shownName);
const char* nameOf(Severity severity);

#endif
