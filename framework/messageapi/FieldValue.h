#pragma once

#include "FieldKind.h"
#include "messageapi_export.h"

#include <QString>

#include <cstdint>
#include <limits>

class Message;

/// One value of a field: kind, width and eight bytes, copied like a number.
///
/// Reading never truncates a value. An integer is read back at any width and either signedness that
/// can hold it; a float of 32 bits also as one of 64. Everything else throws a MessageApiEvent of
/// type FieldAccess: a value that does not fit, or one of another kind.
///
/// Values are totally ordered: empty ones, then numbers, then characters, then sub-messages.
/// Numbers compare by value, whatever their kind and width: u8 5 equals i32 5 and f64 5.0. A NaN
/// equals every other NaN and follows all numbers.
class MESSAGEAPI_API FieldValue
{
public:
    using Kind = FieldKind;

    /// How to show a field's values.
    enum RepresentationMode {
        Default = 0, ///< as numbers or names
        BitMask = 1  ///< as a set of bits
    };

    /// An empty value: the field has none in the message.
    constexpr FieldValue() : m_u(0), m_kind(Kind::Empty), m_width(0) {}

    /// Integers of `width` bits, 1 to 64. The value is kept whole even if it needs more.
    static constexpr FieldValue u(unsigned long long value, unsigned char width)
    {
        FieldValue result(Kind::U, width);
        result.m_u = value;
        return result;
    }
    static constexpr FieldValue i(long long value, unsigned char width)
    {
        FieldValue result(Kind::I, width);
        result.m_i = value;
        return result;
    }
    static constexpr FieldValue f32(float value)
    {
        FieldValue result(Kind::F32, 32);
        result.m_f32 = value;
        return result;
    }
    static constexpr FieldValue f64(double value)
    {
        FieldValue result(Kind::F64, 64);
        result.m_f64 = value;
        return result;
    }
    static constexpr FieldValue ch(char value)
    {
        FieldValue result(Kind::Ch, 8);
        result.m_ch = value;
        return result;
    }
    /// `message` is not owned and outlives the value.
    static constexpr FieldValue subMessage(const Message* message)
    {
        FieldValue result(Kind::SubMessage, 0);
        result.m_message = message;
        return result;
    }

    constexpr Kind getKind() const { return m_kind; }
    /// Width in bits; 0 for empty values and sub-messages.
    constexpr unsigned char getWidth() const { return m_width; }
    constexpr bool isEmpty() const { return m_kind == Kind::Empty; }
    constexpr bool isInteger() const { return m_kind == Kind::U || m_kind == Kind::I; }
    constexpr bool isFloat() const { return m_kind == Kind::F32 || m_kind == Kind::F64; }

    uint8_t getU8() const { return getUnsigned<uint8_t>(); }
    uint16_t getU16() const { return getUnsigned<uint16_t>(); }
    uint32_t getU32() const { return getUnsigned<uint32_t>(); }
    uint64_t getU64() const { return getUnsigned<uint64_t>(); }
    int8_t getI8() const { return getSigned<int8_t>(); }
    int16_t getI16() const { return getSigned<int16_t>(); }
    int32_t getI32() const { return getSigned<int32_t>(); }
    int64_t getI64() const { return getSigned<int64_t>(); }

    /// Only for an f32 value.
    float getF32() const;
    /// For an f32 or f64 value.
    double getF64() const;
    char getCh() const;
    /// Not owned by the caller.
    const Message* getSubMessage() const;

    /// Any number, rounded to the nearest double where that cannot hold it.
    /// Throws FieldAccess for values that are not numbers.
    double toDouble() const;

    /// Plain text for tools, the same in every locale: integers in decimal, floats in the shortest
    /// form that reads back to the same value of their width, the character itself (nothing for a
    /// zero), "submsg" for a sub-message, nothing for an empty value.
    QString toString() const;

    /// Below 0, 0 or above 0 if this value is before, equal to or after the other.
    int compare(const FieldValue& other) const;

    friend bool operator==(const FieldValue& a, const FieldValue& b)
    {
        if (a.m_kind == b.m_kind && a.isInteger()) {
            return a.m_u == b.m_u;
        }
        return a.compare(b) == 0;
    }
    friend bool operator!=(const FieldValue& a, const FieldValue& b) { return !(a == b); }
    friend bool operator<(const FieldValue& a, const FieldValue& b) { return a.compare(b) < 0; }
    friend bool operator>(const FieldValue& a, const FieldValue& b) { return a.compare(b) > 0; }
    friend bool operator<=(const FieldValue& a, const FieldValue& b) { return a.compare(b) <= 0; }
    friend bool operator>=(const FieldValue& a, const FieldValue& b) { return a.compare(b) >= 0; }

private:
    constexpr FieldValue(Kind kind, unsigned char width) : m_u(0), m_kind(kind), m_width(width) {}

    template<typename T>
    T getUnsigned() const
    {
        if (m_kind == Kind::U && m_u <= std::numeric_limits<T>::max()) {
            return static_cast<T>(m_u);
        }
        return static_cast<T>(convertToUnsigned(std::numeric_limits<T>::max()));
    }
    template<typename T>
    T getSigned() const
    {
        if (m_kind == Kind::I && m_i >= std::numeric_limits<T>::min() &&
            m_i <= std::numeric_limits<T>::max()) {
            return static_cast<T>(m_i);
        }
        return static_cast<T>(convertToSigned(std::numeric_limits<T>::max()));
    }
    uint64_t convertToUnsigned(uint64_t max) const;
    int64_t convertToSigned(int64_t max) const;
    [[noreturn]] void throwMismatch(const QString& wanted) const;

    union {
        uint64_t m_u;
        int64_t m_i;
        float m_f32;
        double m_f64;
        char m_ch;
        const Message* m_message;
    };
    Kind m_kind;
    unsigned char m_width;
};
