#include "emit/messages/Factory.h"

#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

constexpr const char* headerText = R"(#pragma once

#include "tqx_export.h"

#include <cstddef>

class Message;
class MessageInfo;

/// Wraps a decoded record in a new message of its type. The record's bytes move into a heap copy
/// that the message owns, so the caller must neither release nor use the arrays of `record` any
/// more. Sub-block types get no parent. Null when the record's type has no message class; throws
/// std::bad_alloc. In both cases nothing is taken over.
TQX_API Message* TQX_createMessage(const void* record);

/// A type with a message class. `info` creates the metadata on first use: the format registry must
/// exist by then.
struct TQX_MessageType {
    const MessageInfo* (*info)();
    int recordType;
};

struct TQX_MessageTypes {
    const TQX_MessageType* types; ///< ascending record type
    std::size_t count;

    const TQX_MessageType* begin() const { return types; }
    const TQX_MessageType* end() const { return types + count; }
};

/// All types with a message class.
TQX_API TQX_MessageTypes TQX_messageTypes();
)";

constexpr const char* sourceText = R"(#include "TQX_MessageFactory.h"

#include "TQX_Messages.h"
#include "TQX_RecordAccess.h"
#include "TQX_codec.h"
{includes}
#include <cstring>
#include <iterator>
#include <memory>

using namespace Kor::MessageApi;

namespace
{{

// Gives memory back without the record's destructor: the arrays are still the caller's.
struct FreeMemory {{
    void operator()(void* record) const {{ ::operator delete(record); }}
}};

template<typename Record>
using Copy = std::unique_ptr<Record, FreeMemory>;

template<typename Record>
Copy<Record> copyOf(const void* record)
{{
    Copy<Record> copy(new Record);
    std::memcpy(static_cast<void*>(copy.get()), record, sizeof(Record));
    return copy;
}}

template<typename MessageClass, typename Record>
Message* createMain(const void* record)
{{
    Copy<Record> copy = copyOf<Record>(record);
    Message* message = new MessageClass(copy.get(), true);
    copy.release();
    return message;
}}

template<typename MessageClass, typename Record>
Message* createSub(const void* record)
{{
    Copy<Record> copy = copyOf<Record>(record);
    Message* message = new MessageClass(copy.get(), nullptr, true);
    copy.release();
    return message;
}}

template<typename Info>
const MessageInfo* infoOf()
{{
    return Info::getInstance();
}}

constexpr TQX_MessageType messageTypes[] = {{
{rows}}};

}} // namespace

Message* TQX_createMessage(const void* record)
{{
    switch (static_cast<const KorcgHeader_s*>(record)->korcg_type) {{
{cases}    default:
        return nullptr;
    }}
}}

TQX_MessageTypes TQX_messageTypes()
{{
    return {{messageTypes, std::size(messageTypes)}};
}}
)";

} // namespace

std::string allMessagesHeader(const Selection& classes)
{
    std::string text = "#pragma once\n\n";
    for (const RecordType* type : classes)
        text += fmt::format("#include \"TQX_{}_Message.h\"\n", type->name);
    return text;
}

std::string factoryHeader()
{
    return headerText;
}

std::string factorySource(const Selection& classes)
{
    std::string includes;
    std::string rows;
    std::string cases;
    for (const RecordType* type : classes) {
        includes += fmt::format("#include \"TQX_{}_MessageInfo.h\"\n", type->name);
        rows += fmt::format("    {{infoOf<TQX_{}_MessageInfo>, {}}},\n", type->name, type->record);
        cases += fmt::format("    case {}:\n        return create{}<TQX_{}_Message, {}>(record);\n",
                             type->record, type->isMain() ? "Main" : "Sub", type->name,
                             recordName(*type));
    }
    return fmt::format(fmt::runtime(sourceText), fmt::arg("includes", includes),
                       fmt::arg("rows", rows), fmt::arg("cases", cases));
}

} // namespace korcg::generator
