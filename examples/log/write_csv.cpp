// write_csv LOG [FILE]
//
// Prints the positions of a log as a table, with the units of the columns, or writes them to a
// file, which appears once it is complete.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/write/CsvTable.h"
#include "tqx/log/write/ProductFile.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2 && argc != 3)
        return 1;
    try {
        const auto& type = *tqx::findType("PVTGeodetic2");
        const tqx::FieldFilter shown({"Height", "Vu", "NrSV"});
        tqx::CsvStyle style;
        style.values.hasSymbols = true; // "m/s", not "meterpersecond"
        tqx::CsvTable table(type, shown, style);

        std::optional<tqx::ProductFile> file;
        if (argc == 3)
            file.emplace(argv[2]);
        const auto write = [&file](const std::string& line) {
            if (file) {
                file->getBuffer().append(line + '\n');
                file->commit();
            } else {
                std::printf("%s\n", line.c_str());
            }
        };

        std::string header = "Offset";
        for (const std::string& column : table.getColumns())
            header += "," + column;
        write(header);

        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        for (tqx::Block block = {}; stream.next(block);) {
            if (block.getNumber() != type.blockNumber ||
                decoder.decode(block, stream.getContext()) <= 0)
                continue;
            tqx::Buffer cells;
            table.appendCells(cells, decoder.getDecoded().record);
            write(std::to_string(block.offset) + std::string(cells.view()));
        }
        if (file)
            file->finish();
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
