#include "tqx/log/index/Crc32.h"
#include "tqx/log/index/SavedIndex.h"
#include "tqx/log/index/SavedIndexFormat.h"

#include <stdexcept>
#include <utility>

namespace tqx
{

namespace
{

/// Why bytes are not a saved index.
class BadIndex : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void require(bool condition, const char* otherwise)
{
    if (!condition)
        throw BadIndex(otherwise);
}

class Reader
{
public:
    Reader(const uint8_t* start, size_t size) : m_at(start), m_end(start + size) {}

    size_t getLeft() const { return static_cast<size_t>(m_end - m_at); }

    template<typename T>
    T number()
    {
        require(getLeft() >= sizeof(T), "it ends too early");
        uint64_t value = 0;
        for (size_t i = 0; i < sizeof(T); ++i)
            value |= uint64_t{*m_at++} << (8 * i);
        return static_cast<T>(value);
    }

    uint64_t variable()
    {
        uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const uint8_t byte = number<uint8_t>();
            value |= uint64_t{byte & 0x7fU} << shift;
            if (byte < 0x80)
                return value;
        }
        throw BadIndex("a number is too large");
    }

    /// A count of things that take at least `least` bytes each.
    size_t count(size_t least)
    {
        const uint64_t value = variable();
        require(value <= getLeft() / least, "it ends too early");
        return static_cast<size_t>(value);
    }

    /// A byte count and the bytes.
    template<typename Bytes>
    Bytes sized()
    {
        const size_t size = count(1);
        m_at += size;
        return Bytes(m_at - size, m_at);
    }

private:
    const uint8_t* m_at;
    const uint8_t* m_end;
};

/// Reads the offsets of a content of `size` bytes.
PageOffsets readOffsets(Reader& reader, const FramedPages& pages, uint64_t size)
{
    PageOffsets all;
    uint64_t page = 0;
    const size_t pageCount = reader.count(4);
    for (size_t i = 0; i < pageCount; ++i) {
        const uint64_t step = reader.variable();
        require(step < pages.rows.size() && (i == 0 || step != 0), "pages do not ascend");
        page += step;
        require(page < pages.rows.size(), "a page is outside the log");
        const size_t count = reader.count(2);
        require(count != 0 && count <= 0xffff, "a page has a wrong number of offsets");
        const uint64_t start = pages.startOf(static_cast<uint32_t>(page));
        uint32_t least = 0;
        for (size_t j = 0; j < count; ++j) {
            const auto offset = reader.number<uint16_t>();
            require(offset >= least, "offsets do not ascend");
            require(start + offset < size, "an offset is outside the log");
            all.add(static_cast<uint32_t>(page), offset);
            least = offset + 1U;
        }
    }
    return all;
}

std::vector<AccessPoint> readPoints(Reader& reader, Compression compression, uint64_t packedSize,
                                    uint64_t contentSize)
{
    std::vector<AccessPoint> points;
    uint64_t packed = 0;
    uint64_t content = 0;
    for (size_t left = reader.count(4); left != 0; --left) {
        AccessPoint point;
        const uint64_t packedStep = reader.variable();
        const uint64_t contentStep = reader.variable();
        require(packedStep != 0 && packedStep <= packedSize - packed && contentStep != 0 &&
                    contentStep <= contentSize - content,
                "an access point is outside the log");
        packed += packedStep;
        content += contentStep;
        point.packed = packed;
        point.content = content;
        point.bits = reader.number<uint8_t>();
        require(compression != Compression::None && point.bits < 8, "an access point is invalid");
        point.window = reader.sized<std::vector<uint8_t>>();
        points.push_back(std::move(point));
    }
    return points;
}

void readRows(Reader& reader, FramedPages& pages, uint64_t size)
{
    constexpr size_t leastRow = 2 + 2 * 4 + 3 * 8;
    const size_t count = reader.count(leastRow);
    require(count == (size + pages.pageSize - 1) / pages.pageSize, "pages are missing");
    pages.rows.reserve(count);
    for (size_t page = 0; page < count; ++page) {
        PageRow row;
        const uint64_t entry = reader.variable();
        const uint64_t firstTowAt = reader.variable();
        require(entry < pages.pageSize && firstTowAt < pages.pageSize &&
                    pages.startOf(static_cast<uint32_t>(page)) + entry <= size,
                "a page is entered outside of it");
        row.entry = static_cast<uint32_t>(entry);
        row.firstTowAt = static_cast<uint16_t>(firstTowAt);
        row.firstTow = reader.number<uint32_t>();
        row.lastTow = reader.number<uint32_t>();
        row.minTime = reader.number<uint64_t>();
        row.maxTime = reader.number<uint64_t>();
        row.lastTime = reader.number<uint64_t>();
        pages.rows.push_back(row);
    }
    pages.exit = size;
}

void readTypes(Reader& reader, FramedPages& pages, uint64_t size)
{
    uint32_t least = 0;
    for (size_t left = reader.count(7); left != 0; --left) {
        const auto number = reader.number<uint16_t>();
        require(number >= least && number < SavedIndexFormat::numbers,
                "block numbers do not ascend");
        least = number + 1U;
        PageOffsets offsets = readOffsets(reader, pages, size);
        require(!offsets.isEmpty(), "a type has no blocks");
        PageOffsets::Cursor cursor(offsets);
        for (uint32_t page = cursor.nextPage(0); page != PageOffsets::Cursor::none;
             page = cursor.nextPage(page + 1)) {
            uint16_t& blocks = pages.rows[page].blocks;
            const size_t more = cursor.at(page).size();
            require(blocks + more <= pages.pageSize / 8, "a page has too many blocks");
            blocks = static_cast<uint16_t>(blocks + more);
        }
        pages.types.push_back({number, std::move(offsets)});
    }
}

/// Each gap has a first and a last byte.
void checkGaps(const FramedPages& pages)
{
    const PageOffsets& firsts = pages.marks[FramedPages::GapStart];
    const PageOffsets& lasts = pages.marks[FramedPages::GapLast];
    require(firsts.size() == lasts.size(), "a gap has no end");
    PageOffsets::Cursor first(firsts);
    PageOffsets::Cursor last(lasts);
    for (uint32_t page = first.nextPage(0); page != PageOffsets::Cursor::none;
         page = first.nextPage(page + 1)) {
        // A gap continues in the next page as another one.
        const PageOffsets::Page starts = first.at(page);
        const PageOffsets::Page ends = last.at(page);
        require(starts.size() == ends.size(), "a gap has no end");
        for (size_t i = 0; i < starts.size(); ++i) {
            require(starts.begin()[i] <= ends.begin()[i] &&
                        (i == 0 || ends.begin()[i - 1] < starts.begin()[i]),
                    "a gap ends before it begins");
        }
    }
}

SavedIndex read(const uint8_t* bytes, size_t size)
{
    constexpr size_t checksumSize = 4;
    require(size > checksumSize, "it ends too early");
    Reader reader(bytes, size - checksumSize);
    require(reader.number<uint32_t>() == SavedIndexFormat::signature, "it is no index");
    require(reader.number<uint32_t>() == SavedIndexFormat::version, "it is of another version");
    Reader checksum(bytes + size - checksumSize, checksumSize);
    require(checksum.number<uint32_t>() == crc32(bytes, size - checksumSize),
            "its checksum is wrong");
    require(reader.number<uint32_t>() == SavedIndexFormat::knownNumbers(),
            "it was made with other known blocks");

    LogIdentity identity;
    identity.size = reader.number<uint64_t>();
    identity.first = reader.number<uint32_t>();
    identity.last = reader.number<uint32_t>();
    const auto contentSize = reader.number<uint64_t>();
    const auto compression = reader.number<uint8_t>();
    require(compression <= static_cast<uint8_t>(Compression::Zstd), "the compression is unknown");
    require(compression != 0 || contentSize == identity.size, "the log has two sizes");
    require(contentSize / FramedPages::defaultPageSize < 0xffffffff, "the log is too long");
    auto damage = reader.sized<std::string>();
    std::vector<AccessPoint> points =
        readPoints(reader, static_cast<Compression>(compression), identity.size, contentSize);

    FramedPages pages;
    readRows(reader, pages, contentSize);
    readTypes(reader, pages, contentSize);
    for (PageOffsets& mark : pages.marks)
        mark = readOffsets(reader, pages, contentSize);
    checkGaps(pages);
    require(reader.getLeft() == 0, "bytes follow its end");
    pages.linkRows();
    return {identity, static_cast<Compression>(compression), std::move(damage), std::move(points),
            Index(std::move(pages), contentSize)};
}

} // namespace

std::optional<SavedIndex> unpackIndex(const uint8_t* bytes, size_t size, std::string& reason)
{
    try {
        return read(bytes, size);
    } catch (const BadIndex& bad) {
        reason = bad.what();
        return std::nullopt;
    }
}

} // namespace tqx
