#include "tqx/log/select/TypeSelection.h"

#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/NamePattern.h"
#include "tqx/log/text/PrintableText.h"

#include <charconv>
#include <optional>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Numbers = std::bitset<TypeSelection::numbers>;

std::optional<unsigned> asNumber(const std::string& entry)
{
    unsigned number = 0;
    const char* end = entry.data() + entry.size();
    const auto [stop, error] = std::from_chars(entry.data(), end, number);
    if (stop != end || error != std::errc())
        return std::nullopt;
    return number;
}

uint16_t numberOfType(const std::string& name, const Schema& schema)
{
    const TQX_TypeLayout* layout = schema.findType(name);
    if (!layout)
        throw DataError(unknownType(name, schema));
    if (layout->blockNumber == 0)
        throw DataError(std::string(layout->name) + " is a sub-block; select the block it is in");
    return layout->blockNumber;
}

Numbers numbersOf(const std::string& entry, const Schema& schema)
{
    Numbers found;
    if (const std::optional<unsigned> number = asNumber(entry)) {
        if (*number >= TypeSelection::numbers) {
            throw DataError("block numbers go up to " + std::to_string(TypeSelection::numbers - 1) +
                            ", not " + shortened(entry));
        }
        found.set(*number);
    } else if (isPattern(entry)) {
        schema.forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber != 0 && matchesPattern(type.name, entry))
                found.set(type.blockNumber);
        });
        if (found.none())
            throw DataError("no block has a name like " + shortened(entry));
    } else {
        found.set(numberOfType(entry, schema));
    }
    return found;
}

} // namespace

TypeSelection::TypeSelection(const std::vector<std::string>& wanted,
                             const std::vector<std::string>& unwanted, const Schema& schema)
    : m_schema(schema)
{
    if (wanted.empty())
        m_accepted.set();
    for (const std::string& entry : wanted)
        m_accepted |= numbersOf(entry, schema);
    for (const std::string& entry : unwanted)
        m_accepted &= ~numbersOf(entry, schema);
}

} // namespace tqx
