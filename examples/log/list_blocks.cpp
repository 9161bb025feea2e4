// list_blocks LOG
//
// Lists the blocks of a log, plain or compressed, and reports what is between them.

#include "tqx/log/DataError.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"

#include <cstdio>
#include <memory>

namespace
{

class Reports : public tqx::StreamListener
{
public:
    void onGap(const tqx::StreamGap& gap) override
    {
        std::printf("%8llu  %s\n", static_cast<unsigned long long>(gap.offset),
                    gap.describe().c_str());
    }
    void onUndecodable(const std::string&, const tqx::Block&, int32_t) override {}
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        Reports reports;
        tqx::BlockStream stream(*source, &reports);
        for (tqx::Block block = {}; stream.next(block);) {
            const auto time = block.getTime();
            std::printf("%8llu  %s  %s\n", static_cast<unsigned long long>(block.offset),
                        time ? tqx::dateText(*time).c_str() : "-",
                        tqx::describeBlock(block.getNumber()).c_str());
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
