#include "tqx/log/source/JoinedSource.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tqx
{

JoinedSource::JoinedSource(std::vector<std::string> inputs, FailureListener onFailure,
                           Opener opener)
    : paths(std::move(inputs)), listener(std::move(onFailure)), open(std::move(opener))
{
}

void JoinedSource::fail(const SourceError& error)
{
    failed = true;
    source.reset();
    if (listener)
        listener(error);
}

void JoinedSource::openNext()
{
    const std::string& path = paths[opened++];
    try {
        source = open(path);
        parts.push_back({source->placeOf(0).file, size});
    } catch (const SourceError& error) {
        fail(error);
    }
}

size_t JoinedSource::read(uint8_t* bytes, size_t capacity)
{
    while (source || opened < paths.size()) {
        if (!source) {
            openNext();
            continue;
        }
        try {
            const size_t count = source->read(bytes, capacity);
            size += count;
            if (count != 0 || source->isInterrupted())
                return count;
            source.reset();
        } catch (const SourceError& error) {
            fail(error);
        }
    }
    return 0;
}

ByteSource::Place JoinedSource::placeOf(uint64_t offset) const
{
    const auto after =
        std::upper_bound(parts.begin(), parts.end(), offset,
                         [](uint64_t wanted, const Part& part) { return wanted < part.start; });
    const Part& part = *std::prev(after);
    return {part.name, offset - part.start};
}

} // namespace tqx
