#include "read/Header.h"

namespace korcg::generator
{

namespace
{

Field headerField(const Location& where, const char* name, Scalar type, int width)
{
    Field field;
    field.where = where;
    field.name = name;
    field.type = type;
    field.width = width;
    field.isHeader = true;
    field.role = Role::Structure;
    return field;
}

} // namespace

std::vector<Field> headerFields(const Location& where)
{
    constexpr int idRow = 3;
    constexpr int towRow = 7;

    Field blockNumber = headerField(where, "BlockNumber", Scalar::U16, 13);
    blockNumber.kind = FieldKind::Bits;
    blockNumber.parent = idRow;

    Field revision = headerField(where, "Revision", Scalar::U8, 3);
    revision.kind = FieldKind::Bits;
    revision.parent = idRow;
    revision.shift = 13;

    Field checksum = headerField(where, "CRC", Scalar::U16, 16);
    checksum.text = "checksum of the block from ID on";

    Field length = headerField(where, "Length", Scalar::U16, 16);
    length.unit = "byte";
    length.text = "whole block, padding included";

    Field tow = headerField(where, "TOW", Scalar::U32, 32);
    tow.role = Role::Data;
    tow.text = "GPS time of week";
    tow.unit = "second";
    tow.scale = 0.001;
    tow.doNotUse = uint64_t{4294967295};

    Field week = headerField(where, "WNc", Scalar::U16, 16);
    week.role = Role::Data;
    week.text = "GPS week, not modulo 1024";
    week.unit = "week";
    week.doNotUse = uint64_t{65535};

    // Kept up by the decoder's context, not by a formula over the record.
    Field continuous = headerField(where, "TOWc", Scalar::U32, 32);
    continuous.kind = FieldKind::Derived;
    continuous.after = towRow;
    continuous.text = "TOW carried on past the end of its week, all ones when unset";

    return {headerField(where, "Sync1", Scalar::Char, 8),
            headerField(where, "Sync2", Scalar::Char, 8),
            checksum,
            headerField(where, "ID", Scalar::U16, 16),
            blockNumber,
            revision,
            length,
            tow,
            week,
            continuous};
}

} // namespace korcg::generator
