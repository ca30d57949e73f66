// Numbers and tables as the benchmark of the whole prints them.
#ifndef TABLE_H
#define TABLE_H

#include <cstddef>
#include <string>
#include <vector>

// With three digits that count; "-" for what is unknown, "inf" for what took too long to be measured.
std::string shown(double number);

// With a comma between thousands.
std::string shown(std::size_t number);

// The first line holds the titles. All but the first column is aligned to the right.
void printTable(const std::string& title, const std::vector<std::vector<std::string>>& lines);

#endif
