// A handle of the library, as the benchmarks use it.
#ifndef HANDLE_H
#define HANDLE_H

#include "zebldapcfg.h"

#include <memory>
#include <string>
#include <vector>

constexpr char anyEntry[] = "(objectclass=*)";

struct ResultDeleter {
    void operator()(CFGMessage* result) const noexcept { cfg_msgfree(result); }
};
using Result = std::unique_ptr<CFGMessage, ResultDeleter>;

// One LDAPMod with one value.
struct Change {
    int operation;
    std::string attribute;
    std::string value;
};

// All calls throw std::runtime_error when the library gives anything but success.
class Handle {
public:
    // Not bound yet.
    explicit Handle(const std::string& file);
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { release(); }

    void bind();
    // attribute is the only one wanted; null for all.
    Result search(const std::string& base, int scope, const char* filter, const char* attribute = nullptr);
    int count(const Result& result) { return cfg_count_entries(cfg, result.get()); }
    void modify(const std::string& dn, const std::vector<Change>& changes);
    void add(const std::string& dn, const std::vector<Change>& attributes);
    void erase(const std::string& dn);
    void flush();
    // Once; the handle is of no use afterwards.
    void release() noexcept;

private:
    void check(int code, const char* call);

    CFG* cfg;
};

#endif
