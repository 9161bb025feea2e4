// indexed_heights LOG
//
// Prints the heights in a log, plain or compressed, by its index: nothing else of the log is
// decoded. Needs no Qt.

#include "TQX_OwnedRecord.h"
#include "TQX_codec.h"
#include "tqx/log/DataError.h"
#include "tqx/log/index/IndexedLog.h"

#include <cstdio>

using namespace Kor::MessageApi;

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: indexed_heights LOG\n");
        return 1;
    }
    try {
        constexpr uint16_t position = 4007;
        const tqx::IndexedLog log(argv[1]);
        tqx::IndexedBlocks blocks = log.find({{position}});
        TQX_Context_s context;
        TQX_init_context(&context);
        TQX_OwnedRecord record;
        for (tqx::Block block = {}; blocks.next(block);) {
            blocks.getContext().applyTo(context);
            if (record.decode(&context, block.data, block.size) <= 0)
                continue;
            if (const auto* fix = record.as<TQX_PVTGeodetic2_s>())
                std::printf("%10u %9.3f\n", fix->TOWc, fix->Height);
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
