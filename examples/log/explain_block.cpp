// explain_block LOG OFFSET
//
// Explains a block as text, lists the pieces of a walk along its bytes, and says what its fields
// depend on.

#include "tqx/log/DataError.h"
#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/inspect/Explanation.h"
#include "tqx/log/inspect/FieldNames.h"
#include "tqx/log/inspect/FieldTable.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/inspect/TypesJson.h"
#include "tqx/log/source/OpenSource.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

using namespace Kor::MessageApi;

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
    try {
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        const tqx::Inspection inspection =
            tqx::inspect(tqx::locateBlock(*source, std::strtoull(argv[2], nullptr, 10)));
        tqx::Buffer text;
        tqx::appendExplanation(text, inspection);
        std::fwrite(text.data(), 1, text.size(), stdout);
        if (!inspection.type)
            return 0;

        const TQX_TypeLayout& type = *inspection.type;
        const tqx::BlockWalk walk = tqx::walkBlock(
            type, inspection.bytes.data(), static_cast<uint32_t>(inspection.bytes.size()), nullptr);
        std::printf("%zu pieces, code %d\n", walk.pieces.size(), walk.code);

        const TQX_FieldFacts* facts = TQX_fieldFacts(type.recordType);
        for (int row = 0; row < type.fieldCount; ++row) {
            if (facts[row].has(TQX_FieldFacts::HasDoNotUse)) {
                std::printf("%s is not available as %s\n", type.fields[row].name,
                            tqx::doNotUseText(type.fields[row], facts[row]).c_str());
            }
            for (const std::string& needed : tqx::inputNames(type, facts[row]))
                std::printf("%s needs %s\n", type.fields[row].name, needed.c_str());
        }

        // The whole catalogue has these, too.
        tqx::Buffer table;
        tqx::appendFieldTable(table, type);
        tqx::Buffer json;
        tqx::appendTypesJson(json, {&type});
        const bool isNamed = json.view().find(type.name) != std::string_view::npos &&
                             table.view().find(type.name) != std::string_view::npos;
        std::printf("%s in text and in JSON\n", isNamed ? "described" : "not described");
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
