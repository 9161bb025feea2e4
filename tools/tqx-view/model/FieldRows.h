#pragma once

#include "model/MessageLog.h"

#include <QString>

#include <cstdint>
#include <vector>

class FieldInfo;
class Message;

namespace tqx::view
{

/// One field, element or sub-message of a message, in readable form.
struct FieldRow {
    static constexpr int none = -1;

    int parent = none; ///< row
    std::vector<int> children;
    int place = 0; ///< among the parent's children

    const FieldInfo* field = nullptr;
    QString name;
    QString value;   ///< in its unit, or its name
    QString unit;    ///< of a number
    QString raw;     ///< as it is stored
    QString meaning; ///< what the field is, where its name does not make it clear
    bool isAvailable = true;

    QString path;       ///< within the message, elements with their index: "Type1[0].CN0"
    QString expression; ///< for PathExpression: "TQX:MeasEpoch2:Type1:CN0"

    uint32_t offset = 0; ///< in the bytes of the message
    uint32_t size = 0;   ///< 0 for what has no bytes of its own, or no known ones
    unsigned lowestBit = 0;
    unsigned bitCount = 0; ///< 0 for whole bytes
};

/// All fields of a message in display order, parents before their children, made from its metadata
/// and the places of fields reported by the log. Units come from `log`.
std::vector<FieldRow> fieldRowsOf(const MessageContent& content, const MessageLog& log);

/// Whether values of the field are numbers.
bool isNumeric(const FieldInfo& field);

/// The row with the innermost bytes around `offset`; FieldRow::none if no field is there.
int rowAtByte(const std::vector<FieldRow>& rows, uint32_t offset);

/// The names that distinguish a message from others of its type, such as "G05, L1CA"; may be empty.
QString identityOf(const Message& message);

} // namespace tqx::view
