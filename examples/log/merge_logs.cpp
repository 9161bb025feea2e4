// merge_logs LOG...
//
// Lists the blocks of several logs in the order of their times, each with the log that it is from.

#include "tqx/log/DataError.h"
#include "tqx/log/merge/BlockMerge.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"

#include <cstdio>
#include <memory>
#include <vector>

int main(int argc, char** argv)
{
    try {
        std::vector<std::unique_ptr<tqx::ByteSource>> sources;
        std::vector<std::unique_ptr<tqx::BlockStream>> streams;
        std::vector<tqx::BlockStream*> inputs;
        for (int i = 1; i < argc; ++i) {
            sources.push_back(tqx::openSource(argv[i]));
            streams.push_back(std::make_unique<tqx::BlockStream>(*sources.back()));
            inputs.push_back(streams.back().get());
        }
        tqx::BlockMerge merge(inputs);
        for (tqx::Block block = {}; merge.next(block);) {
            const auto time = block.getTime();
            std::printf("%zu  %s  %u\n", merge.getInput(),
                        time ? tqx::dateText(*time).c_str() : "-", block.getNumber());
        }
        std::printf("%llu left out, as they came before\n",
                    static_cast<unsigned long long>(merge.getDuplicates()));
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
