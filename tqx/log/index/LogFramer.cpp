#include "tqx/log/index/LogFramer.h"

#include "tqx/log/index/StretchFramer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tqx
{

namespace
{

constexpr size_t pieceSize = 1 << 20;

/// The part of a log around the page that is framed next.
class Feed
{
public:
    /// Gets up to `count` bytes that follow the last ones; 0 at the end of the log.
    using Reader = std::function<size_t(uint8_t* bytes, size_t count)>;

    Feed(uint64_t from, Reader next) : m_start(from), m_reader(std::move(next)) {}

    /// Frames pages before `endPage`, reading at most `piece` bytes ahead.
    void frame(StretchFramer& framer, uint32_t endPage, size_t piece)
    {
        for (;;) {
            framer.frame({m_buffer.data(), m_start, m_start + m_filled, m_isAtEnd}, endPage);
            const FramedPages& pages = framer.getPages();
            if (m_isAtEnd || pages.getEndPage() >= endPage)
                return;
            dropBefore(pages.startOf(pages.getEndPage()));
            const size_t capacity = piece + 2 * FramedPages::defaultPageSize;
            if (m_buffer.size() < capacity)
                m_buffer.resize(capacity);
            const size_t got = m_reader(m_buffer.data() + m_filled, m_buffer.size() - m_filled);
            m_filled += got;
            m_isAtEnd = got == 0;
        }
    }

    uint64_t getEnd() const { return m_start + m_filled; }

private:
    void dropBefore(uint64_t offset)
    {
        const auto count = static_cast<size_t>(std::min<uint64_t>(offset - m_start, m_filled));
        if (count != 0)
            std::memmove(m_buffer.data(), m_buffer.data() + count, m_filled - count);
        m_start += count;
        m_filled -= count;
    }

    uint64_t m_start; ///< offset in the log of the first byte in the buffer
    Reader m_reader;
    std::vector<uint8_t> m_buffer;
    size_t m_filled = 0;
    bool m_isAtEnd = false;
};

/// Frames pages of a log, one stretch of them after the other.
class PageFeed
{
public:
    PageFeed(const RandomAccess& source, uint64_t from)
        : m_log(source), m_position(from),
          m_feed(from, [this](uint8_t* bytes, size_t count) { return read(bytes, count); })
    {
    }
    PageFeed(const PageFeed&) = delete;
    PageFeed& operator=(const PageFeed&) = delete;

    void frame(StretchFramer& framer, uint32_t endPage)
    {
        const FramedPages& pages = framer.getPages();
        if (const uint8_t* bytes = m_log.getBytes()) {
            framer.frame({bytes, 0, m_log.getSize(), true}, endPage);
            return;
        }
        const uint64_t needed = uint64_t{pages.pageSize} * (endPage - pages.getEndPage());
        m_feed.frame(framer, endPage, static_cast<size_t>(std::min<uint64_t>(needed, pieceSize)));
    }

private:
    size_t read(uint8_t* bytes, size_t count)
    {
        const size_t got = m_log.readAt(m_position, bytes, count);
        m_position += got;
        return got;
    }

    const RandomAccess& m_log;
    uint64_t m_position;
    Feed m_feed;
};

/// Runs `work` for 0 to `count` - 1 on several threads; throws what one of them threw.
void runParallel(unsigned threads, size_t count, const std::function<void(size_t)>& work)
{
    std::atomic<size_t> next = 0;
    std::exception_ptr failure;
    std::mutex mutex;
    const auto run = [&] {
        try {
            for (size_t i = next++; i < count; i = next++)
                work(i);
        } catch (...) {
            next = count;
            const std::lock_guard<std::mutex> lock(mutex);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> others;
    try {
        for (size_t i = 1; i < std::min<size_t>(threads, count); ++i)
            others.emplace_back(run);
    } catch (const std::system_error&) {
        // No more threads available: the existing ones do all the work.
    }
    run();
    for (std::thread& other : others)
        other.join();
    if (failure)
        std::rethrow_exception(failure);
}

/// Adds a stretch to the pages before it, from the first page that both enter at the same place.
void join(const RandomAccess& log, FramedPages& joined, const FramedPages& stretch)
{
    const uint32_t first = stretch.firstPage;
    if (stretch.entryOf(first) == joined.exit) {
        joined.append(stretch, first);
        return;
    }
    StretchFramer again(joined.pageSize, first, joined.exit);
    PageFeed feed(log, joined.startOf(first));
    uint32_t page = first;
    do {
        feed.frame(again, ++page);
    } while (page != stretch.getEndPage() && again.getPages().exit != stretch.entryOf(page));
    joined.append(again.getPages(), first);
    joined.append(stretch, page);
}

} // namespace

FramedPages frameLog(const RandomAccess& log, FramedPages begun, const FramingOptions& options)
{
    const uint64_t pageSize = begun.pageSize;
    const uint64_t first = begun.getEndPage();
    const uint64_t count = (log.getSize() + pageSize - 1) / pageSize - first;
    const uint64_t wanted = options.stretches != 0 ? options.stretches : options.threads;
    const auto stretches = static_cast<size_t>(std::min(std::max<uint64_t>(wanted, 1), count));
    const auto boundary = [&](size_t i) {
        return static_cast<uint32_t>(first + count * i / stretches);
    };

    std::vector<FramedPages> framed(stretches);
    runParallel(options.threads, stretches, [&](size_t i) {
        const uint32_t page = boundary(i);
        const uint64_t entry = i == 0 ? begun.exit : begun.startOf(page);
        StretchFramer framer(begun.pageSize, page, entry);
        PageFeed(log, begun.startOf(page)).frame(framer, boundary(i + 1));
        framed[i] = framer.takePages();
    });
    for (FramedPages& stretch : framed) {
        if (begun.rows.empty()) {
            begun = std::move(stretch);
        } else {
            join(log, begun, stretch);
        }
        stretch = FramedPages();
    }
    begun.linkRows();
    return begun;
}

FramedPages frameSource(ByteSource& source, FramedPages begun, uint64_t& size)
{
    StretchFramer framer(begun.pageSize, begun.getEndPage(), begun.exit);
    Feed feed(begun.startOf(begun.getEndPage()),
              [&](uint8_t* bytes, size_t count) { return source.read(bytes, count); });
    feed.frame(framer, 0xffffffff, pieceSize);
    size = feed.getEnd();
    begun.append(framer.getPages(), begun.getEndPage());
    begun.linkRows();
    return begun;
}

} // namespace tqx
