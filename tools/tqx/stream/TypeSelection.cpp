#include "TypeSelection.h"

#include "ToolError.h"
#include "TypeNames.h"

#include <charconv>

namespace tool
{

namespace
{

uint16_t blockNumber(const std::string& entry, size_t limit)
{
    unsigned number = 0;
    const char* end = entry.data() + entry.size();
    if (const auto [stop, error] = std::from_chars(entry.data(), end, number);
        stop == end && error == std::errc()) {
        if (number >= limit)
            throw ToolError("block numbers go up to " + std::to_string(limit - 1) + ", not " +
                            entry);
        return static_cast<uint16_t>(number);
    }
    const Kor::MessageApi::TQX_TypeLayout* layout = findType(entry);
    if (!layout)
        throw ToolError(unknownType(entry));
    if (layout->blockNumber == 0)
        throw ToolError(std::string(layout->name) + " is a sub-block; select the block it is in");
    return layout->blockNumber;
}

} // namespace

TypeSelection::TypeSelection(const std::vector<std::string>& wanted,
                             const std::vector<std::string>& unwanted)
{
    if (wanted.empty())
        accepted.set();
    for (const std::string& entry : wanted)
        accepted.set(blockNumber(entry, numbers));
    for (const std::string& entry : unwanted)
        accepted.reset(blockNumber(entry, numbers));
}

} // namespace tool
