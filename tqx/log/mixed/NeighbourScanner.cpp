#include "tqx/log/mixed/NeighbourScanner.h"

#include "tqx/log/mixed/BeginningSearch.h"
#include "tqx/log/mixed/LineRules.h"

#include <algorithm>

namespace tqx
{

namespace
{

constexpr size_t frameHeader = 3;
constexpr size_t frameChecksum = 3;
constexpr size_t endSize = 2; // CR, LF

// Results of findLineEnd() that are not the size of a line.
constexpr size_t noLine = 0;
constexpr size_t unknown = SIZE_MAX;

bool isLineEnd(const uint8_t* bytes)
{
    return bytes[0] == '\r' && bytes[1] == '\n';
}

} // namespace

NeighbourScanner::Listener::~Listener() = default;

void NeighbourScanner::append(uint64_t offset, const uint8_t* bytes, size_t size)
{
    if (offset != m_position + m_waiting.size())
        end();
    if (size == 0)
        return;
    if (!m_isOpen)
        m_position = offset;
    m_isOpen = true;
    if (m_waiting.empty()) {
        const size_t decided = scan(bytes, size, false);
        m_waiting.assign(bytes + decided, bytes + size);
        return;
    }
    m_waiting.insert(m_waiting.end(), bytes, bytes + size);
    const size_t decided = scan(m_waiting.data(), m_waiting.size(), false);
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(decided));
}

void NeighbourScanner::close()
{
    scan(m_waiting.data(), m_waiting.size(), true);
    m_waiting.clear();
    m_crc.restart();
    m_isOpen = false;
    m_isLineStart = true;
    m_isWithinText = false;
}

/// Decides about as many of the bytes as it can, the first of them at `position`, and returns how
/// many.
size_t NeighbourScanner::scan(const uint8_t* bytes, size_t size, bool isLast)
{
    size_t at = 0;
    size_t damage = 0; // where it begins; it goes on to `at`
    const auto reportDamage = [&] {
        if (damage != at)
            m_listener.onDamage(m_position - (at - damage), at - damage);
    };
    for (;;) {
        if (!m_isLineStart) {
            const size_t passed = findBeginning(bytes + at, size - at);
            at += passed;
            m_position += passed;
        }
        if (at == size)
            break;
        const Decision decision = decide({bytes + at, size - at, isLast});
        if (decision.verdict == Verdict::Waits)
            break;
        m_looked = 0;
        const bool isNeighbour = decision.verdict == Verdict::Neighbour;
        if (isNeighbour) {
            reportDamage();
            m_listener.onRecognised({decision.kind, bytes + at, decision.size, m_position});
        }
        at += decision.size;
        m_position += decision.size;
        if (isNeighbour)
            damage = at;
        m_isLineStart = isNeighbour || decision.size > 1;
        m_isWithinText = isNeighbour && decision.kind == NeighbourKind::Ascii;
    }
    reportDamage();
    return at;
}

// Damage of more than one byte ends where a line may begin.
NeighbourScanner::Decision NeighbourScanner::decide(const View& view)
{
    Decision decision = *view.data == framePreamble ? decideFrame(view)
                        : m_isLineStart             ? decideText(view)
                                                    : decideSentence(view);
    if (decision.verdict == Verdict::Waits && view.isLast)
        decision = {Verdict::Damage, 1, {}};
    return decision;
}

NeighbourScanner::Decision NeighbourScanner::decideFrame(const View& view)
{
    if (view.size > 1 && (view.data[1] & frameReserved) != 0)
        return {Verdict::Damage, 1, {}};
    if (view.size < frameHeader)
        return {Verdict::Waits, 0, {}};
    const size_t message = view.data[1] * size_t{256} + view.data[2];
    const size_t size = frameHeader + message + frameChecksum;
    if (view.size < size)
        return {Verdict::Waits, 0, {}};
    if (!m_crc.holds(m_position, view.data, size))
        return {Verdict::Damage, 1, {}};
    return {Verdict::Neighbour, size, NeighbourKind::Rtcm3};
}

NeighbourScanner::Decision NeighbourScanner::decideSentence(const View& view)
{
    if (view.size > 1 && !isCapital(view.data[1]))
        return {Verdict::Damage, 1, {}};
    const size_t size = findLineEnd(view, 1, true);
    if (size == unknown)
        return {Verdict::Waits, 0, {}};
    const SentenceCheck check =
        size == noLine ? SentenceCheck::None : checkSentence(view.data, size - endSize);
    if (check == SentenceCheck::Right)
        return {Verdict::Neighbour, size, NeighbourKind::Nmea};
    return {Verdict::Damage, check == SentenceCheck::Wrong ? size : 1, {}};
}

NeighbourScanner::Decision NeighbourScanner::decideText(const View& view)
{
    constexpr size_t mostBlank = 8 * endSize;
    size_t blank = 0;
    while (blank < mostBlank && blank + endSize <= view.size && isLineEnd(view.data + blank)) {
        blank += endSize;
        if (m_isWithinText)
            return {Verdict::Neighbour, blank, NeighbourKind::Ascii};
    }
    const uint8_t* const first = view.data + blank;
    const size_t size = view.size - blank;
    if (size != 0 && mayBePrompt(first, std::min(size, promptSize))) {
        if (size < promptSize && !view.isLast)
            return {Verdict::Waits, 0, {}};
        if (size >= promptSize)
            return {Verdict::Neighbour, blank + promptSize, NeighbourKind::Ascii};
    }
    const size_t end = findLineEnd(view, blank, false);
    if (end == unknown)
        return {Verdict::Waits, 0, {}};
    return decideLine(view, blank, end);
}

/// Decides about a line that ends at `end` after `blank` bytes of empty lines.
NeighbourScanner::Decision NeighbourScanner::decideLine(const View& view, size_t blank,
                                                        size_t end) const
{
    // What precedes anything but a text is separate damage.
    const Decision none = {Verdict::Damage, blank == 0 ? 1 : blank, {}};
    if (end == noLine)
        return none;
    const uint8_t* const line = view.data + blank;
    const size_t size = end - blank;
    const SentenceCheck check = checkSentence(line, size - endSize);
    if (check == SentenceCheck::Right)
        return blank == 0 ? Decision{Verdict::Neighbour, size, NeighbourKind::Nmea} : none;
    // A sentence that begins inside the line is complete; what precedes it is not.
    for (size_t at = size - endSize; at-- > 1;) {
        if (!beginsSentence(line[at]))
            continue;
        if (checkSentence(line + at, size - at - endSize) == SentenceCheck::Right)
            return {Verdict::Damage, blank + at, {}};
        break;
    }
    if (check == SentenceCheck::Wrong)
        return {Verdict::Damage, end, {}};
    const bool isFalseSync = line[0] == '$' && line[1] == '@';
    if (isFalseSync || (!m_isWithinText && size < leastText + endSize))
        return none;
    return {Verdict::Neighbour, end, NeighbourKind::Ascii};
}

/// Size of the line with its CR and LF, of which the bytes before `from` are known; noLine, or
/// unknown when that depends on bytes to come.
size_t NeighbourScanner::findLineEnd(const View& view, size_t from, bool isSentence)
{
    size_t at = std::max(from, m_looked);
    const size_t most = std::min(view.size, from + longestLine - endSize);
    while (at < most && isPrintable(view.data[at]) &&
           !(isSentence && beginsSentence(view.data[at])))
        ++at;
    m_looked = at;
    if (at + endSize <= view.size)
        return isLineEnd(view.data + at) ? at + endSize : noLine;
    return at == view.size || view.data[at] == '\r' ? unknown : noLine;
}

} // namespace tqx
