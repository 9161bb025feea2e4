#include "tqx/log/read/LineEncoder.h"

#include "tqx/log/read/BytesCheck.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/read/RecordFiller.h"
#include "tqx/log/read/StoredValue.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/Base64.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <limits>

namespace tqx
{

using namespace Kor::MessageApi;
using nlohmann::json;

namespace
{

constexpr size_t largestBlock = std::numeric_limits<uint16_t>::max();

/// Parses a line that is long enough for its values to take much more memory than its text.
json parseLong(const std::string& line)
{
    constexpr size_t mostValues = 1000000;
    size_t values = 0;
    return json::parse(line, [&](int, json::parse_event_t, const json&) {
        if (++values > mostValues)
            throw LineError(fmt::format("more than {} values", mostValues));
        return true;
    });
}

json parse(const std::string& line)
{
    constexpr size_t longest = 1 << 20;
    // To the parser it would be the end.
    if (const size_t null = line.find('\0'); null != std::string::npos)
        throw LineError(fmt::format("no valid JSON at column {}: a null character", null + 1));
    try {
        return line.size() > longest ? parseLong(line) : json::parse(line);
    } catch (const json::parse_error& error) {
        throw LineError(fmt::format("no valid JSON at column {}", error.byte));
    } catch (const json::out_of_range&) {
        throw LineError("a number is too large");
    }
}

/// The members that a line may have; null where it does not.
struct Line {
    const json* block = nullptr;
    const json* fields = nullptr;
    const json* number = nullptr;
    const json* bytes = nullptr;
};

Line membersOf(const json& value)
{
    Line line;
    for (const auto& [name, member] : objectOf(value)) {
        if (name == "block") {
            line.block = &member;
        } else if (name == "fields") {
            line.fields = &member;
        } else if (name == "number") {
            line.number = &member;
        } else if (name == "bytes") {
            line.bytes = &member;
        } else if (name == "time") { // has it
            throw ScaledLineError();
        } else {
            throw LineError(unknownName("member", name, {"block", "fields", "number", "bytes"}));
        }
    }
    return line;
}

const TQX_TypeLayout& typeOf(const json& name)
{
    if (!name.is_string())
        throw LineError::at("block", "is no string");
    const TQX_TypeLayout* type = findType(name.get_ref<const std::string&>());
    if (!type)
        throw LineError(unknownType(name.get_ref<const std::string&>()));
    if (type->blockNumber == 0)
        throw LineError(fmt::format("{} is a sub-block, no block of its own", type->name));
    return *type;
}

} // namespace

const std::vector<uint8_t>& LineEncoder::encode(const std::string& text)
{
    const json value = parse(text);
    const Line line = membersOf(value);
    m_bytes.clear();
    m_warning.clear();
    if (line.bytes) {
        if (!line.bytes->is_string() ||
            !decodeBase64(line.bytes->get_ref<const std::string&>(), m_bytes))
            throw LineError::at("bytes", "is no base64 text");
        if (const std::string name = differenceFromBytes(line.block, line.fields, m_bytes);
            !name.empty()) {
            m_warning = fmt::format("differs from the bytes beside it, which are taken: {}",
                                    shortened(name));
        }
        return m_bytes;
    }
    if (!line.block)
        throw LineError("neither \"block\" nor \"bytes\" is given");
    const TQX_TypeLayout& type = typeOf(*line.block);
    static const json nothing = json::object();
    try {
        encodeFields(type, line.fields ? *line.fields : nothing);
    } catch (const LineError& error) {
        throw error.inside(type.name);
    }
    return m_bytes;
}

void LineEncoder::encodeFields(const TQX_TypeLayout& type, const json& values)
{
    m_record.init(type);
    fillRecord(type, m_record.get(), objectOf(values));
    m_bytes.resize(largestBlock);
    const int32_t bits =
        TQX_reencode(m_bytes.data(), static_cast<uint16_t>(m_bytes.size()), m_record.get());
    if (bits < 0) {
        throw LineError(
            fmt::format("larger than a block can be: {} ({})", TQX_errorName(bits), bits));
    }
    m_bytes.resize(static_cast<size_t>(bits) / 8);
    checkDecodes();
}

/// Lengths of entries that are given may be too short for what the entries hold.
void LineEncoder::checkDecodes()
{
    const int32_t bits =
        m_record.decode(nullptr, m_bytes.data(), static_cast<uint16_t>(m_bytes.size()));
    if (bits < 0) {
        throw LineError(fmt::format("these values make a block that does not decode: {} ({})",
                                    TQX_errorName(bits), bits));
    }
    if (static_cast<size_t>(bits) != m_bytes.size() * 8) {
        throw LineError(fmt::format("these values make a block of {} bytes of which {} decode",
                                    m_bytes.size(), bits / 8));
    }
}

} // namespace tqx
