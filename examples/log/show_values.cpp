// show_values LOG TYPE
//
// Prints the numbers and texts of the first block of a type: the stored value, and what it means.

#include "tqx/log/DataError.h"
#include "tqx/log/record/MemberReader.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/time/CalendarDate.h"
#include "tqx/log/time/LeapSeconds.h"
#include "tqx/log/value/FieldText.h"
#include "tqx/log/value/ShownDecimals.h"
#include "tqx/log/value/ShownValue.h"

#include <cstdio>
#include <memory>
#include <string>

using namespace Kor::MessageApi;

namespace
{

/// As a custom output format would write values: names as they are, "?" for what is not available.
std::string asItIs(std::string_view name)
{
    return std::string(name);
}
void appendCharacters(tqx::Buffer& out, const char* text, size_t length)
{
    out.append(text, length);
}

void showTime(tqx::GnssMillis time)
{
    constexpr uint64_t millisPerDay = 86400000;
    const tqx::CalendarDate date = tqx::dateOf(time / millisPerDay);
    std::printf("day %u of month %u, %s\n", date.day, date.month, tqx::utcText(time).c_str());
}

void showNumber(const tqx::RecordPlan::Part& part, bool isPacked, uint64_t word)
{
    const tqx::MemberBits bits(*part.field, isPacked);
    tqx::Buffer text;
    tqx::FieldText(*part.field, *part.facts, isPacked, tqx::ValueStyle()).append(text, word);
    tqx::Buffer plain;
    tqx::ShownValue(*part.field, *part.facts, isPacked, {"?", asItIs, appendCharacters})
        .append(plain, word);
    const std::string shown(text.view());
    const std::string exact(plain.view());
    if (bits.isReal()) {
        std::printf("%-16s %g", part.field->name, bits.real(word));
    } else {
        std::printf("%-16s %lld", part.field->name, static_cast<long long>(bits.integer(word)));
    }
    std::printf(" -> %s, exactly %s", shown.c_str(), exact.c_str());
    const double factor = tqx::shownScale(*part.facts, tqx::ValueStyle());
    if (factor != 0)
        std::printf(", times %g to %d decimals", factor, tqx::shownDecimals(*part.facts));
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    try {
        const TQX_TypeLayout* type = tqx::findType(argv[2]);
        if (!type)
            throw tqx::DataError(tqx::unknownType(argv[2]));
        const tqx::FieldFilter everything;
        const tqx::RecordPlan plan =
            tqx::planRecord(*type, everything, tqx::ShownFields::WithoutHeader);
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        for (tqx::Block block = {}; stream.next(block);) {
            if (block.getNumber() != type->blockNumber ||
                decoder.decode(block, stream.getContext()) <= 0)
                continue;
            const void* record = decoder.getRecord();
            if (const auto time = block.getTime())
                showTime(*time);
            for (const tqx::RecordPlan::Member& member : plan.members) {
                const tqx::MemberReader reader(plan, member);
                if (!reader.isPresent(record))
                    continue;
                if (member.kind == tqx::RecordPlan::Kind::Text) {
                    std::printf("%-16s \"%s\"\n", member.field->name,
                                std::string(reader.getText(record)).c_str());
                }
                if (!reader.isNumber() || !reader.isAvailable(record))
                    continue;
                for (const tqx::RecordPlan::Part& part : member.parts)
                    showNumber(part, part.field != member.field, reader.getWord(record));
            }
            return 0;
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
