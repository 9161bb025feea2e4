#pragma once

#include <string>

/// Blocks of random values, of each type one at each of its revisions and three at least.
std::string randomStream();
