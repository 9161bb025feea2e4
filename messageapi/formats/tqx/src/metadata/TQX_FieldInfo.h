#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_FieldRow.h"
#include "TQX_Layout.h"
#include "tqx_export.h"

#include "FieldInfo.h"
#include "FieldValue.h"

#include <QString>

#include <atomic>

class QLocale;

/// Metadata of one TQX field. All behaviour of the generated field classes is here, driven by
/// the row that each passes; they add nothing but their singletons.
///
/// Field classes rely on a complete registry: call TQX_FormatInfo::getInstance() before any other
/// getInstance(). All operations are const and may be used from several threads.
class TQX_API TQX_FieldInfo : public FieldInfo
{
public:
    TQX_FieldInfo(const TQX_FieldInfo&) = delete;
    TQX_FieldInfo& operator=(const TQX_FieldInfo&) = delete;

    /// Whether the message is of the field's message type and carries the field: a repeated field
    /// needs at least one element, an optional one must be present.
    bool hasValue(const Message* message) const override;

    /// Number of elements, 0 for a message of another type and for an absent field. Numbers are
    /// counted up to the room in the record, text with its terminating zero.
    unsigned getNumberOfValues(const Message* message) const override;

    /// Element `index` as stored, in the field's type and width. Throws a MessageApiEvent of type
    /// FieldAccess for a message of another type, an absent field and an index out of range.
    FieldValue getValue(const Message* message, unsigned index) const override;

    /// The same without any check; the caller has called hasValue() and getNumberOfValues().
    FieldValue getValueUnchecked(const Message* message, unsigned index) const override;

    /// Text fields: the Latin-1 text up to the first zero. Sub-block fields: "submsg" for each
    /// element that is counted. Others: as the framework has it.
    QString getValueString(const Message* message) const override;

    /// Element `index` as text: its name, else the do-not-use text, else the stored number, with
    /// the unit when asked for. Floating-point values have no names. Empty where there is no such
    /// value.
    QString getValueString(const Message* message, unsigned index, bool withUnit) const override;

    /// The constant facts of the field.
    const TQX_FieldRow& row() const { return m_row; }
    const Kor::MessageApi::TQX_FieldFacts& facts() const { return m_facts; }
    const Kor::MessageApi::TQX_FieldLayout& layout() const { return m_field; }

protected:
    /// Field `index` of the type's field list.
    TQX_FieldInfo(const TQX_TypeRow& type, unsigned index);
    /// Likewise, with the facts of the type given.
    TQX_FieldInfo(const TQX_TypeRow& type, const Kor::MessageApi::TQX_FieldFacts* facts,
                  unsigned index);
    ~TQX_FieldInfo() override;

private:
    friend class TQX_MessageInfo;

    TQX_FieldInfo(const TQX_TypeRow& type, const Kor::MessageApi::TQX_TypeLayout& layout,
                  const Kor::MessageApi::TQX_FieldFacts& facts, unsigned index);

    void addSymbolicValues();
    FieldValue doNotUseValue() const;
    bool isOfOwnType(const Message* message) const;
    bool isOptionalHere() const;
    bool isPresent(const void* record) const;
    unsigned indexLimit(const void* record) const;
    [[noreturn]] void fail(const char* before, const char* after) const;
    FieldValue valueOf(const Message& message, const void* record, unsigned index) const;
    QString realText(const void* record, unsigned index, bool withUnit) const;
    QString integerText(const void* record, unsigned index, bool withUnit) const;
    QString withUnitWord(const QString& number, bool withUnit) const;
    const QLocale& locale() const;

    const TQX_FieldRow& m_row;
    const Kor::MessageApi::TQX_FieldFacts& m_facts;
    const Kor::MessageApi::TQX_FieldLayout& m_field;
    const Kor::MessageApi::TQX_TypeLayout& m_type;
    const MessageInfo* m_owner = nullptr; ///< set when the owner lists the field
    mutable std::atomic<const QLocale*> m_locale{nullptr};
};
