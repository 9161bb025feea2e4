#pragma once

#include "tqx/log/DataError.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx_log_export.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// Several sources concatenated. Each is opened when the one before has ended. One that cannot be
/// opened is skipped, one that cannot be read further ends there; both are reported, and the next
/// one follows.
class TQX_LOG_API JoinedSource : public ByteSource
{
public:
    /// Opens a source or throws SourceError.
    using Opener = std::function<std::unique_ptr<ByteSource>(const std::string& path)>;

    /// Called while read() runs; read() passes on what it throws.
    using FailureListener = std::function<void(const SourceError& error)>;

    /// `onFailure` may be empty.
    JoinedSource(std::vector<std::string> paths, FailureListener onFailure,
                 Opener opener = openSource);

    /// Never throws itself: failures go to the listener.
    size_t read(uint8_t* bytes, size_t capacity) override;
    bool isReady(std::chrono::milliseconds patience) override
    {
        return !m_source || m_source->isReady(patience);
    }
    Place placeOf(uint64_t offset) const override;
    bool isInterrupted() const override { return m_source && m_source->isInterrupted(); }

    /// Whether a source could not be opened or read.
    bool hasFailed() const { return m_failed; }

private:
    /// One source within the sequence.
    struct Part {
        std::string name;
        uint64_t start; ///< in the sequence
    };

    void openNext();
    void fail(const SourceError& error);

    std::vector<std::string> m_paths;
    FailureListener m_listener;
    Opener m_open;
    size_t m_opened = 0; ///< paths that were tried
    std::unique_ptr<ByteSource> m_source;
    std::deque<Part> m_parts; ///< all that could be opened
    uint64_t m_size = 0;      ///< bytes read so far
    bool m_failed = false;
};

} // namespace tqx
