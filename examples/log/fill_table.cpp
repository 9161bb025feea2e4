// fill_table LOG TYPE
//
// Makes columns from the blocks of a type in a stream, and prints how many values each has.

#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/table/TableBuilder.h"
#include "tqx/log/table/TableInput.h"
#include "tqx/log/table/TableSchema.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    try {
        const auto* type = tqx::findType(argv[2]);
        if (!type)
            throw tqx::DataError(tqx::unknownType(argv[2]));
        tqx::TableOptions options;
        options.isNamed = false; // numbers, not dictionaries
        const auto schema = std::make_shared<tqx::TableSchema>(*type, options);
        tqx::TableBuilder builder(schema);

        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::StreamInput input(stream, *type);
        tqx::TableBlock block = {};
        while (!builder.isFull() && input.read(&block, 1) != 0)
            builder.append(&block, 1);

        ArrowArray batch;
        builder.finish(batch);
        const std::vector<std::string> names = schema->getNames();
        for (size_t i = 0; i < names.size(); ++i) {
            const ArrowArray& column = *batch.children[i];
            std::printf("%-20s %lld of %lld\n", names[i].c_str(),
                        static_cast<long long>(column.length - column.null_count),
                        static_cast<long long>(column.length));
        }
        batch.release(&batch);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
