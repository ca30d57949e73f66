// Where in the configuration file a failure lies.
#ifndef ZEBCFG_PLACE_H
#define ZEBCFG_PLACE_H

#include <string>

struct Failure;

// Adds the place in the file to a failure that has an attribute and an entry, and the name of the file to any.
void addPlace(Failure& failure, const std::string& text, const std::string& shownName);

#endif
