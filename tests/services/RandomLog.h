#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

/// A log with blocks of all main types in turn, junk and damaged blocks between them. Its time can
/// be moved, so that a short log repeated looks like a long one.
class RandomLog
{
public:
    static constexpr uint64_t millisPerRound = 1000; ///< between two blocks of one type

    /// At least `size` bytes, in whole rounds of all types.
    explicit RandomLog(int size);

    const QByteArray& bytes() const { return m_bytes; }

    /// Number of intact blocks.
    size_t blockCount() const { return m_blocks.size(); }

    /// Time of the intact block at `index`, when the log begins at `start`.
    uint64_t timeOf(uint64_t start, size_t index) const;

    /// Gives every block its time, in milliseconds since week 0.
    void beginAt(uint64_t start);

private:
    QByteArray m_bytes;
    std::vector<int> m_blocks; ///< where the intact ones begin
};
