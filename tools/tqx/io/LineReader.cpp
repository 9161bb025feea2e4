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
    : input(path), longest(longestLine), progress(shown), beforeRead(std::move(action)),
      piece(pieceSize)
{
    progress.setName(input.getName());
}

bool LineReader::readOn()
{
    beforeRead();
    position = 0;
    filled = input.read(piece.data(), piece.size());
    progress.add(input.takeProgress());
    return filled != 0;
}

bool LineReader::next(std::string& line)
{
    line.clear();
    tooLong = false;
    for (;;) {
        if (position == filled && !readOn())
            return !line.empty() || tooLong;
        const uint8_t* begin = piece.data() + position;
        const uint8_t* end = piece.data() + filled;
        const uint8_t* stop = std::find(begin, end, uint8_t{'\n'});
        if (tooLong || static_cast<uint64_t>(stop - begin) > longest - line.size()) {
            tooLong = true;
            line.clear();
        } else {
            line.append(begin, stop);
        }
        position += static_cast<size_t>(stop - begin);
        if (stop == end)
            continue;
        ++position;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        return true;
    }
}

} // namespace tqx::tool
