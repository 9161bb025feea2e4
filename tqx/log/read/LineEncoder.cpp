#include "tqx/log/read/LineEncoder.h"

#include "TQX_LayoutFunctions.h"
#include "tqx/log/read/BytesCheck.h"
#include "tqx/log/read/JsonLine.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/read/RecordFiller.h"
#include "tqx/log/read/StoredValue.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/Base64.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <limits>
#include <unordered_map>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = JsonValue::Kind;

constexpr size_t largestBlock = std::numeric_limits<uint16_t>::max();

/// The members that a line may have; null where it does not.
struct Members {
    const JsonValue* block = nullptr;
    const JsonValue* fields = nullptr;
    const JsonValue* number = nullptr;
    const JsonValue* bytes = nullptr;
};

Members membersOf(const JsonValue& line)
{
    Members members;
    std::string_view unknown; // the first one in the alphabet
    for (const JsonValue& value : objectOf(line)) {
        const std::string_view name = value.name();
        if (name == "block") {
            members.block = &value;
        } else if (name == "fields") {
            members.fields = &value;
        } else if (name == "number") {
            members.number = &value;
        } else if (name == "bytes") {
            members.bytes = &value;
        } else if (unknown.data() == nullptr || name < unknown) {
            unknown = name;
        }
    }
    if (unknown == "time") // has it
        throw ScaledLineError();
    if (unknown.data() != nullptr)
        throw LineError(unknownName("member", unknown, {"block", "fields", "number", "bytes"}));
    return members;
}

} // namespace

struct LineEncoder::Tools {
    JsonLine parser;
    RecordFiller filler;
    std::unordered_map<std::string_view, const TQX_TypeLayout*> types; ///< found so far, by name
};

LineEncoder::LineEncoder(const Schema& schema)
    : m_schema(schema), m_tools(std::make_unique<Tools>()), m_room(largestBlock)
{
}

LineEncoder::~LineEncoder() = default;

const std::vector<uint8_t>& LineEncoder::encode(std::string_view line)
{
    const Members members = membersOf(m_tools->parser.parse(line));
    m_bytes.clear();
    m_warning.clear();
    if (members.bytes) {
        if (members.bytes->kind != Kind::String || !decodeBase64(members.bytes->text(), m_bytes))
            throw LineError::at("bytes", "is not base64 text");
        if (const std::string name =
                differenceFromBytes(members.block, members.fields, m_bytes, m_schema);
            !name.empty()) {
            m_warning = fmt::format("differs from the bytes beside it, which are used: {}",
                                    shortened(name));
        }
        return m_bytes;
    }
    if (!members.block)
        throw LineError("neither \"block\" nor \"bytes\" is given");
    if (members.block->kind != Kind::String)
        throw LineError::at("block", "is not a string");
    const TQX_TypeLayout& type = typeOf(members.block->text());
    try {
        m_record.init(type);
        constexpr JsonValue nothing = {nullptr, nullptr, 0, 0, 1, Kind::Object};
        m_tools->filler.fill(type, m_record.get(),
                             members.fields ? objectOf(*members.fields) : nothing);
        const int32_t bits = TQX_reencodeAs(type, m_room.data(),
                                            static_cast<uint16_t>(m_room.size()), m_record.get());
        if (bits < 0) {
            throw LineError(fmt::format("larger than a block can be: {} ({})",
                                        m_schema.getErrorName(bits), bits));
        }
        m_bytes.assign(m_room.begin(), m_room.begin() + bits / 8);
        checkDecodes(type);
    } catch (const LineError& error) {
        throw error.inside(type.name);
    }
    return m_bytes;
}

const TQX_TypeLayout& LineEncoder::typeOf(std::string_view name)
{
    if (const auto known = m_tools->types.find(name); known != m_tools->types.end())
        return *known->second;
    const TQX_TypeLayout* type = m_schema.findType(name);
    if (!type)
        throw LineError(unknownType(name, m_schema));
    if (type->blockNumber == 0)
        throw LineError(fmt::format("{} is a sub-block, not a block", type->name));
    m_tools->types.emplace(type->name, type);
    return *type;
}

/// Lengths of entries that are given may be too short for what the entries hold.
void LineEncoder::checkDecodes(const TQX_TypeLayout& type)
{
    const auto size = static_cast<uint16_t>(m_bytes.size());
    const int32_t bits = type.described ? m_record.decode(type, nullptr, m_bytes.data(), size)
                                        : m_record.decode(nullptr, m_bytes.data(), size);
    if (bits < 0) {
        throw LineError(fmt::format("these values make a block that does not decode: {} ({})",
                                    m_schema.getErrorName(bits), bits));
    }
    if (static_cast<size_t>(bits) != m_bytes.size() * 8) {
        throw LineError(fmt::format("these values make a block of {} bytes of which {} decode",
                                    m_bytes.size(), bits / 8));
    }
}

} // namespace tqx
