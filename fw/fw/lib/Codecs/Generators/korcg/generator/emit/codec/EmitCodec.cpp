#include "emit/Groups.h"
#include "emit/codec/Parts.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <functional>
#include <set>

namespace korcg::generator
{

namespace
{

constexpr std::size_t unitCount = 8;

constexpr const char headerStart[] = R"(#pragma once

#include "ArrayStorage.h"
#include "TQX_CodecFunctions.h"
#include "TQX_Context.h"
#include "TQX_Layout.h"
#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstdint>

namespace Kor::MessageApi
{

)";

constexpr const char declarationsStart[] = R"(// TQX_CodecFunctions.h has the contract of these.
extern "C" {

)";

constexpr const char internalStart[] = R"(#pragma once

#include "DerivedValues.h"
#include "Encoder.h"
#include "FastDecode.h"
#include "SubBlockArray.h"
#include "TQX_codec.h"

// gcc would gather neighbouring small members in a register before it stores them, which takes
// longer than storing them one by one.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("no-tree-slp-vectorize")
#endif

namespace Kor::MessageApi
{

)";

std::string sourcesOf(const Selection& selection)
{
    std::set<std::string> files;
    for (const RecordType* type : selection)
        files.insert(sourceOf(*type));
    std::string text;
    for (const std::string& file : files)
        text += (text.empty() ? "" : ", ") + file;
    return text.empty() ? std::string("an empty selection") : text;
}

// Records are defined, and entries loaded, before what holds them. Ascending record types are such
// an order in the first edition; later types may be held by lower numbers.
Selection inDependencyOrder(const Format& format, const Selection& selection)
{
    Selection ordered;
    std::set<const RecordType*> done;
    const std::function<void(const RecordType*)> add = [&](const RecordType* type) {
        if (!done.insert(type).second)
            return;
        for (const Field& field : type->fields) {
            if (!field.subType.empty())
                add(format.find(field.subType));
        }
        ordered.push_back(type);
    };
    for (const RecordType* type : selection)
        add(type);
    return ordered;
}

std::string header(const Format& format, const Selection& selection)
{
    std::string text = headerStart;
    std::string sizes;
    for (const RecordType* type : inDependencyOrder(format, selection)) {
        text += codec::recordStruct(*type);
        sizes += fmt::format("{}sizeof({})", sizes.empty() ? "" : ", ", recordName(*type));
    }
    text += fmt::format("/// Room for the record of any type.\n"
                        "union TQX_AnyRecord_u {{\n    TQX_MainHeader_s head;\n    double "
                        "alignment;\n    unsigned char bytes[std::max({{{}}})];\n}};\n\n"
                        "/// Record-type number of a record, 0 for other types.\n"
                        "template<typename Record>\nconstexpr uint32_t TQX_recordTypeOf = 0;\n",
                        sizes);
    for (const RecordType* type : selection) {
        text += fmt::format("template<>\ninline constexpr uint32_t TQX_recordTypeOf<{}> = {};\n",
                            recordName(*type), type->record);
    }
    text += "\n} // namespace Kor::MessageApi\n\n";
    text += declarationsStart;
    for (const RecordType* type : selection)
        text += codec::exportedDeclarations(*type);
    return text + "}\n";
}

// Sub-blocks are loaded inside the decoders of the blocks that hold them.
std::string internalHeader(const Format& format, const Selection& selection)
{
    std::string text = internalStart;
    for (const RecordType* type : selection)
        text += fmt::format("extern const TQX_TypeLayout layout_{};\n", type->name);
    text += '\n';
    for (const RecordType* type : inDependencyOrder(format, selection)) {
        if (!type->isMain()) {
            text += codec::initFunction(*type) + codec::clearFunction(*type) +
                    codec::startFunction(format, *type) + codec::deriveFunctions(format, *type) +
                    codec::loadFunction(format, *type);
        }
    }
    return text + "} // namespace Kor::MessageApi\n";
}

std::string unit(const Format& format, const Selection& group)
{
    std::string text = "#include \"TQX_codec_internal.h\"\n\nnamespace Kor::MessageApi\n{\n\n";
    for (const RecordType* type : group) {
        if (type->isMain()) {
            text += codec::initFunction(*type) + codec::startFunction(format, *type) +
                    codec::deriveFunctions(format, *type) + codec::loadFunction(format, *type);
        }
    }
    for (const RecordType* type : group)
        text += codec::layoutTable(format, *type);
    text += "} // namespace Kor::MessageApi\n\nusing namespace Kor::MessageApi;\n\n";
    for (const RecordType* type : group)
        text += codec::exportedFunctions(format, *type);
    return text;
}

} // namespace

void emitCodec(const Format& format, const Selection& selection, Output& output)
{
    const std::string all = sourcesOf(selection);
    output.write("TQX_codec.h", all, header(format, selection));
    output.write("TQX_Edition.h", "order.yaml", codec::editionHeader(format));
    output.write("TQX_codec_internal.h", all, internalHeader(format, selection));
    std::size_t number = 0;
    for (const Selection& group : groups(selection, unitCount)) {
        output.write(fmt::format("TQX_codec_{}.cpp", number++), sourcesOf(group),
                     unit(format, group));
    }
    output.write("TQX_codec_driver.cpp", "order.yaml",
                 "#include \"TQX_codec_internal.h\"\n\n#include <cstring>\n#include "
                 "<iterator>\n\nusing namespace Kor::MessageApi;\n\n" +
                     codec::driver(format, selection));
    output.write("TQX_codec_errors.cpp", "order.yaml",
                 "#include \"TQX_codec.h\"\n\n" + codec::errorNames(format));
}

} // namespace korcg::generator
