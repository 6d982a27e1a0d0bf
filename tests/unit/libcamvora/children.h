// Work in several processes at once.
#pragma once

#include <functional>

// Forks `count` children that start together; each does `work` with its number and ends. Returns how many
// of them reported success and did not die or throw.
int CountSuccesses(int count, const std::function<bool(int)>& work);

// The same with one child: true when it reported success.
bool SucceedsInChild(const std::function<bool()>& work);
