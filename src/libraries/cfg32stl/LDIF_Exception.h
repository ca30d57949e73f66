// The one exception type of the library, and the one way to wrap and pass it on.
#ifndef LDIF_EXCEPTION_H
#define LDIF_EXCEPTION_H

#include <exception>
#include <memory>
#include <ostream>
#include <string>

struct _AttrType;

// A place in the source. As a default argument, here() is the line of the call that left the argument out.
struct SourcePos {
    const char* file;
    int line;
    static constexpr SourcePos here(const char* file = __builtin_FILE(), int line = __builtin_LINE())
    {
        return {file, line};
    }
};

// A failure on its way to the caller: two codes, a text, the place of the throw, and whatever the layers that it
// passes know of the file, entry, attribute and value concerned. A layer may wrap a failure in another one; the
// wrapper owns what it wraps, and copies are deep. Where memory runs out, a copy or wrapper has a shorter chain.
class LDIF_Exception : public std::exception {
public:
    std::string sourceFile;
    int sourceLine;
    std::string msg;
    int ldapErr;             // what the exported call returns
    int extErr;              // a code of 1000 and above, or ldapErr again
    int sysErr = 0;          // an errno value or a Win32 error; 0 means none
    int sysErrIsWin32 = 0;   // 1 when sysErr comes from GetLastError, 0 when it comes from errno
    std::string configFile;  // the configuration file concerned; may be empty, like the four below
    int configLine = 0;      // counted from 1; 0 means that no line applies
    std::string entryDn;
    std::string attribute;
    std::string value;
    const _AttrType* attrType = nullptr;     // the type whose limits apply; static, may be null
    std::unique_ptr<LDIF_Exception> nested;  // what this one wraps; may be null

    static bool showSource;  // str opens with the source position
    static bool showStack;   // dump and str go on into nested

    // A new failure.
    LDIF_Exception(const char* file, int line, int ldapCode, int extCode, const char* text);
    LDIF_Exception(int ldapCode, int extCode, const std::string& text, SourcePos pos = SourcePos::here());
    // A wrapper: the same failure as cause, seen from another place. The second form takes the chain over.
    LDIF_Exception(const char* file, int line, const LDIF_Exception& cause);
    LDIF_Exception(const char* file, int line, LDIF_Exception&& cause);
    LDIF_Exception(const LDIF_Exception& other);
    LDIF_Exception(LDIF_Exception&& other) noexcept = default;
    LDIF_Exception& operator=(const LDIF_Exception&) = delete;
    LDIF_Exception& operator=(LDIF_Exception&&) = delete;
    ~LDIF_Exception() override;

    // The full report, several lines, a block for each link of the chain.
    virtual std::string dump() const;
    // The short report: the text, a line for each link of the chain.
    virtual std::string str() const;
    friend std::ostream& operator<<(std::ostream& out, const LDIF_Exception& failure) { return out << failure.str(); }
    // The place of the throw, "name:line", without directories; "file?" when it is not known.
    virtual std::string fileStr() const;
    // sysErr in decimal.
    virtual std::string errStr() const;
    virtual std::string msgStr() const;

private:
    struct LinkOnly {};
    LDIF_Exception(const LDIF_Exception& other, LinkOnly link);

    static std::unique_ptr<LDIF_Exception> copyChain(const LDIF_Exception* link) noexcept;
    void dumpLink(std::string& report) const;
    void dumpConstraints(std::string& report) const;
};

// The exception being handled: an LDIF_Exception is taken over as it is, and anything else becomes a new one with
// 80, 1000 and the text systemError.
LDIF_Exception takeCurrent(const char* systemError, SourcePos pos = SourcePos::here());

// The same, but an LDIF_Exception comes wrapped in a new one of this place.
LDIF_Exception wrapCurrent(const char* systemError, SourcePos pos = SourcePos::here());

// Wraps the exception being handled, lets addFields write what this layer knows (file, line, entry, attribute, value),
// and throws the wrapper. Anything but an LDIF_Exception becomes a new one with 80, 1000 and the text systemError.
template <typename AddFields>
[[noreturn]] void wrapAndThrow(const char* systemError, AddFields addFields, SourcePos pos = SourcePos::here())
{
    LDIF_Exception wrapper = wrapCurrent(systemError, pos);
    addFields(wrapper);
    throw wrapper;
}

// The same without a wrapper: an LDIF_Exception is completed and thrown on.
template <typename AddFields>
[[noreturn]] void completeAndThrow(const char* systemError, AddFields addFields, SourcePos pos = SourcePos::here())
{
    LDIF_Exception failure = takeCurrent(systemError, pos);
    addFields(failure);
    throw failure;
}

// Gives what body gives, and wraps what it throws as wrapAndThrow does.
template <typename AddFields, typename Body>
decltype(auto) wrapping(const char* systemError, AddFields addFields, Body body, SourcePos pos = SourcePos::here())
try {
    return body();
} catch (...) {
    wrapAndThrow(systemError, addFields, pos);
}

#endif
