#pragma once

#include "messageapi_export.h"

#include <QString>

class FieldInfo;

/// Names of fields across all formats.
class MESSAGEAPI_API PathExpression
{
public:
    /// The field that a path names:
    ///
    ///     FORMAT:MESSAGE:FIELD
    ///     FORMAT:MESSAGE:SUBFIELD:...:FIELD
    ///
    /// MESSAGE is a main or sub type. Each SUBFIELD holds sub-messages, whose type then has the
    /// next field, or is packed from bit ranges, one of which is the next field.
    ///
    /// Returns null when there is no such field. Throws a MessageApiEvent of type FieldAccess when
    /// the path has fewer than three parts, or names a format or message that is not known. Formats
    /// are known once they have been set up; a lookup never sets one up.
    static const FieldInfo* getUniqueFieldInfo(const QString& path);

    PathExpression() = delete;
};
