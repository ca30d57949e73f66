#include "case.h"
#include "handle.h"
#include "references.h"

#include <utility>
#include <vector>

namespace {

constexpr char newDn[] = "cn=Newcomer, cn=Configuration";

// What the library has written is what the next one to load it sees.
void requireWritten(const std::string& file, const Exchange& last)
{
    Handle handle(file);
    handle.bind();
    const std::string filter = '(' + last.attribute + '=' + last.value + ')';
    (void)handle.search(last.dn, LDAP_SCOPE_BASE, filter.c_str());
}

// One value gives way to another of the same length, so that the size of the file stays.
void modify(Handle& handle, Exchange& exchange)
{
    std::swap(exchange.value, exchange.otherValue);
    handle.modify(exchange.dn, {{LDAP_MOD_DELETE, exchange.attribute, exchange.otherValue},
                                {LDAP_MOD_ADD, exchange.attribute, exchange.value}});
}

void requireFlushed(const std::string& text, const Input& input)
{
    Request request = input.request;
    if (request.shape == Shape::childrenFirst)
        return;
    if (request.shape == Shape::rearranged)
        request.shape = Shape::containers;
    require(text == generateInput(request).text, "a flush that changes nothing but spelling");
}

}  // namespace

void measureUpdates(Case& each, const Effort& effort)
{
    const std::string file = each.directory / "updated.conf";
    writeBytes(file, each.input.text);
    Handle handle(file);
    handle.bind();
    handle.flush();
    const std::string text = readText(file);
    requireFlushed(text, each.input);

    const std::vector<Change> newcomer{{0, "objectclass", "zeb-slapdAgreement"}, {0, "cn", "Newcomer"}};
    Exchange exchange = each.input.exchange;
    Figures& samples = each.figures;
    repeat(effort, [&] {
        samples.write.add(cpuTimeOf([&] { writeBytes(each.directory / "bytes", text); }));
        samples.flush.add(cpuTimeOf([&] { handle.flush(); }));
        samples.modify.add(cpuTimeOf([&] { modify(handle, exchange); }));
        samples.add.add(cpuTimeOf([&] { handle.add(newDn, newcomer); }));
        samples.erase.add(cpuTimeOf([&] { handle.erase(newDn); }));
    });
    requireWritten(file, exchange);
    require(readText(file).size() == text.size(), "the size of the file after the updates");
}
