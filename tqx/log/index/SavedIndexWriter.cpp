#include "tqx/log/index/Crc32.h"
#include "tqx/log/index/SavedIndex.h"
#include "tqx/log/index/SavedIndexFormat.h"

#include "TQX_codec.h"

#include <algorithm>

namespace tqx
{

namespace
{

class Writer
{
public:
    template<typename T>
    void number(T value)
    {
        for (size_t i = 0; i < sizeof(T); ++i)
            bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }

    void variable(uint64_t value)
    {
        for (; value >= 0x80; value >>= 7)
            bytes.push_back(static_cast<uint8_t>(value | 0x80));
        bytes.push_back(static_cast<uint8_t>(value));
    }

    void offsets(const PageOffsets& all)
    {
        variable(all.getPageCount());
        PageOffsets::Cursor cursor(all);
        uint32_t before = 0;
        for (uint32_t page = cursor.nextPage(0); page != PageOffsets::Cursor::none;
             page = cursor.nextPage(page + 1)) {
            variable(page - before);
            before = page;
            const PageOffsets::Page ofPage = cursor.at(page);
            variable(ofPage.size());
            for (const uint16_t offset : ofPage)
                number(offset);
        }
    }

    void row(const PageRow& page)
    {
        variable(page.entry);
        variable(page.firstTowAt);
        number(page.firstTow);
        number(page.lastTow);
        number(page.minTime);
        number(page.maxTime);
        number(page.lastTime);
    }

    template<typename Bytes>
    void sized(const Bytes& content)
    {
        variable(content.size());
        bytes.insert(bytes.end(), content.begin(), content.end());
    }

    std::vector<uint8_t> bytes;
};

} // namespace

uint32_t SavedIndexFormat::knownNumbers()
{
    static const uint32_t checksum = [] {
        std::vector<uint8_t> known;
        for (uint16_t number = 0; number < numbers; ++number)
            known.push_back(TQX_recordType(number) != 0 ? 1 : 0);
        return crc32(known.data(), known.size());
    }();
    return checksum;
}

std::vector<uint8_t> packIndex(const SavedIndex& saved)
{
    const FramedPages& pages = saved.index.getPages();
    Writer writer;
    writer.number(SavedIndexFormat::signature);
    writer.number(SavedIndexFormat::version);
    writer.number(SavedIndexFormat::knownNumbers());
    writer.number(saved.identity.size);
    writer.number(saved.identity.first);
    writer.number(saved.identity.last);
    writer.number(saved.index.getLogSize());
    writer.number(static_cast<uint8_t>(saved.compression));

    writer.sized(saved.damage);
    writer.variable(saved.points.size());
    AccessPoint before;
    for (const AccessPoint& point : saved.points) {
        writer.variable(point.packed - before.packed);
        writer.variable(point.content - before.content);
        before.packed = point.packed;
        before.content = point.content;
        writer.number(point.bits);
        writer.sized(point.window);
    }

    writer.variable(pages.rows.size());
    for (const PageRow& row : pages.rows)
        writer.row(row);

    std::vector<const FramedPages::Type*> types;
    for (const FramedPages::Type& type : pages.types)
        types.push_back(&type);
    std::sort(types.begin(), types.end(),
              [](const auto* left, const auto* right) { return left->number < right->number; });
    writer.variable(types.size());
    for (const FramedPages::Type* type : types) {
        writer.number(type->number);
        writer.offsets(type->offsets);
    }
    for (const PageOffsets& mark : pages.marks)
        writer.offsets(mark);
    writer.number(crc32(writer.bytes.data(), writer.bytes.size()));
    return std::move(writer.bytes);
}

} // namespace tqx
