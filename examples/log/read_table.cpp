// read_table LOG
//
// Adds up a column of all positions of a log, found by its index, and read as any Arrow reader
// would.

#include "tqx/log/DataError.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/ArrowProducer.h"
#include "tqx/log/table/IndexInput.h"
#include "tqx/log/table/TableStream.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const tqx::IndexedLog log(argv[1]);
        tqx::TableOptions options;
        options.fields = tqx::FieldFilter({"Height"});
        options.hasOffset = false;
        const auto schema =
            std::make_shared<tqx::TableSchema>(*tqx::findType("PVTGeodetic2"), options);
        tqx::TableStream table(schema, std::make_unique<tqx::IndexInput>(
                                           log.getIndex(), log.getContent(), schema->getType()));
        // exportStream(std::move(table), reader) does the same; a producer can change batches on
        // the way.
        ArrowArrayStream reader = {};
        tqx::exportStream(tqx::ArrowProducer{[&schema](ArrowSchema& out) { schema->exportTo(out); },
                                             [&table](ArrowArray& out) { return table.next(out); }},
                          reader);
        // A struct array: its last child is the field, after the time.
        double sum = 0;
        long long rows = 0;
        int result = 0;
        for (ArrowArray batch = {};; batch.release(&batch)) {
            result = reader.get_next(&reader, &batch);
            if (result != 0 || batch.release == nullptr)
                break;
            const ArrowArray& heights = *batch.children[batch.n_children - 1];
            const auto* values = static_cast<const double*>(heights.buffers[1]);
            for (int64_t i = 0; i < heights.length; ++i)
                sum += values[i];
            rows += batch.length;
        }
        if (result != 0)
            std::fprintf(stderr, "%s\n", reader.get_last_error(&reader));
        reader.release(&reader);
        std::printf("%lld rows, %.3f in all\n", rows, sum);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
