#include "LDIF_Exception.h"

#include "LDIF_AttrType.h"
#include "LDIF_ErrorText.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <cstdio>
#include <cstring>
#include <new>

bool LDIF_Exception::showSource = false;
bool LDIF_Exception::showStack = true;

namespace {

std::string hexadecimal(unsigned int number)
{
    char digits[2 * sizeof number + 1];
    (void)std::snprintf(digits, sizeof digits, "%X", number);
    return digits;
}

void appendNumberAndText(std::string& report, const char* label, int number, const std::string& text)
{
    report.append(label).append(std::to_string(number)).append(": ").append(text);
}

void appendUnlessEmpty(std::string& report, const char* label, const std::string& text)
{
    if (!text.empty())
        report.append(label).append(text);
}

}  // namespace

LDIF_Exception::LDIF_Exception(const char* file, int line, int ldapCode, int extCode, const char* text)
    : sourceFile(file), sourceLine(line), msg(text), ldapErr(ldapCode), extErr(extCode)
{}

LDIF_Exception::LDIF_Exception(int ldapCode, int extCode, const std::string& text, SourcePos pos)
    : LDIF_Exception(pos.file, pos.line, ldapCode, extCode, text.c_str())
{}

LDIF_Exception::LDIF_Exception(const LDIF_Exception& other, LinkOnly /*link*/)
    : std::exception(other), sourceFile(other.sourceFile), sourceLine(other.sourceLine), msg(other.msg),
      ldapErr(other.ldapErr), extErr(other.extErr), sysErr(other.sysErr), sysErrIsWin32(other.sysErrIsWin32),
      configFile(other.configFile), configLine(other.configLine), entryDn(other.entryDn), attribute(other.attribute),
      value(other.value), attrType(other.attrType)
{}

LDIF_Exception::LDIF_Exception(const LDIF_Exception& other) : LDIF_Exception(other, LinkOnly())
{
    nested = copyChain(other.nested.get());
}

LDIF_Exception::LDIF_Exception(const char* file, int line, const LDIF_Exception& cause)
    : LDIF_Exception(file, line, LDIF_Exception(cause))
{}

LDIF_Exception::LDIF_Exception(const char* file, int line, LDIF_Exception&& cause) : LDIF_Exception(cause, LinkOnly())
{
    sourceFile = file;
    sourceLine = line;
    nested.reset(new (std::nothrow) LDIF_Exception(std::move(cause)));
}

// Link by link: a long chain would exhaust the stack if each link destroyed the next.
LDIF_Exception::~LDIF_Exception()
{
    while (nested)
        nested = std::move(nested->nested);
}

std::unique_ptr<LDIF_Exception> LDIF_Exception::copyChain(const LDIF_Exception* link) noexcept
{
    std::unique_ptr<LDIF_Exception> head;
    try {
        for (auto* end = &head; link != nullptr; link = link->nested.get()) {
            end->reset(new LDIF_Exception(*link, LinkOnly()));
            end = &(*end)->nested;
        }
    } catch (const std::bad_alloc&) {
        return head;  // The links copied so far still tell what happened.
    }
    return head;
}

std::string LDIF_Exception::dump() const
{
    std::string report;
    dumpLink(report);
    for (const auto* link = nested.get(); showStack && link != nullptr; link = link->nested.get()) {
        report += '\n';
        link->dumpLink(report);
    }
    return report;
}

void LDIF_Exception::dumpLink(std::string& report) const
{
    report += '[' + sourceFile + ':' + std::to_string(sourceLine);
    appendUnlessEmpty(report, "]\nmsg     ", msg);
    if (sysErr != 0 && sysErrIsWin32 == 0)
        appendNumberAndText(report, "\nerrno ", sysErr, std::strerror(sysErr));
    else if (sysErr != 0)
        appendNumberAndText(report, "\nWin32 error ", sysErr, systemErrorText(sysErr));
    appendNumberAndText(report, "\nldapErr ", ldapErr, errorText(ldapErr));
    if (extErr > 0 && extErr != ldapErr)
        appendNumberAndText(report, "\nextErr ", extErr, errorText(extErr));
    if (configLine != 0 && !configFile.empty())
        report += "\nLine " + std::to_string(configLine) + " of " + configFile;
    else
        appendUnlessEmpty(report, "\nConfig file: ", configFile);
    appendUnlessEmpty(report, "\nentry dn: ", entryDn);
    appendUnlessEmpty(report, "\nattribute: ", attribute);
    appendUnlessEmpty(report, "\nvalue: ", value);
    if (attrType != nullptr)
        dumpConstraints(report);
    report += '\n';
}

void LDIF_Exception::dumpConstraints(std::string& report) const
{
    report.append("\nConstraints for ").append(attrType->name != nullptr ? attrType->name : "UNKNOWN ATTRIBUTE TYPE");
    report += attrType->isSingle ? "\n  Single-valued" : "\n  Multi-valued";
    if (attrType->minimum != 0 || attrType->maximum != 0) {
        report += "\n  min: " + std::to_string(attrType->minimum);
        report += "\n  max: " + std::to_string(attrType->maximum);
    }
    if (attrType->bitmask != 0)
        report += "\n  bit mask: 0x" + hexadecimal(attrType->bitmask);
    if (attrType->enumValues == nullptr)
        return;
    report += "\n  enumeration: { ";
    const char* separator = "";
    for (const char* const* word = attrType->enumValues; *word != nullptr; ++word) {
        report.append(separator).append(*word);
        separator = ", ";
    }
    report += " }";
}

std::string LDIF_Exception::str() const
{
    std::string report;
    for (const auto* link = this; link != nullptr; link = showStack ? link->nested.get() : nullptr) {
        if (showSource)
            report += '[' + link->fileStr() + "] ";
        if (link->sysErr != 0)
            report += link->errStr() + ": ";
        if (!link->msg.empty())
            report += link->msgStr() + '\n';
    }
    return report;
}

std::string LDIF_Exception::fileStr() const
{
    if (sourceFile.empty())
        return "file?";
    const auto separator = sourceFile.find_last_of("\\/");
    return sourceFile.substr(separator + 1) + ':' + std::to_string(sourceLine);  // npos + 1 is 0: the whole name
}

std::string LDIF_Exception::errStr() const
{
    return std::to_string(sysErr);
}

std::string LDIF_Exception::msgStr() const
{
    return msg;
}

LDIF_Exception takeCurrent(const char* systemError, SourcePos pos)
{
    try {
        throw;
    } catch (LDIF_Exception& failure) {
        return std::move(failure);
    } catch (...) {
        return LDIF_Exception(LDAP_OTHER, CFG_ERR_UNEXPECTED, systemError, pos);
    }
}

LDIF_Exception wrapCurrent(const char* systemError, SourcePos pos)
{
    try {
        throw;
    } catch (LDIF_Exception& cause) {
        return LDIF_Exception(pos.file, pos.line, std::move(cause));
    } catch (...) {
        return LDIF_Exception(LDAP_OTHER, CFG_ERR_UNEXPECTED, systemError, pos);
    }
}
