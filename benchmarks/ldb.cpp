// The ldb database beside which searches are measured.
#include "measure.h"
#include "references.h"

#include <string>

extern "C" {
#include <ldb.h>
}

namespace {

class LdbDatabase final : public Database {
public:
    explicit LdbDatabase(const std::string& file) : ldb(ldb_init(nullptr, nullptr))
    {
        require(ldb != nullptr, "ldb_init");
        check(ldb_connect(ldb.get(), ("tdb://" + file).c_str(), LDB_FLG_NOSYNC, nullptr), "ldb_connect");
    }

    void fill(const Request& request, const char* indexed)
    {
        if (indexed != nullptr)
            add({"@INDEXLIST", {}, {{"@IDXATTR", indexed}}, false});
        check(ldb_transaction_start(ldb.get()), "ldb_transaction_start");
        generateEntries(request, [&](const GeneratedEntry& entry) { add(entry); });
        check(ldb_transaction_commit(ldb.get()), "ldb_transaction_commit");
    }

    std::size_t search(const std::string& base, int scope, const char* filter) override
    {
        const Block block(talloc_new(ldb.get()));
        ldb_result* result = nullptr;
        ldb_dn* const dn = ldb_dn_new(block.get(), ldb.get(), base.c_str());
        check(ldb_search(ldb.get(), block.get(), &result, dn, static_cast<ldb_scope>(scope), nullptr, "%s", filter),
              "ldb_search");
        return result->count;
    }

private:
    // Memory of talloc, released with all that hangs on it.
    struct Free {
        void operator()(void* block) const noexcept { (void)talloc_free(block); }
    };
    using Block = std::unique_ptr<void, Free>;

    void add(const GeneratedEntry& entry)
    {
        const Block block(talloc_new(ldb.get()));
        ldb_message* const message = ldb_msg_new(block.get());
        message->dn = ldb_dn_new(message, ldb.get(), entry.dn.c_str());
        for (const auto& [name, value] : entry.attributes)
            check(ldb_msg_add_string(message, name.c_str(), value.c_str()), "ldb_msg_add_string");
        check(ldb_add(ldb.get(), message), "ldb_add");
    }

    void check(int code, const char* call)
    {
        if (code != LDB_SUCCESS)
            fail(std::string(call) + ": " + ldb_errstring(ldb.get()));
    }

    const std::unique_ptr<ldb_context, Free> ldb;
};

}  // namespace

std::unique_ptr<Database> makeLdb(const std::string& file, const Request& request, const char* indexed)
{
    auto database = std::make_unique<LdbDatabase>(file);
    database->fill(request, indexed);
    return database;
}

std::string ldbVersion()
{
    return LDB_VERSION;
}
