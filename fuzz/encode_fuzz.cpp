// Encodes arbitrary records: the result decodes to the same fields, and a buffer that is too small
// is refused and not overrun.

#include "FieldRoles.h"
#include "RecordCompare.h"
#include "RecordFiller.h"
#include "RecordGuard.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

using namespace Kor::MessageApi;

constexpr uint32_t largestBlock = 65535;

[[noreturn]] void fail(const TQX_TypeLayout& type, const std::string& what)
{
    std::fprintf(stderr, "%s: %s\n", type.name, what.c_str());
    std::abort();
}

class Input
{
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    uint64_t next(unsigned bytes)
    {
        uint64_t value = 0;
        for (unsigned i = 0; i < bytes && m_size != 0; ++i, ++m_data, --m_size)
            value |= uint64_t{*m_data} << (8 * i);
        return value;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
};

void checkDecoding(const TQX_TypeLayout& type, AnyRecord& source, const uint8_t* bytes,
                   int32_t bits)
{
    AnyRecord decoded;
    const int32_t result = decoded.decode(bytes, static_cast<uint16_t>(bits / 8));
    if (result < 0 || result > bits)
        fail(type, TQX_errorName(result));
    const std::string difference =
        firstDifference(type, decoded.get(), source.get(), Compared::WireFields);
    if (!difference.empty())
        fail(type, difference);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const TQX_TypeLayout& type =
        *mainTypes()[static_cast<size_t>(input.next(1)) % mainTypes().size()];
    const uint64_t choices = input.next(1);
    const auto revision = static_cast<unsigned>(choices & 7U);
    FillOptions options;
    options.largestCount = choices & 8U ? 20 : 4;
    options.trustSource = (choices & 16U) != 0;
    const auto room = static_cast<uint16_t>(input.next(2));

    AnyRecord source;
    type.init(source.get());
    fillRecord(type, source.get(), revision, options,
               [&](unsigned bytes) { return input.next(bytes); });

    static uint8_t whole[largestBlock];
    const int32_t bits = type.encode(whole, largestBlock, source.get());
    // Padding of an entry is not a field.
    if (bits > 0 && source.as<TQX_MainHeader_s>().korcg_bits > static_cast<uint32_t>(bits))
        fail(type, "wrong count of bits");
    // A record of another revision than those known states the lengths of its entries itself.
    if (bits > 0 && !options.trustSource)
        checkDecoding(type, source, whole, bits);

    const std::unique_ptr<uint8_t[]> small(new uint8_t[room]);
    const int32_t result = type.encode(small.get(), room, source.get());
    if (bits > 0 && bits <= room * 8) {
        if (result != bits || std::memcmp(small.get(), whole, static_cast<size_t>(bits) / 8) != 0)
            fail(type, "a smaller buffer makes a difference");
    } else if (result >= 0) {
        fail(type, "written into too small a buffer");
    }
    return 0;
}
