// Lines of the appliance's log for people.
#pragma once

#include <json/value.h>

namespace client {

class Table;

// Adds a row of time, place in the source, function and text to `table` for each line in the array `lines`.
// Missing members are empty.
void AddLogLines(Table& table, const Json::Value& lines);

}  // namespace client
