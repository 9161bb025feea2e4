#include "tqx/log/table/Gather.h"

#include <cstring>

namespace tqx
{

namespace
{

template<typename Word>
Word load(const uint8_t* from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template<typename Word>
void copyWords(const uint8_t* from, size_t stride, size_t count, const NumberPlace&, void* out)
{
    auto* to = static_cast<Word*>(out);
    for (size_t i = 0; i < count; ++i, from += stride)
        to[i] = load<Word>(from);
}

template<typename Word, typename Out>
void extractUnsigned(const uint8_t* from, size_t stride, size_t count, const NumberPlace& place,
                     void* out)
{
    auto* to = static_cast<Out*>(out);
    const unsigned shift = place.shift;
    const auto mask = static_cast<Word>(~uint64_t{0} >> (64U - place.width));
    for (size_t i = 0; i < count; ++i, from += stride)
        to[i] = static_cast<Out>(load<Word>(from) >> shift & mask);
}

template<typename Word, typename Out>
void extractSigned(const uint8_t* from, size_t stride, size_t count, const NumberPlace& place,
                   void* out)
{
    auto* to = static_cast<Out*>(out);
    const unsigned shift = place.shift;
    const uint64_t mask = ~uint64_t{0} >> (64U - place.width);
    const uint64_t sign = uint64_t{1} << (place.width - 1U);
    for (size_t i = 0; i < count; ++i, from += stride) {
        const uint64_t value = uint64_t{load<Word>(from)} >> shift & mask;
        to[i] = static_cast<Out>((value ^ sign) - sign);
    }
}

template<typename Word, typename Out>
Gather gatherAs(const NumberPlace& place)
{
    if (place.isSigned)
        return extractSigned<Word, Out>;
    return extractUnsigned<Word, Out>;
}

template<typename Word>
Gather gatherFrom(const NumberPlace& place, uint32_t outSize)
{
    if (outSize == sizeof(Word) && place.width == 8 * sizeof(Word))
        return copyWords<Word>;
    switch (outSize) {
    case 1:
        return gatherAs<Word, uint8_t>(place);
    case 2:
        return gatherAs<Word, uint16_t>(place);
    case 4:
        return gatherAs<Word, uint32_t>(place);
    default:
        return gatherAs<Word, uint64_t>(place);
    }
}

} // namespace

Gather gatherFor(const NumberPlace& place, uint32_t outSize)
{
    switch (place.wordSize) {
    case 1:
        return gatherFrom<uint8_t>(place, outSize);
    case 2:
        return gatherFrom<uint16_t>(place, outSize);
    case 4:
        return gatherFrom<uint32_t>(place, outSize);
    default:
        return gatherFrom<uint64_t>(place, outSize);
    }
}

} // namespace tqx
