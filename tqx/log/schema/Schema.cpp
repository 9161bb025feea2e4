#include "tqx/log/schema/Schema.h"

#include "TQX_Edition.h"
#include "TQX_codec.h"
#include "tqx/log/schema/AddedTypes.h"
#include "tqx/log/schema/Descriptions.h"

#include <algorithm>
#include <cctype>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

bool hasName(const TQX_TypeLayout& type, std::string_view name)
{
    const std::string_view own(type.name);
    return std::equal(own.begin(), own.end(), name.begin(), name.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) ==
               std::tolower(static_cast<unsigned char>(b));
    });
}

} // namespace

Schema Schema::read(const std::vector<std::string>& paths)
{
    Schema schema;
    if (!paths.empty())
        schema.m_added = readDescriptions(paths);
    return schema;
}

Schema Schema::parse(const std::vector<DescriptionText>& texts)
{
    Schema schema;
    if (!texts.empty())
        schema.m_added = parseDescriptions(texts);
    return schema;
}

const TQX_TypeLayout* Schema::getAddedType(uint32_t recordType) const
{
    const size_t index = recordType - TQX_firstDescribedType;
    return m_added && recordType >= TQX_firstDescribedType && index < m_added->layouts.size()
               ? m_added->layouts[index]
               : nullptr;
}

const TQX_TypeLayout* Schema::getAddedBlockType(uint16_t blockNumber) const
{
    if (!m_added)
        return nullptr;
    const auto found = m_added->blocks.find(blockNumber);
    return found == m_added->blocks.end() ? nullptr : found->second;
}

const TQX_TypeLayout* Schema::findType(std::string_view name) const
{
    for (uint32_t recordType = 1; recordType <= TQX_lastRecordType; ++recordType) {
        const TQX_TypeLayout* layout = TQX_layout(recordType);
        if (layout && hasName(*layout, name))
            return layout;
    }
    if (m_added) {
        for (const TQX_TypeLayout* layout : m_added->layouts) {
            if (hasName(*layout, name))
                return layout;
        }
    }
    return nullptr;
}

void Schema::forEachType(const std::function<void(const TQX_TypeLayout&)>& visit) const
{
    for (uint32_t recordType = 1; recordType <= TQX_lastRecordType; ++recordType) {
        if (const TQX_TypeLayout* layout = TQX_layout(recordType))
            visit(*layout);
    }
    if (m_added) {
        for (const TQX_TypeLayout* layout : m_added->layouts)
            visit(*layout);
    }
}

const char* Schema::getErrorName(int32_t code) const
{
    if (m_added && code <= TQX_firstDescribedCode) {
        const auto index = static_cast<size_t>(int64_t{TQX_firstDescribedCode} - code);
        if (index < m_added->codeNames.size())
            return m_added->codeNames[index].c_str();
    }
    return TQX_errorName(code);
}

void Schema::forEachError(const std::function<void(int32_t, const char*)>& visit) const
{
    const auto visitFrom = [&](int32_t first, int32_t count) {
        for (int32_t code = first; code > first - count; --code)
            visit(code, getErrorName(code));
    };
    visitFrom(-1, -TQX_lowestCode);
    visitFrom(TQX_firstAddedCode, TQX_addedCodes);
    if (m_added)
        visitFrom(TQX_firstDescribedCode, static_cast<int32_t>(m_added->codeNames.size()));
}

} // namespace tqx
