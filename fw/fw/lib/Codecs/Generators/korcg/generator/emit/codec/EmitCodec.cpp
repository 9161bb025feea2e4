#include "emit/Groups.h"
#include "emit/codec/Parts.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <set>

namespace korcg::generator
{

namespace
{

constexpr std::size_t unitCount = 8;

constexpr const char headerStart[] = R"(#pragma once

#include "ArrayStorage.h"
#include "TQX_Context.h"
#include "TQX_Layout.h"
#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstdint>

/// The record is a main block's: it starts with a TQX_MainHeader_s.
#define TQX_IS_BLOCK_HEADER(record)                                                                \
    (TQX_layout(TQX_AS_KORCG_HEADER(record)->korcg_type) != nullptr &&                             \
     TQX_layout(TQX_AS_KORCG_HEADER(record)->korcg_type)->blockNumber != 0)

/// Views any record through the bookkeeping fields at its head.
#define TQX_AS_KORCG_HEADER(record) (static_cast<const Kor::MessageApi::KorcgHeader_s*>(record))

/// Frees the sub-block arrays of any record, with the arrays of their elements, by the type number
/// at its head. The record keeps its other values, has null arrays and zero counts afterwards and
/// can be released again. A record of type 0 or of an unknown type is left alone.
extern "C" TQX_CODEC_API void TQX_release(void* record);

namespace Kor::MessageApi
{

)";

constexpr const char generalDeclarations[] = R"(extern "C" {

/// Clears the context and enables every main block type.
TQX_CODEC_API void TQX_init_context(Kor::MessageApi::TQX_Context_s* context);

/// Decodes one framed block into `record`, which has room for the largest record
/// (TQX_AnyRecord_u). `context` may be null: then every type decodes and no time is followed.
///
/// Returns the number of bits decoded, or a negative code: a type's DISABLED code when its bit in
/// the context is clear (the record then holds only ID and BlockNumber), -6072 when no type has
/// the block number or the buffer is too short to hold one, else the code of the field that failed.
/// Arrays that were allocated before a failure stay in the record: call TQX_release() on it.
TQX_CODEC_API int32_t TQX_decode(Kor::MessageApi::TQX_Context_s* context, const uint8_t* buffer,
    uint16_t size, void* record);

/// Writes a main block's record with exactly the fields that decoding reads for its Revision and
/// its selecting fields, so that a decoded block comes back byte for byte. Entries shorter than
/// the sub-block length that the record holds are filled with zeros; Length and CRC are computed.
/// The record is not changed.
///
/// Returns the number of bits written, or the negative code of the last scalar field, or of the
/// array, that did not fit; then the buffer's content is unspecified. `record` must be a main
/// block's record, else the result is -6072 (TQX_ERR_INVALID_MESSAGE).
TQX_CODEC_API int32_t TQX_reencode(unsigned char* buffer, uint16_t bufferSize, const void* record);

/// Bytes that TQX_reencode() writes for one entry of a sub-block type under the given revision of
/// its main block, nested entries not counted, the longest content when a selector chooses it.
/// This is the value for the sub-block length field of a block built from scratch. 0 for an
/// unknown type.
TQX_CODEC_API uint32_t TQX_entrySize(uint32_t recordType, unsigned revision);

/// Name of a codec result: "TQX_ERR_NONE" from 0 on, "???" below the last code. Never null.
TQX_CODEC_API const char* TQX_errorName(int32_t code);

// TQX_init_<Name> fills a record with its starting values and returns 0. TQX_decode_<Name> decodes
// one record from the bit offset on; it returns the number of bits or a negative code: the type's
// _INTERNAL code when an explicit length leads past bit 0xffffffff or further than 0x7fffffff bits.
// TQX_encode_<Name> writes a record as one framed block and returns the number of bits or a
// negative code; it updates the record's Length, CRC and count of bits. TQX_append_<Block>_<Sub>
// adds an initialised element to a sub-block array, which may move the array.

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

std::string header(const Selection& selection)
{
    std::string text = headerStart;
    std::string sizes;
    for (const RecordType* type : selection) {
        text += codec::recordStruct(*type);
        sizes += fmt::format("{}sizeof({})", sizes.empty() ? "" : ", ", recordName(*type));
    }
    text += fmt::format("/// Room for the record of any type.\n"
                        "union TQX_AnyRecord_u {{\n    TQX_MainHeader_s head;\n    double "
                        "alignment;\n    unsigned char bytes[std::max({{{}}})];\n}};\n\n"
                        "/// Record-type number of a record, 0 for other types.\n"
                        "template<typename Record>\nconstexpr uint32_t TQX_recordTypeOf = 0;\n",
                        sizes);
    for (const RecordType* type : selection)
        text += fmt::format("template<>\nconstexpr uint32_t TQX_recordTypeOf<{}> = {};\n",
                            recordName(*type), type->record);
    text += "\n} // namespace Kor::MessageApi\n\n";
    text += generalDeclarations;
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
    text += "\n";
    for (const RecordType* type : selection)
        if (!type->isMain())
            text += codec::initFunction(*type) + codec::startFunction(*type) +
                    codec::deriveFunctions(format, *type) + codec::loadFunction(format, *type);
    return text + "} // namespace Kor::MessageApi\n";
}

std::string unit(const Format& format, const Selection& group)
{
    std::string text = "#include \"TQX_codec_internal.h\"\n\nnamespace Kor::MessageApi\n{\n\n";
    for (const RecordType* type : group)
        if (type->isMain())
            text += codec::initFunction(*type) + codec::startFunction(*type) +
                    codec::deriveFunctions(format, *type) + codec::loadFunction(format, *type);
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
    output.write("TQX_codec.h", all, header(selection));
    output.write("TQX_codec_internal.h", all, internalHeader(format, selection));
    std::size_t number = 0;
    for (const Selection& group : groups(selection, unitCount))
        output.write(fmt::format("TQX_codec_{}.cpp", number++), sourcesOf(group),
                     unit(format, group));
    output.write("TQX_codec_driver.cpp", "order.yaml",
                 "#include \"TQX_codec_internal.h\"\n\n#include <cstring>\n#include "
                 "<iterator>\n\nusing namespace Kor::MessageApi;\n\n" +
                     codec::driver(format, selection));
    output.write("TQX_codec_errors.cpp", "order.yaml",
                 "#include \"TQX_codec.h\"\n\n" + codec::errorNames(format));
}

} // namespace korcg::generator
