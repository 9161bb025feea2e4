#pragma once

#include "model/Model.h"

#include <string>
#include <vector>

namespace korcg::generator
{

/// Which family of getters a field gets.
enum class Family {
    Scalar,   ///< get<F>()
    Repeated, ///< get<F>(index), getNumberOf<F>(), get<F>Array(), get<F>Vector()
    Blocks,   ///< typed access to the children of a sub-block array
    Embedded  ///< typed access to the one child of a sub-block inside the record
};

Family familyOf(const RecordType& type, const Field& field);

inline bool isOptional(const Field& field)
{
    return field.presence != Presence::Always;
}

/// Fields that become child messages, in field order.
std::vector<const Field*> childFields(const RecordType& type);
bool hasBlocks(const RecordType& type);
bool hasEmbedded(const RecordType& type);

/// Type that the getters of a field return: "unsigned char", "TQX_AGCState_Message*".
std::string valueType(const Field& field);

/// Cached children of a field: "m_type1Messages", "m_accelerationMessage".
std::string childMember(const Field& field);

/// What getNumberOf<F>() returns: "3", "m_record->StringLn + 1U", "m_record->N1", of a counted
/// array of numbers never more than the record has room for.
std::string countExpression(const RecordType& type, const Field& field);

/// Elements that a getter may read: the count, of text too never more than the record has room for,
/// because a record that a caller has filled may announce more.
std::string readableCount(const RecordType& type, const Field& field);

/// What has<F>() returns: "m_record->Revision >= 2", "m_record->Type == 4".
std::string presenceExpression(const RecordType& type, const Field& field);

} // namespace korcg::generator
