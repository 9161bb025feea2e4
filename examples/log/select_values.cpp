// select_values LOG
//
// Prints the positions of a log that are good as JSON Lines of a few fields.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/select/Selection.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/write/ValueJson.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        tqx::SelectionRequest request;
        request.types = {"PVTGeodetic2"};
        request.where = "NrSV >= 4 and has Height";
        tqx::Selection selection(request);
        const tqx::FieldFilter fields({"PVTMode", "Height", "NrSV"});

        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        tqx::ValueJson json(fields);
        tqx::Buffer out;
        for (tqx::Block block = {}; stream.next(block);) {
            if (selection.accepts(stream, block) && decoder.decode(block, stream.getContext()) > 0)
                json.write(out, decoder.getDecoded());
        }
        std::fwrite(out.data(), 1, out.size(), stdout);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
