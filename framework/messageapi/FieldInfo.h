#pragma once

#include "FieldType.h"
#include "FieldValue.h"
#include "SymbolicValues.h"
#include "messageapi_export.h"

#include <QString>
#include <QVector>

class Message;

/// Describes one field of one message type, and reads it from messages of that type.
///
/// Instances are static objects of the format's library, set up in their constructors and not
/// changed afterwards; then they may be read from any thread. Texts that it returns stay valid
/// after the library has been unloaded.
class MESSAGEAPI_API FieldInfo
{
public:
    /// Purpose of a field.
    enum Role {
        Unset = 0,
        Data = 1,      ///< carries data
        Structure = 2, ///< describes how the message is built or encoded: counts, lengths, padding
        Reserved = 3
    };

    using SymbolicValue = ::SymbolicValue;

    FieldInfo(const FieldInfo&) = delete;
    FieldInfo& operator=(const FieldInfo&) = delete;

protected:
    virtual ~FieldInfo();

public:
    /// Whether the message has at least one value of this field: false for null, for messages of
    /// another type, for optional fields that are absent and for repeated ones without element.
    virtual bool hasValue(const Message* message) const = 0;

    /// How many values the message has; 0 wherever hasValue returns false.
    virtual unsigned getNumberOfValues(const Message* message) const = 0;

    /// The value at an index below getNumberOfValues. Throws a MessageApiEvent of type FieldAccess
    /// when the message has no such value.
    virtual FieldValue getValue(const Message* message, unsigned index) const = 0;

    /// The same without any check: the caller knows that the value is there.
    virtual FieldValue getValueUnchecked(const Message* message, unsigned index) const = 0;

    /// All values of the field in readable form; empty when there are none. Values that have a name
    /// are shown by it. Integers are multiplied by the scale factor and shown with the precision,
    /// or if none is set with the decimals that the factor needs; where the precision would show
    /// the factor itself as zero, with 7 significant digits. Values are separated by blanks;
    /// characters form one text, which ends at the first zero. The unit follows once, if any number
    /// is shown. Values that are not available are Message::doNotUseString, or nothing if
    /// Message::useDoNotUseString is off. Numbers follow the default QLocale.
    virtual QString getValueString(const Message* message) const;

    /// One value as it is stored, without scale: its name; else, when it is not available, as
    /// above; else the number in the default QLocale, with a blank and the unit if `withUnit` is
    /// set. Names of floating-point values come after the test for not available. Throws as
    /// getValue does.
    virtual QString getValueString(const Message* message, unsigned index, bool withUnit) const;

    /// The name to display, may contain blanks.
    const QString& getName() const { return m_name; }
    const FieldType& getType() const { return m_type; }

    /// The unit that the value has once multiplied by the scale factor; empty for none.
    const QString& getUnit() const { return m_unit; }

    /// 1 unless one was set.
    double getScaleFactor() const { return m_scaleFactor; }
    bool hasScaleFactor() const { return m_hasScaleFactor; }

    /// Decimals to display; -1 unless set.
    signed char getPrecision() const { return m_precision; }

    /// Decimals that getValueString(message) shows of a number with a fraction: the precision, else
    /// as many as the scale factor needs, else 6. -1 where it shows significant digits instead.
    int getShownDecimals() const;

    /// In the order in which they were added.
    const SymbolicValues& getSymbolicValues() const { return m_symbolicValues; }

    /// The name of the first symbolic value equal to `value`, or null.
    const QString* findSymbolicValue(const FieldValue& value) const
    {
        return m_symbolicValues.find(value);
    }

    /// The value that means "not available"; empty when there is none.
    const FieldValue& getDoNotUseValue() const { return m_doNotUseValue; }
    bool hasDoNotUseValue() const { return !m_doNotUseValue.isEmpty(); }
    bool isDoNotUse(const FieldValue& value) const
    {
        return hasDoNotUseValue() && value == m_doNotUseValue;
    }

    Role getRole() const { return static_cast<Role>(m_role); }

    /// Whether messages may lack the field.
    bool isOptional() const { return m_isOptional; }
    /// Whether messages may have more than one value of it.
    bool isRepeated() const { return m_isRepeated; }
    /// Whether it is computed from other fields, not stored.
    bool isVirtual() const { return m_isVirtual; }
    FieldValue::RepresentationMode getRepresentationMode() const
    {
        return static_cast<FieldValue::RepresentationMode>(m_representationMode);
    }

    /// The bit ranges that this field is packed from, lowest first. They are fields of the message
    /// type as well.
    const QVector<const FieldInfo*>& getSubFieldInfos() const { return m_subFieldInfos; }

    /// One value of the field as getValueString(message) shows it, without unit.
    QString toScaledString(const FieldValue& value) const;

protected:
    /// Literals are copied, other texts shared; this holds for all texts passed in.
    FieldInfo(QString name, const FieldType& type);

    void setUnit(QString unit);
    void setScaleFactor(double factor);
    void setPrecision(signed char decimals);
    void addSymbolicValue(const FieldValue& value, QString name);
    void setDoNotUseValue(FieldValue value);
    void setRole(Role role);
    void setIsOptional(bool isOptional);
    void setIsRepeated(bool isRepeated);
    void setVirtual(bool isVirtual);
    void setRepresentationMode(FieldValue::RepresentationMode mode);
    /// The sub-field is not owned and outlives this one.
    void addSubFieldInfo(FieldInfo* subField);

private:
    /// Whether the value is shown as words instead of a number; these are then written to `text`.
    bool hasWords(const FieldValue& value, QString* text) const;
    QString scaledNumber(const FieldValue& value) const;
    QString storedNumber(const FieldValue& value) const;

    QString m_name;
    QString m_unit;
    FieldType m_type;
    FieldValue m_doNotUseValue;
    double m_scaleFactor = 1;
    SymbolicValues m_symbolicValues;
    QVector<const FieldInfo*> m_subFieldInfos;
    signed char m_precision = -1;
    uint8_t m_role = Unset;
    uint8_t m_representationMode = FieldValue::Default;
    bool m_hasScaleFactor = false;
    bool m_isOptional = false;
    bool m_isRepeated = false;
    bool m_isVirtual = false;
};
