#include "io/LineReader.h"

#include <algorithm>
#include <utility>

namespace tqx::tool
{

namespace
{

constexpr size_t pieceSize = 1 << 18;

} // namespace

LineReader::LineReader(const std::string& path, uint64_t longestLine, Progress& shown,
                       std::function<void()> action)
    : m_input(path), m_longest(longestLine), m_progress(shown), m_beforeRead(std::move(action)),
      m_piece(pieceSize)
{
    m_progress.setName(m_input.getName());
}

bool LineReader::readOn()
{
    m_beforeRead();
    m_position = 0;
    m_filled = m_input.read(m_piece.data(), m_piece.size());
    m_progress.add(m_input.takeProgress());
    return m_filled != 0;
}

bool LineReader::next(std::string& line)
{
    line.clear();
    m_tooLong = false;
    for (;;) {
        if (m_position == m_filled && !readOn())
            return !line.empty() || m_tooLong;
        const uint8_t* begin = m_piece.data() + m_position;
        const uint8_t* end = m_piece.data() + m_filled;
        const uint8_t* stop = std::find(begin, end, uint8_t{'\n'});
        if (m_tooLong || static_cast<uint64_t>(stop - begin) > m_longest - line.size()) {
            m_tooLong = true;
            line.clear();
        } else {
            line.append(begin, stop);
        }
        m_position += static_cast<size_t>(stop - begin);
        if (stop == end)
            continue;
        ++m_position;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        return true;
    }
}

} // namespace tqx::tool
