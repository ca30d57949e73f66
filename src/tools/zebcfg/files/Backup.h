// The backups of the live file: the last one, and those before it.
#ifndef ZEBCFG_BACKUP_H
#define ZEBCFG_BACKUP_H

#include "files/LiveFile.h"
#include "files/PrivateFile.h"

#include <optional>
#include <string>

// The name of a generation, counted from 1: FILE.bak, FILE.bak.2 and so on.
std::string generationName(const std::string& backupName, int number);

// One step from a generation to the next. The caller holds the lock. Without finish() the end puts back the backup that
// stood there. At every moment that one stands whole, under the backup's name or, set aside, under its other name.
// Calls throw Failure.
class Backup {
public:
    // An empty name keeps nothing; generations: how many are kept.
    Backup(std::string backupName, int generations);
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;
    ~Backup();

    // Completes or undoes the step in which an earlier process was killed.
    void recover(const std::string& liveText) const;
    // Writes the text of the file to a private copy.
    void prepare(const LiveFile& file);
    // Sets the backup aside, and puts the copy in its place.
    void advance();
    // The backup that is set aside becomes the second generation, or goes.
    void finish() noexcept;

private:
    bool putBack() const noexcept;
    void retire() const;

    const std::string name;
    const std::string aside;  // the other name
    const int most;           // generations
    std::optional<PrivateFile> copy;
    bool isAdvanced = false;
    bool isSetAside = false;
};

#endif
