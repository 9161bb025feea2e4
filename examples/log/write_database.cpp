// write_database LOG DATABASE
//
// Writes the decoded blocks of a log into a new SQLite database, a table for each type.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/sqlite/SqliteWriter.h"
#include "tqx/log/stream/BlockStream.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    try {
        const tqx::FieldFilter everything;
        tqx::SqliteWriter database(argv[2], argv[2], everything);
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        int blocks = 0;
        for (tqx::Block block = {}; stream.next(block);) {
            if (decoder.decode(block) <= 0)
                continue;
            database.write(decoder.getDecoded(), stream.getName());
            ++blocks;
        }
        database.finish(stream.getCounts());
        std::printf("%d blocks\n", blocks);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
