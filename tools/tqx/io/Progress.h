#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Shows on a terminal how far long inputs have been read: share, bytes, rate, name. Silent unless
/// words::canShowProgress(), and in the first second.
class Progress
{
public:
    /// Progress over concatenated inputs. `isWanted` false keeps it silent.
    Progress(const std::vector<std::string>& paths, bool isWanted);
    /// Progress of a product, of which `size` bytes are expected, 0 when not known.
    Progress(std::string name, uint64_t size);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Sets the name of the current input.
    void setName(const std::string& input) { m_name = input; }

    /// Reports that `bytes` more have been read.
    void add(uint64_t bytes);

private:
    using Clock = std::chrono::steady_clock;

    std::string describe(Clock::time_point now) const;

    std::string m_name;
    uint64_t m_size = 0; ///< of all in bytes, 0 when it is not known
    uint64_t m_done = 0;
    bool m_enabled;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next = m_start + std::chrono::seconds(1);
};

} // namespace tqx::tool
