#pragma once

#include <string>
#include <utility>
#include <vector>

/// What the metadata call in the framework, in order: one line per call.
class Journal
{
public:
    static void note(std::string line) { lines().push_back(std::move(line)); }

    /// The lines since the last call.
    static std::vector<std::string> take() { return std::exchange(lines(), {}); }

private:
    static std::vector<std::string>& lines()
    {
        static auto* const all = new std::vector<std::string>;
        return *all;
    }
};
