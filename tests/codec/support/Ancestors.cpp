#include "Ancestors.h"

#include "FieldRoles.h"

#include <dlfcn.h>

#include <map>
#include <string>

using namespace Kor::MessageApi;

Ancestors::Ancestors(const TQX_TypeLayout& type, unsigned revision, unsigned nestedLength)
{
    for (const TQX_TypeLayout* owner = ownerOf(type); owner != nullptr; owner = ownerOf(*owner)) {
        std::vector<uint64_t>& record = m_records.emplace_back(owner->recordSize / 8 + 1);
        owner->init(record.data());
        m_surroundings.main = owner;
    }
    for (size_t i = 1; i < m_records.size(); ++i) {
        static_cast<KorcgHeader_s*>(static_cast<void*>(m_records[i - 1].data()))->korcg_father =
            m_records[i].data();
    }
    if (m_records.empty())
        return;
    auto* main = reinterpret_cast<uint8_t*>(m_records.back().data());
    reinterpret_cast<TQX_MainHeader_s*>(main)->Revision = static_cast<uint8_t>(revision);
    m_surroundings.revision = revision;
    for (int i = 0; i < type.fieldCount; ++i) {
        if (!type.fields[i].lengthInMain)
            continue;
        const TQX_FieldLayout& length = m_surroundings.main->fields[type.fields[i].length];
        main[length.recordOffset] = static_cast<uint8_t>(nestedLength);
        m_surroundings.values.fields[length.name].values = {nestedLength};
    }
}

int32_t decodeAlone(const TQX_TypeLayout& type, TQX_Context_s* context, const uint8_t* buffer,
                    uint16_t size, uint32_t* offset, void* father, uint32_t explicitLength,
                    void* record)
{
    // All decoders have one signature but for the type of the record.
    using Decoder =
        int32_t (*)(TQX_Context_s*, const uint8_t*, uint16_t, uint32_t*, void*, uint32_t, void*);
    static std::map<uint16_t, Decoder> decoders;
    Decoder& decoder = decoders[type.recordType];
    if (decoder == nullptr) {
        decoder = reinterpret_cast<Decoder>(
            dlsym(RTLD_DEFAULT, (std::string("TQX_decode_") + type.name).c_str()));
    }
    return decoder(context, buffer, size, offset, father, explicitLength, record);
}
