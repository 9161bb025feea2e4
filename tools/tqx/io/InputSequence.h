#pragma once

#include "io/Progress.h"
#include "io/UnpackedInput.h"
#include "tqx/log/DataError.h"
#include "tqx/log/source/ByteSource.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Inputs concatenated as one source, opened one by one and decompressed. One that cannot be read
/// is reported on standard error and skipped from there on. Shows progress on a terminal.
class InputSequence : public ByteSource
{
public:
    /// "-" among the paths is standard input. With `quiet`, no progress is shown.
    InputSequence(std::vector<std::string> paths, bool quiet);

    size_t read(uint8_t* bytes, size_t capacity) override;

    /// Calls the action before it waits.
    bool isReady(std::chrono::milliseconds patience) override;

    /// Offsets must not decrease by more than one block from call to call.
    Place placeOf(uint64_t offset) const override;

    bool isInterrupted() const override;

    /// Counts the only input as opened, though it is read by other means.
    void passOver();

    /// Skips unreadable inputs without a report: another pass reports them.
    void leaveOutSilently() { m_reports = false; }

    /// Leaves the rest of the inputs unread.
    void close();

    /// Sets an action to call before waiting for more input: the moment to flush what a live stream
    /// has brought so far.
    void setBeforeRead(std::function<void()> action) { m_beforeRead = std::move(action); }

    /// Sets an action to call with all bytes read, in order.
    void setCopy(std::function<void(const uint8_t*, size_t)> action) { m_copy = std::move(action); }

    /// Names of the inputs that could be opened so far.
    const std::vector<std::string>& getNames() const { return m_names; }

    /// The first bytes of an input.
    struct Head {
        std::string name;
        std::vector<uint8_t> bytes; ///< up to 4,096
    };

    /// The beginnings of the first ten inputs that have any.
    const std::vector<Head>& getHeads() const { return m_heads; }

    /// Reports that an input cannot be read.
    void fail(const SourceError& error);

    /// Whether an input could not be opened or read.
    bool hasFailed() const { return m_failed; }

private:
    /// One input in the sequence.
    struct Part {
        std::string name;
        uint64_t start; ///< in the sequence
    };

    using Clock = std::chrono::steady_clock;

    bool openNext();
    void handOn();
    void keepHead(const uint8_t* bytes, size_t count);
    size_t readInput(uint8_t* bytes, size_t capacity);

    std::vector<std::string> m_paths;
    size_t m_opened = 0; ///< paths that were tried
    std::optional<UnpackedInput> m_input;
    std::optional<Progress> m_progress; ///< until the last input has ended
    std::vector<std::string> m_names;
    std::vector<Head> m_heads;
    bool m_hasHead = false;   ///< whether the last of them is of the current input
    std::deque<Part> m_parts; ///< all that could be opened
    uint64_t m_size = 0;      ///< bytes read so far
    std::function<void()> m_beforeRead;
    std::function<void(const uint8_t*, size_t)> m_copy;
    Clock::time_point m_handedOn;
    bool m_failed = false;
    bool m_reports = true;
};

} // namespace tqx::tool
