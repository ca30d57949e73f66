// The copy of the configuration file that an update changes.
#ifndef ZEBCFG_WORKINGCOPY_H
#define ZEBCFG_WORKINGCOPY_H

#include "files/GuardedFile.h"
#include "library/Session.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Changes stay in memory until write(), and are undone when their step fails. Calls throw Failure.
//
// The library writes the file at the end of each change, as a whole. Until write() the file refuses that: a change that
// cannot be written stays in the library's memory and goes with the next write, and as the modification time stays the
// same too, no call loads the file in between. So a batch takes one write.
class WorkingCopy {
public:
    // A call of the library that changes the tree. One that fails has changed nothing.
    using Call = std::function<void(Session& session)>;

    // The file has to outlive this object. shown: what messages call it. The login is checked here, and only here, for
    // a change may give it another password.
    WorkingCopy(GuardedFile& copied, std::string shown, const std::optional<Login>& login);

    // Stays until the end of a step that fails, or the next replaceText().
    const Session& session() const noexcept { return *opened; }
    void make(Call call);
    // When body throws Failure, what it has made is undone.
    void step(const std::function<void()>& body);
    // The text with all changes so far.
    std::string text();
    // Loads another text and runs body on it, as one step.
    void replaceText(const std::string& text, const std::function<void()>& body);

    // Writes the file, with which the changes end. Says whether they have changed its text: the form that the library
    // gives it at its first write does not count.
    bool write();

private:
    using Text = std::shared_ptr<const std::string>;  // of the whole file

    void open(const std::optional<Login>& login);
    void addHead();
    void load(const std::string& text);
    void flush();
    Text readText() const;
    void begin(Text text);
    void hold();
    void goBack(std::size_t count);
    void advance();

    GuardedFile& file;
    const std::string path;
    const std::string shownName;
    std::unique_ptr<Session> opened;
    Text original;            // before the first step
    Text checkpoint;          // loads as the tree that the calls begin with
    std::vector<Call> calls;  // made since then
    bool isLost = false;      // a step that failed could not be undone
};

#endif
