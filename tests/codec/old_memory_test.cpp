// Nothing that was in memory before can be found in it after init, decoding, appending and
// encoding: each of them is done twice, over memory of different content, and whatever can be
// reached afterwards must be the same. A third time the memory was never written, which is what a
// memory checker looks for.

#include "Ancestors.h"
#include "ExactDecoder.h"
#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordCompare.h"
#include "RecordFiller.h"
#include "RecordMembers.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

namespace
{

using namespace Kor::MessageApi;

constexpr size_t areaSize = sizeof(TQX_AnyRecord_u);
constexpr uint16_t largestBlock = 65535;

/// What memory holds before it is used: a byte, or nothing that was ever written.
constexpr int unwritten = -1;
constexpr int contents[] = {0xa5, 0x5a, unwritten};

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<void, Free>;

Memory memoryOf(size_t size, int content)
{
    Memory memory(std::malloc(size));
    if (content != unwritten)
        std::memset(memory.get(), content, size);
    return memory;
}

// Makes the heap return memory with the given content. The C library fills what it has not kept
// apart for a quick reuse; of that there are up to seven pieces of each size below 1 KiB.
void fillHeap(int content)
{
    mallopt(M_PERTURB, content == unwritten ? 0 : content);
    if (content == unwritten)
        return;
    std::vector<Memory> pieces;
    for (size_t size = sizeof(void*); size < 1100; size += 8) {
        for (int i = 0; i < 4; ++i)
            pieces.push_back(memoryOf(size, content));
    }
}

/// One use of a record's memory, and its result.
class Use
{
public:
    Use(const TQX_TypeLayout& layout, unsigned number, int content)
        : type(layout), round(number), random(number * 1000 + layout.recordType),
          ancestors(layout, revision(), 0), m_content(content), m_area(memoryOf(areaSize, content))
    {
        if (layout.release != nullptr)
            fillHeap(content);
    }
    ~Use()
    {
        TQX_release(m_area.get());
        mallopt(M_PERTURB, 0);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    void* record() { return m_area.get(); }

    /// Memory into which is decoded is known to hold no record.
    void* emptyRecord()
    {
        std::memset(record(), 0, sizeof(TQX_MainHeader_s));
        return record();
    }

    /// A block to decode: of any revision, content and size, every other one damaged.
    std::vector<uint8_t> block()
    {
        std::vector<uint8_t> bytes;
        const BlockOptions options = anyOptions();
        if (type.linksToMain == 0) {
            bytes = randomBlock(type, options, random);
        } else {
            bytes = randomEntry(type, options, random);
        }
        // Of a main block enough to know it by.
        const size_t least = type.linksToMain == 0 ? 7 : 0;
        if (round % 2 == 1)
            bytes.resize(least + static_cast<size_t>(random() % (bytes.size() - least)));
        return bytes;
    }

    unsigned revision() const { return round / 2 % (type.highestRevision + 2U); }

    /// Writes the record with an encoder and keeps the bytes.
    template<typename Encoder>
    void write(Encoder encode)
    {
        const Memory buffer = memoryOf(largestBlock, m_content);
        auto* bytes = static_cast<unsigned char*>(buffer.get());
        result = encode(bytes, largestBlock, record());
        if (result > 0)
            written.assign(bytes, bytes + result / 8);
    }

    const TQX_TypeLayout& type;
    const unsigned round;
    std::mt19937_64 random;
    Ancestors ancestors; ///< the records above the record of a sub-block
    int32_t result = 0;
    std::vector<uint8_t> written;

private:
    BlockOptions anyOptions()
    {
        const bool hasArrays = type.release != nullptr;
        BlockOptions options;
        options.revision = revision();
        options.largestCount = hasArrays ? 12 : random() % 2 == 0 ? 5000 : 100;
        options.extraBytes = static_cast<unsigned>(random() % 3);
        options.overrun = random() % 8 == 0;
        return options;
    }

    int m_content;
    Memory m_area;
};

void init(Use& use)
{
    use.type.init(use.record());
}

void decode(Use& use)
{
    const std::vector<uint8_t> bytes = use.block();
    use.result =
        TQX_decode(nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()), use.emptyRecord());
}

void decodeExact(Use& use)
{
    const std::vector<uint8_t> bytes = use.block();
    uint32_t offset = 0;
    use.result = decodeExactly(use.type, nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()),
                               &offset, nullptr, 0, use.emptyRecord());
}

void decodeEntry(Use& use)
{
    const std::vector<uint8_t> bytes = use.block();
    uint32_t offset = 0;
    use.result = decodeAlone(use.type, nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()),
                             &offset, use.ancestors.father(), 0, use.emptyRecord());
}

void append(Use& use)
{
    init(use);
    appendToAll(use.type, use.record(), 3);
}

void appendDecoded(Use& use)
{
    decode(use);
    if (use.result > 0)
        appendToAll(use.type, use.record(), 3);
}

// As many elements as there is room for, of which none was ever set.
void encodeFull(Use& use)
{
    init(use);
    for (int row = 0; row < use.type.fieldCount; ++row) {
        const TQX_FieldLayout& field = use.type.fields[row];
        if (field.count < 0 || holdsEntries(field) || field.kind == TQX_FieldKind::Bits)
            continue;
        const TQX_FieldLayout& count = use.type.fields[field.count];
        const uint32_t full = field.elements * (field.countsBytes ? TQX_elementSize(field) : 1U);
        writeUnsigned(count, use.record(), 0,
                      std::min(full, TQX_elementSize(count) == 1 ? 255U : full));
    }
    use.write(use.type.encode);
}

void encodeDecoded(Use& use)
{
    decode(use);
    if (use.result > 0)
        use.write(use.type.encode);
}

void reencode(Use& use)
{
    decode(use);
    if (use.result > 0)
        use.write(TQX_reencode);
}

// Content that the block did not hold is as long as the block says, and made of zeros.
void encodeOther(Use& use)
{
    decode(use);
    std::vector<const TQX_FieldLayout*> choices;
    for (int row = 0; row < use.type.fieldCount; ++row) {
        if (use.type.fields[row].presence == TQX_Presence::Selected &&
            use.type.fields[row].count >= 0)
            choices.push_back(&use.type.fields[row]);
    }
    if (use.result <= 0 || choices.empty())
        return;
    const TQX_FieldLayout& choice = *choices[use.round / 2 % choices.size()];
    writeUnsigned(use.type.fields[choice.selector], use.record(), 0, choice.presenceValue);
    use.write(TQX_reencode);
}

bool isMain(const TQX_TypeLayout& type)
{
    return type.linksToMain == 0;
}

bool isAny(const TQX_TypeLayout&)
{
    return true;
}

struct EntryPoint {
    const char* name;
    void (*run)(Use&);
    bool (*takes)(const TQX_TypeLayout&);
    bool decodes;
    Compared compared;
};

constexpr EntryPoint entryPoints[] = {
    {"init", init, isAny, false, Compared::Whole},
    {"append", append, isAny, false, Compared::Whole},
    {"encode all that there is room for", encodeFull, isMain, false, Compared::Whole},
    {"decode", decode, isMain, true, Compared::Reachable},
    {"decode exactly", decodeExact, isMain, true, Compared::Reachable},
    {"decode alone", decodeEntry, isAny, true, Compared::Reachable},
    {"append to a decoded record", appendDecoded, isMain, true, Compared::Reachable},
    {"encode a decoded record", encodeDecoded, isMain, true, Compared::Reachable},
    {"reencode", reencode, isMain, true, Compared::Reachable},
    {"select other content", encodeOther, isMain, true, Compared::Reachable},
};

// All revisions whole and cut, and each selected content several times.
unsigned roundsOf(const TQX_TypeLayout& type)
{
    const auto selected = static_cast<unsigned>(
        std::count_if(type.fields, type.fields + type.fieldCount, [](const TQX_FieldLayout& field) {
            return field.presence == TQX_Presence::Selected;
        }));
    return 4U * (type.highestRevision + 2U) + 16U * selected;
}

void noteContent(const TQX_TypeLayout& type, Use& use, std::set<const TQX_FieldLayout*>& missing)
{
    for (int row = 0; row < type.fieldCount && use.result > 0; ++row) {
        if (TQX_isPresent(type, type.fields[row], use.record()))
            missing.erase(&type.fields[row]);
    }
}

class OldMemory : public testing::TestWithParam<const TQX_TypeLayout*>
{
};

TEST_P(OldMemory, IsNotReachable)
{
    const TQX_TypeLayout& type = *GetParam();
    std::set<const TQX_FieldLayout*> missing;
    for (int row = 0; row < type.fieldCount; ++row) {
        if (type.fields[row].presence == TQX_Presence::Selected)
            missing.insert(&type.fields[row]);
    }
    for (const EntryPoint& entryPoint : entryPoints) {
        if (!entryPoint.takes(type))
            continue;
        for (unsigned round = 0; round < (entryPoint.decodes ? roundsOf(type) : 1); ++round) {
            SCOPED_TRACE(std::string(entryPoint.name) + ", round " + std::to_string(round));
            Use first(type, round, contents[0]);
            entryPoint.run(first);
            noteContent(type, first, missing);
            for (const int content : {contents[1], contents[2]}) {
                Use other(type, round, content);
                entryPoint.run(other);
                ASSERT_EQ(other.result, first.result);
                ASSERT_EQ(
                    firstDifference(type, first.record(), other.record(), entryPoint.compared), "");
                ASSERT_EQ(other.written, first.written);
            }
        }
    }
    EXPECT_TRUE(missing.empty()) << (*missing.begin())->name << " was never selected";
}

INSTANTIATE_TEST_SUITE_P(AllTypes, OldMemory, testing::ValuesIn(allTypes()),
                         [](const auto& row) { return std::string(row.param->name); });

} // namespace
