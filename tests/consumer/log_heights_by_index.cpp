#include <TQX_OwnedRecord.h>
#include <tqx/log/DataError.h>
#include <tqx/log/index/IndexedLog.h>

#include <cstdio>

using namespace Kor::MessageApi;

int main(int, char** argv)
try {
    const tqx::IndexedLog log(argv[1]);             // plain, .gz or .zst
    tqx::IndexedBlocks blocks = log.find({{4007}}); // the number of PVTGeodetic2
    TQX_Context_s context;
    TQX_init_context(&context);
    TQX_OwnedRecord record;
    for (tqx::Block block; blocks.next(block);) {
        blocks.getContext().applyTo(context);
        if (record.decode(&context, block.data, block.size) <= 0)
            continue;
        if (const auto* position = record.as<TQX_PVTGeodetic2_s>())
            std::printf("%.3f\n", position->Height);
    }
} catch (const tqx::DataError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
