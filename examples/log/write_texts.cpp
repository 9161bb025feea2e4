// write_texts LOG
//
// Prints positions and measurements of a log three times: as paragraphs for people, as lines that
// can be encoded again, and the strong signals as a table.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/RowCondition.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/write/FlatCsv.h"
#include "tqx/log/write/Paragraph.h"
#include "tqx/log/write/RawJson.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        const tqx::FieldFilter shown({"Height", "Type1.SVID", "Type1.CN0_dBHz"});
        tqx::Paragraph paragraph(shown);
        tqx::Buffer paragraphs;
        const tqx::FieldFilter everything;
        tqx::RawJson json(everything);
        tqx::Buffer lines;
        const tqx::TypeSelection types({"PVTGeodetic2", "MeasEpoch2"}, {});
        const tqx::TypeSelection signals({"MeasEpoch2"}, {});
        const tqx::RowCondition strong("CN0_dBHz >= 40", signals);
        tqx::CsvStyle style;
        style.rows = &strong;
        const auto& type = *tqx::findType("MeasEpoch2");
        tqx::FlatCsv table(type, shown, style);
        tqx::Buffer rows;
        table.writeHeader(rows);

        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        unsigned epochs = 0;
        for (tqx::Block block = {}; stream.next(block);) {
            if (!types.accepts(block.getNumber()))
                continue;
            if (decoder.decode(block, stream.getContext()) <= 0) {
                json.writeBytes(lines, block);
                continue;
            }
            paragraph.write(paragraphs, block, decoder.getRecord());
            json.write(lines, decoder.getDecoded());
            if (block.getNumber() == type.blockNumber)
                table.write(rows, decoder.getRecord(), epochs++);
        }
        for (const tqx::Buffer* text : {&paragraphs, &lines, &rows})
            std::fwrite(text->data(), 1, text->size(), stdout);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
