// Any text as a time and as a condition: it is refused with a message, or means something for
// random blocks of all types.

#include "FieldRoles.h"
#include "Message.h"
#include "RandomBlock.h"
#include "io/ToolError.h"
#include "tqx/log/record/MessageDecoder.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/TimeText.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace
{

/// One message of each type, which the decoder that made it keeps.
class Messages
{
public:
    Messages()
    {
        std::mt19937_64 random(1);
        for (const Kor::MessageApi::TQX_TypeLayout* type : mainTypes()) {
            const std::vector<uint8_t> bytes =
                randomBlock(*type, {type->highestRevision, 2}, random);
            decoder.decode({bytes.data(), static_cast<uint16_t>(bytes.size()), 0});
            if (!decoder.getMessage())
                continue;
            decoder.getMessage()->addReference();
            messages.push_back(decoder.getMessage());
        }
    }
    ~Messages()
    {
        for (const Message* message : messages)
            message->removeReference();
    }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    const std::vector<const Message*>& get() const { return messages; }

private:
    tqx::MessageDecoder decoder;
    std::vector<const Message*> messages;
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

void tryCondition(const std::string& text, const std::vector<const Message*>& messages)
{
    try {
        const tqx::Condition condition(text, tqx::TypeSelection());
        condition.accepts(nullptr);
        for (const Message* message : messages)
            condition.accepts(message);
    } catch (const tqx::DataError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Messages messages;
    const std::string text(reinterpret_cast<const char*>(data), size);
    tryTime(text);
    tryCondition(text, messages.get());
    return 0;
}
