#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tool
{

/// Tells on a terminal how far a long input has been read. Silent when standard error is no
/// terminal, when data goes to the same terminal, and in the first second.
class Progress
{
public:
    /// `size` is that of the input in bytes, 0 when it is not known.
    Progress(std::string name, uint64_t size);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Reports that `bytes` have been read so far.
    void update(uint64_t bytes);

private:
    using Clock = std::chrono::steady_clock;

    std::string name;
    uint64_t size;
    bool enabled;
    Clock::time_point start;
    Clock::time_point next;
};

} // namespace tool
