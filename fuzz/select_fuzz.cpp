// Any text as a time and as a condition: it is refused with a message, or can be applied to random
// blocks of all types.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "io/ToolError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/TimeText.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// A record of each main type.
class Records
{
public:
    Records()
    {
        std::mt19937_64 random(1);
        for (const Kor::MessageApi::TQX_TypeLayout* type : mainTypes()) {
            const std::vector<uint8_t> bytes =
                randomBlock(*type, {type->highestRevision, 2}, random);
            auto decoder = std::make_unique<tqx::RecordDecoder>();
            if (decoder->decode({bytes.data(), static_cast<uint16_t>(bytes.size()), 0}) > 0)
                m_decoders.push_back(std::move(decoder));
        }
    }

    bool accepted(const tqx::Condition& condition) const
    {
        bool any = false;
        for (const auto& decoder : m_decoders)
            any = condition.accepts(decoder->getRecord()) || any;
        return any;
    }

private:
    std::vector<std::unique_ptr<tqx::RecordDecoder>> m_decoders;
};

void tryTime(const std::string& text)
{
    constexpr uint64_t lastDay = 3'000'000; // of the year 9999
    try {
        if (tqx::parseTime("--from", text) / 86'400'000 > lastDay)
            std::abort();
    } catch (const tqx::DataError&) {
    }
}

void tryCondition(const std::string& text, const Records& records)
{
    try {
        const tqx::Condition condition(text, tqx::TypeSelection());
        condition.accepts(nullptr);
        records.accepted(condition);
    } catch (const tqx::DataError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Records records;
    const std::string text(reinterpret_cast<const char*>(data), size);
    tryTime(text);
    tryCondition(text, records);
    return 0;
}
