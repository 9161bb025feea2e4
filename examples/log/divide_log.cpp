// divide_log LOG
//
// Indexes a log on two threads and reads it page by page, as several threads or processes could:
// each page knows where its first block begins and what decoding carries into it.

#include "tqx/log/DataError.h"
#include "tqx/log/index/BetweenBlocks.h"
#include "tqx/log/index/Index.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/source/FileAccess.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const tqx::FileAccess log(argv[1]);
        tqx::FramingOptions options;
        options.threads = 2;
        constexpr uint32_t pageSize = 4096; // small, so that a short log has several
        const tqx::Index index = tqx::Index::build(log, options, pageSize);
        for (const tqx::Index::Type& type : index.getTypes()) {
            std::printf("%6llu  %s\n", static_cast<unsigned long long>(type.blocks),
                        tqx::describeBlock(type.number).c_str());
        }
        for (uint32_t page = 0; page < index.getPageCount(); ++page) {
            tqx::BlockQuery query;
            query.firstPage = page;
            query.endPage = page + 1;
            tqx::IndexedBlocks blocks(index, log, query);
            unsigned count = 0;
            for (tqx::Block block = {}; blocks.next(block);)
                ++count;
            std::printf("page %u begins at %llu in week %u: %u blocks\n", page,
                        static_cast<unsigned long long>(index.getPageEntry(page)),
                        index.getPageContext(page).weekCounter, count);
        }
        const tqx::StreamCounts counts = tqx::reportBetweenBlocks(index, log, nullptr);
        std::printf("%llu bytes belong to no block\n",
                    static_cast<unsigned long long>(counts.droppedBytes));

        // The same by hand, for tools that show where the offsets of a type are.
        for (const tqx::FramedPages::Type& type : index.getPages().types) {
            const uint32_t page = type.offsets.getFirstPage();
            tqx::PageOffsets::Cursor cursor(type.offsets);
            const uint64_t first = index.getPages().startOf(page) + *cursor.at(page).begin();
            std::printf("%5u first at %llu\n", type.number, static_cast<unsigned long long>(first));
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
