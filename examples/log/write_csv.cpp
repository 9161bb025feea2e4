// write_csv LOG
//
// Prints the positions of a log as a table, with the units of the columns.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/write/CsvTable.h"

#include <cstdio>
#include <memory>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const auto& type = *tqx::findType("PVTGeodetic2");
        const tqx::FieldFilter shown({"Height", "Vu", "NrSV"});
        tqx::CsvStyle style;
        style.values.hasSymbols = true; // "m/s", not "meterpersecond"
        tqx::CsvTable table(type, shown, style);

        std::string header = "Offset";
        for (const std::string& column : table.getColumns())
            header += "," + column;
        std::printf("%s\n", header.c_str());

        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        for (tqx::Block block = {}; stream.next(block);) {
            if (block.getNumber() != type.blockNumber ||
                decoder.decode(block, stream.getContext()) <= 0)
                continue;
            tqx::Buffer cells;
            table.appendCells(cells, decoder.getDecoded().record);
            std::printf("%llu%s\n", static_cast<unsigned long long>(block.offset),
                        std::string(cells.view()).c_str());
        }
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
