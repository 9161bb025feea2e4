#pragma once

#include "tqx/log/mixed/Crc24.h"
#include "tqx/log/mixed/Neighbour.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Finds the well-formed neighbours among the bytes that belong to no block: NMEA sentences and
/// RTCM 3 frames wherever their checksum holds, and lines of text and prompts where a line may
/// begin: at the start of a run of bytes and right after a neighbour or a damaged sentence. All
/// else is damage.
///
/// The first line of a text has four printable characters at least; those right after it may be of
/// any length. None begins with "$@" or ends with the checksum of a sentence. Up to eight empty
/// lines before a text belong to it. Neighbours do not overlap: the well-formed one that begins
/// first wins.
///
///     scanner.append(offset, bytes, size); // as often as the run goes on
///     scanner.end();                       // a block follows, or nothing
///
/// The result depends only on the runs, never on the pieces in which they arrive. At all times:
/// bytes of neighbours + damage + bytesLeft() == bytes appended. The work is linear in the bytes
/// appended; less than 1,029 bytes wait between calls.
class TQX_LOG_API NeighbourScanner
{
public:
    /// Receives what is found, in order, while append() and end() run. Must not call the scanner.
    class Listener
    {
    public:
        /// Its offset is that of the stream; its bytes are valid until this returns.
        virtual void onRecognised(const Neighbour& neighbour) = 0;

        /// `count` (> 0) bytes of nothing well-formed. One stretch may be reported in several
        /// parts.
        virtual void onDamage(uint64_t offset, uint64_t count) = 0;

    protected:
        Listener() = default;
        Listener(const Listener&) = default;
        Listener& operator=(const Listener&) = default;
        ~Listener();
    };

    /// The listener is not owned and must outlive the scanner.
    explicit NeighbourScanner(Listener& hears) : m_listener(hears) {}

    /// Adds the next piece of a run. One that does not begin where the last one ended begins a run.
    void append(uint64_t offset, const uint8_t* bytes, size_t size);

    /// Ends the run: decides about what is waiting.
    void end()
    {
        if (m_isOpen)
            close();
    }

    /// Bytes appended but not decided about yet.
    size_t bytesLeft() const { return m_waiting.size(); }

private:
    enum class Verdict { Waits, Damage, Neighbour };

    /// What the first `size` bytes of those looked at are.
    struct Decision {
        Verdict verdict;
        size_t size;
        NeighbourKind kind;
    };

    /// Bytes from the one to decide about.
    struct View {
        const uint8_t* data;
        size_t size;
        bool isLast; ///< whether the run ends with them
    };

    void close();
    size_t scan(const uint8_t* bytes, size_t size, bool isLast);
    Decision decide(const View& view);
    Decision decideFrame(const View& view);
    Decision decideSentence(const View& view);
    Decision decideText(const View& view);
    Decision decideLine(const View& view, size_t blank, size_t end) const;
    size_t findLineEnd(const View& view, size_t from, bool isSentence);

    Listener& m_listener;
    std::vector<uint8_t> m_waiting;
    uint64_t m_position = 0;     ///< of the first byte that is not decided about
    size_t m_looked = 0;         ///< bytes from there on that are known to be of one line
    bool m_isOpen = false;       ///< within a run
    bool m_isLineStart = true;   ///< whether a line of text may begin at the position
    bool m_isWithinText = false; ///< whether a line of text or a prompt has just ended there
    Crc24 m_crc;
};

} // namespace tqx
