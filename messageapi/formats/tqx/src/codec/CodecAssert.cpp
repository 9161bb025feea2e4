#include "CodecAssert.h"

namespace Kor::MessageApi
{

namespace
{

constexpr const char fatherText[] = "TQX_AS_KORCG_HEADER(p)->korcg_father != NULL";
constexpr const char blockText[] = "TQX_IS_BLOCK_HEADER(TQX_AS_KORCG_HEADER(p)->korcg_father)";
constexpr const char grandfatherText[] =
    "TQX_AS_KORCG_HEADER(TQX_AS_KORCG_HEADER(p)->korcg_father)->korcg_father != NULL";
constexpr const char grandBlockText[] =
    "TQX_IS_BLOCK_HEADER(TQX_AS_KORCG_HEADER(TQX_AS_KORCG_HEADER(p)->korcg_father)->korcg_father)";

// Whether a record above one of `type` is a main block's.
bool isMainBlock(const TQX_TypeLayout& type, const void* record)
{
    if (type.described)
        return layoutOf(type, record).blockNumber != 0;
    const TQX_TypeLayout* main = TQX_layout(recordTypeOf(record));
    return main != nullptr && main->blockNumber != 0;
}

bool isAccepted(const uint16_t* types, uint32_t recordType)
{
    while (*types != 0 && *types != recordType)
        ++types;
    return *types != 0;
}

} // namespace

void assertKind(const TQX_TypeLayout& type, const void* father)
{
    KORCG_ASSERT(codecPath, father != nullptr, fatherText);
    if (type.kindAssertion != nullptr) {
        KORCG_ASSERT(codecPath, isAccepted(type.kindTypes, recordTypeOf(father)),
                     type.kindAssertion);
    }
}

const void* assertMainBlock(const TQX_TypeLayout& type, const void* father)
{
    assertKind(type, father);
    if (type.linksToMain < 2) {
        KORCG_ASSERT(codecPath, isMainBlock(type, father), blockText);
        return father;
    }
    const void* main = fatherOf(father);
    KORCG_ASSERT(codecPath, main != nullptr, grandfatherText);
    KORCG_ASSERT(codecPath, isMainBlock(type, main), grandBlockText);
    return main;
}

} // namespace Kor::MessageApi
