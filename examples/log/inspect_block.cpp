// inspect_block LOG OFFSET
//
// Prints which bytes of a block hold which field, and its value.

#include "tqx/log/DataError.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/source/OpenSource.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    try {
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        const tqx::BlockLocation location =
            tqx::locateBlock(*source, std::strtoull(argv[2], nullptr, 10));
        const tqx::Inspection inspection = tqx::inspect(location);
        for (const tqx::InspectionRow& row : inspection.rows) {
            std::printf("%4u +%-3u %s = %s\n", row.offset, row.size, row.path.c_str(),
                        row.isAvailable ? row.raw.c_str() : "not available");
        }
        for (const std::string& fault : inspection.faults)
            std::printf("%s\n", fault.c_str());
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
