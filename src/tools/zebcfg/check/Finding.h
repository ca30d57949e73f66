// One thing that is wrong with a configuration file.
#ifndef ZEBCFG_FINDING_H
#define ZEBCFG_FINDING_H

#include <string>
#include <vector>

enum class Severity { note, warning, error };

struct Finding {
    // line: 0 for the file as a whole.
    Finding(Severity how, int where, std::string what);
    Finding& coded(int resultCode, int extendedCode = 0);
    // What is allowed there, and what to do.
    Finding& advise(std::string what);
    Finding& about(std::string attributeName);

    Severity severity;
    int line;
    std::string text;
    int code = 0;
    int extended = 0;
    std::string advice;
    std::string attribute;
};

bool hasErrors(const std::vector<Finding>& findings);
// The finding in one line: "FILE:LINE: SEVERITY: TEXT (CODE); ADVICE".
std::string toLine(const Finding& finding, const std::string& shownName);
std::string toJson(const std::vector<Finding>& findings, const std::string& shownName);

#endif
