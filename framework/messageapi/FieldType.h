#pragma once

#include "FieldKind.h"
#include "messageapi_export.h"

#include <QString>

class MessageInfo;

/// The type of one field: its kind, its width in bits, and for sub-messages what describes them.
/// A cheap value; copies are bit copies.
class MESSAGEAPI_API FieldType
{
public:
    using Kind = FieldKind;

    /// Integers of `width` bits, 1 to 64.
    static constexpr FieldType u(unsigned char width) { return {Kind::U, width, nullptr}; }
    static constexpr FieldType i(unsigned char width) { return {Kind::I, width, nullptr}; }
    static constexpr FieldType f32() { return {Kind::F32, 32, nullptr}; }
    static constexpr FieldType f64() { return {Kind::F64, 64, nullptr}; }
    /// One character; texts are repeated characters.
    static constexpr FieldType ch() { return {Kind::Ch, 8, nullptr}; }
    /// Messages described by `info`, which is not owned and must outlive the type.
    static constexpr FieldType subMessage(const MessageInfo* info)
    {
        return {Kind::SubMessage, 0, info};
    }

    constexpr Kind getKind() const { return m_kind; }

    /// Width in bits; 0 for sub-messages.
    constexpr unsigned char getWidth() const { return m_width; }

    /// What describes the sub-messages; null for every other kind.
    constexpr const MessageInfo* getSubMessageInfo() const { return m_subMessageInfo; }

    constexpr bool isInteger() const { return m_kind == Kind::U || m_kind == Kind::I; }
    constexpr bool isFloat() const { return m_kind == Kind::F32 || m_kind == Kind::F64; }

    /// "u13", "i8", "f32", "f64", "ch" or "sub".
    QString toString() const;

    friend constexpr bool operator==(const FieldType& a, const FieldType& b)
    {
        return a.m_kind == b.m_kind && a.m_width == b.m_width &&
               a.m_subMessageInfo == b.m_subMessageInfo;
    }
    friend constexpr bool operator!=(const FieldType& a, const FieldType& b) { return !(a == b); }

private:
    constexpr FieldType(Kind kind, unsigned char width, const MessageInfo* subMessageInfo)
        : m_subMessageInfo(subMessageInfo), m_kind(kind), m_width(width)
    {
    }

    const MessageInfo* m_subMessageInfo;
    Kind m_kind;
    unsigned char m_width;
};
