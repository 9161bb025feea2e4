#include "RandomRecord.h"
#include "Records.h"
#include "TQX_MessageAccessors.h"

#include "TQX_FormatInfo.h"
#include "TQX_RecordAccess.h"

#include "FieldInfo.h"
#include "FloatRepresentation.h"
#include "MemLeakTracer.h"
#include "MessageInfo.h"

#include <QLocale>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <type_traits>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

template<typename Value>
FieldValue fieldValue(Value value, unsigned char width)
{
    if constexpr (std::is_same_v<Value, char>) {
        return FieldValue::ch(value);
    } else if constexpr (std::is_same_v<Value, float>) {
        return FieldValue::f32(value);
    } else if constexpr (std::is_same_v<Value, double>) {
        return FieldValue::f64(value);
    } else if constexpr (std::is_signed_v<Value>) {
        return FieldValue::i(value, width);
    } else {
        return FieldValue::u(value, width);
    }
}

/// What the walk over all messages has met.
struct Seen {
    std::map<std::string, qint64> messages; ///< class name to number
    std::set<std::string> present;          ///< optional fields
    std::set<std::string> absent;
    std::set<const FieldInfo*> doNotUse;
};

/// Compares what one message gives with its record and with the metadata, field by field.
class MessageCheck
{
public:
    MessageCheck(Message& message, const Message& ofAnotherType, Seen& seen)
        : m_message(message), m_stranger(ofAnotherType), m_record(RecordReader::recordOf(&message)),
          m_type(*TQX_layout(TQX_AS_KORCG_HEADER(m_record)->korcg_type)), m_seen(seen)
    {
        ++seen.messages[std::string("TQX_") + m_type.name + "_Message"];
    }

    void run()
    {
        const Rows<FieldAccessor> rows = fieldAccessors(m_type.recordType);
        ASSERT_EQ(rows.count, m_type.fieldCount);
        ASSERT_EQ(m_message.getInfo()->getFieldInfos().size(), m_type.fieldCount);
        EXPECT_EQ(m_message.getInfo()->getName(), m_type.name);
        m_message.getSubMessages(); // links the sub-records to their parents
        QStringList line;
        for (int i = 0; i < m_type.fieldCount; ++i) {
            m_field = &m_type.fields[i];
            m_info = m_message.getInfo()->getFieldInfos()[i];
            SCOPED_TRACE(std::string(m_type.name) + "::" + m_field->name);
            checkPresence(rows.rows[i]);
            m_texts.clear();
            std::visit([this](const auto& getters) { check(getters); }, rows.rows[i].getters);
            checkMessageOfAnotherType(&m_stranger);
            checkMessageOfAnotherType(nullptr);
            line += m_present ? m_texts.join(m_isText ? "" : " ") : QString();
            QVector<bool> mask(i + 1, false);
            mask[i] = true;
            EXPECT_EQ(m_message.getRawStringFor(mask), line.last());
        }
        EXPECT_EQ(m_message.getRawStringFor(QVector<bool>(m_type.fieldCount + 1, true)),
                  line.join(Message::fieldSeparator));
        EXPECT_EQ(m_message.getSubMessages(), m_children);
        EXPECT_EQ(std::as_const(m_message).getSubMessages(),
                  QVector<const Message*>(m_children.begin(), m_children.end()));
    }

private:
    void checkPresence(const FieldAccessor& row)
    {
        m_isText =
            m_field->kind == TQX_FieldKind::Text || m_field->kind == TQX_FieldKind::CountedText;
        m_present = TQX_isPresent(m_type, *m_field, m_record);
        ASSERT_EQ(row.has != nullptr, m_field->presence != TQX_Presence::Always);
        if (row.has) {
            EXPECT_EQ((m_message.*row.has)(), m_present);
            (m_present ? m_seen.present : m_seen.absent).insert(fieldName());
        }
        const unsigned count = m_present ? TQX_elementCount(m_type, *m_field, m_record) : 0;
        EXPECT_EQ(m_info->getNumberOfValues(&m_message), count);
        EXPECT_EQ(m_info->hasValue(&m_message), count > 0);
        EXPECT_EQ(m_info->getName(), m_field->name);
        EXPECT_EQ(thrownText([&] { m_info->getValue(&m_message, count); }), failureBehind());
    }

    std::string failure(const char* kind, const char* why) const
    {
        return std::string("Requesting value for ") + kind + " field " + m_type.name +
               "::" + m_field->name + why;
    }

    /// What getValue says beyond the last value.
    std::string failureBehind() const
    {
        if (!m_present && m_info->getName().startsWith("_padding"))
            return failure("an optional", " that is not present.");
        if (!m_present)
            return failure("a non-present optional", ".");
        return m_info->isRepeated() ? failure("an repeated", " with out of range index.")
                                    : failure("a non-repeated", " using non-zero index.");
    }

    void checkMessageOfAnotherType(const Message* message) const
    {
        EXPECT_FALSE(m_info->hasValue(message));
        EXPECT_EQ(m_info->getNumberOfValues(message), 0U);
        EXPECT_EQ(m_info->getValueString(message), "");
        EXPECT_EQ(m_info->getValueString(message, 0, true), "");
        EXPECT_EQ(thrownText([&] { m_info->getValue(message, 0); }),
                  failure("a", " that is not present in the given kind of message."));
    }

    std::string fieldName() const
    {
        std::string name = std::string(m_type.name) + "::" + m_field->name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    }

    template<typename Access>
    void expectAbsent(Access access) const
    {
        EXPECT_EQ(thrownText(access),
                  "Requesting value for a non-present optional field " + fieldName() + ".");
    }

    template<typename Access>
    void expectOutOfRange(Access access) const
    {
        EXPECT_EQ(thrownText(access), "Requesting value for an repeated field " + fieldName() +
                                          " with out of range index.");
    }

    template<typename Value>
    void checkElement(Value value, unsigned index)
    {
        ASSERT_EQ(sizeof value, TQX_elementSize(*m_field));
        EXPECT_EQ(std::memcmp(&value, TQX_element(*m_field, m_record, index), sizeof value), 0);
        const FieldValue expected = fieldValue(value, m_field->width);
        if (m_present) {
            for (const FieldValue& stored : {m_info->getValue(&m_message, index),
                                             m_info->getValueUnchecked(&m_message, index)}) {
                EXPECT_EQ(stored, expected);
                EXPECT_EQ(stored.getKind(), expected.getKind());
                EXPECT_EQ(stored.getWidth(), expected.getWidth());
            }
            for (const bool withUnit : {false, true}) {
                EXPECT_EQ(m_info->getValueString(&m_message, index, withUnit),
                          shownText(value, expected, withUnit));
            }
        }
        m_texts += rawText(value, m_info->isDoNotUse(expected));
    }

    template<typename Value>
    QString rawText(Value value, bool isDoNotUse)
    {
        if (isDoNotUse)
            m_seen.doNotUse.insert(m_info);
        if (isDoNotUse && Message::useDoNotUseString)
            return Message::doNotUseString;
        if constexpr (std::is_same_v<Value, char>) {
            return QString(QLatin1Char(value));
        } else if constexpr (std::is_floating_point_v<Value>) {
            return FloatRepresentation::getString(value, 'f', m_info->getPrecision(), false);
        } else {
            return QString::number(value);
        }
    }

    /// The same for people: integers by their names, numbers in the locale's way and with unit.
    template<typename Value>
    QString shownText(Value value, const FieldValue& stored, bool withUnit) const
    {
        if constexpr (std::is_same_v<Value, char>) {
            return value ? QString(QLatin1Char(value)) : QString();
        } else {
            for (const auto& symbol : m_info->getSymbolicValues()) {
                if (std::is_integral_v<Value> && symbol.value == stored)
                    return symbol.name;
            }
            if (m_info->isDoNotUse(stored))
                return Message::useDoNotUseString ? Message::doNotUseString : QString();
            QString number;
            if constexpr (std::is_floating_point_v<Value>) {
                number = FloatRepresentation::getString(value, 'f', m_info->getPrecision(), true);
            } else {
                number = QLocale().toString(value);
            }
            return !withUnit || m_info->getUnit().isEmpty() ? number
                                                            : number + ' ' + m_info->getUnit();
        }
    }

    template<typename Value>
    void check(const ScalarGetter<Value>& getter)
    {
        const auto read = [&] { return (m_message.*getter.get)(); };
        if (m_present) {
            checkElement(read(), 0);
        } else {
            expectAbsent(read);
        }
    }

    template<typename Value>
    void check(const RepeatedGetters<Value>& getters)
    {
        const unsigned count = (m_message.*getters.count)();
        ASSERT_EQ(count, TQX_elementCount(m_type, *m_field, m_record));
        EXPECT_EQ((m_message.*getters.array)(), TQX_element(*m_field, m_record));
        EXPECT_EQ((m_message.*getters.constArray)(), TQX_element(*m_field, m_record));
        const QVector<Value> vector = (m_message.*getters.vector)();
        const unsigned room = m_field->elements + (m_isText ? 1U : 0U);
        ASSERT_EQ(static_cast<unsigned>(vector.size()), std::min(count, room));
        for (int i = 0; i < vector.size(); ++i) {
            checkElement((m_message.*getters.at)(static_cast<unsigned>(i)),
                         static_cast<unsigned>(i));
            EXPECT_EQ(std::memcmp(&vector[i], (m_message.*getters.constArray)() + i, sizeof(Value)),
                      0);
        }
        expectOutOfRange([&] { (m_message.*getters.at)(static_cast<unsigned>(vector.size())); });
        if (m_isText) {
            const auto* text = reinterpret_cast<const char*>((m_message.*getters.constArray)());
            m_texts =
                QStringList(QString::fromLatin1(text, static_cast<int>(qstrnlen(text, room))));
            EXPECT_EQ(m_info->getValueString(&m_message), m_present ? m_texts.first() : QString());
        }
    }

    void check(const BlocksGetters& getters)
    {
        const unsigned count = (m_message.*getters.count)();
        ASSERT_EQ(count, TQX_elementCount(m_type, *m_field, m_record));
        const int first = m_children.size();
        for (unsigned i = 0; i < count; ++i) {
            Message* child = getters.at(&m_message, i);
            EXPECT_EQ(getters.constAt(&m_message, i), child);
            checkChild(child, i);
        }
        EXPECT_EQ(getters.vector(&m_message), getters.constVector(&m_message));
        EXPECT_EQ(getters.vector(&m_message),
                  QVector<const Message*>(m_children.begin() + first, m_children.end()));
        expectOutOfRange([&] { getters.at(&m_message, count); });
        expectOutOfRange([&] { getters.constAt(&m_message, count); });
    }

    void check(const EmbeddedGetters& getters)
    {
        if (m_present) {
            Message* child = getters.get(&m_message);
            EXPECT_EQ(getters.constGet(&m_message), child);
            checkChild(child, 0);
        } else {
            expectAbsent([&] { getters.get(&m_message); });
            expectAbsent([&] { getters.constGet(&m_message); });
        }
    }

    void checkChild(Message* child, unsigned index)
    {
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(child->getParentMessage(), &m_message);
        const void* record = RecordReader::recordOf(child);
        ASSERT_EQ(record, TQX_element(*m_field, m_record, index));
        EXPECT_EQ(TQX_AS_KORCG_HEADER(record)->korcg_father, m_record);
        EXPECT_EQ(m_info->getValue(&m_message, index).getSubMessage(), child);
        EXPECT_EQ(m_info->getValueUnchecked(&m_message, index).getSubMessage(), child);
        EXPECT_EQ(m_info->getValueString(&m_message, index, true), "submsg");
        MessageCheck(*child, m_message, m_seen).run();
        m_children += child;
        m_texts += "submsg";
    }

    Message& m_message;
    const Message& m_stranger;
    const void* m_record;
    const TQX_TypeLayout& m_type;
    Seen& m_seen;
    QVector<Message*> m_children;

    // The field being looked at, and the texts of its elements.
    const TQX_FieldLayout* m_field = nullptr;
    const FieldInfo* m_info = nullptr;
    bool m_isText = false;
    bool m_present = true;
    QStringList m_texts;
};

/// Settings that only the texts for people follow, or all texts.
class AllMessages : public testing::Test
{
protected:
    AllMessages()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        Message::fieldSeparator = ";";
        Message::doNotUseString = "n/a";
    }
    ~AllMessages() override
    {
        QLocale::setDefault(m_locale);
        Message::fieldSeparator = m_separator;
        Message::doNotUseString = m_doNotUse;
        Message::useDoNotUseString = true;
    }

    const QLocale m_locale;
    const QString m_separator = Message::fieldSeparator;
    const QString m_doNotUse = Message::doNotUseString;
};

TEST_F(AllMessages, GiveWhatTheirRecordsHold)
{
    TQX_FormatInfo::getInstance();
    const TQX_OSNMAKey_Message key(nullptr, false);
    const TQX_EndOfAtt1_Message end(nullptr, false);
    MemLeakTracer::reset();
    std::mt19937 generator(20240917);
    Seen seen;
    for (const TQX_MessageType& row : TQX_messageTypes()) {
        const TQX_TypeLayout& type = *TQX_layout(static_cast<uint32_t>(row.recordType));
        std::vector<int> selected;
        for (int i = 0; i < type.fieldCount; ++i) {
            if (type.fields[i].presence == TQX_Presence::Selected)
                selected.push_back(i);
        }
        for (unsigned round = 0; round < 16 + selected.size(); ++round) {
            TQX_AnyRecord_u area;
            type.init(&area);
            fillRandomly(type, &area, generator, round == 8 ? Fill::Full : Fill::Few);
            if (round >= 16)
                select(type, selected[round - 16], &area);
            // A sub-block alone has no revision, then one by the links to a main block.
            TQX_MainHeader_s main{};
            KorcgHeader_s between{0, 0, &main};
            auto* head = reinterpret_cast<TQX_MainHeader_s*>(&area);
            (type.blockNumber == 0 ? main : *head).Revision = static_cast<uint8_t>(round % 8);
            if (type.blockNumber == 0 && round >= 8)
                head->korcg_father = type.linksToMain == 1 ? static_cast<void*>(&main) : &between;
            const std::unique_ptr<Message> message(TQX_createMessage(&area));
            ASSERT_NE(message, nullptr) << type.name;
            EXPECT_EQ(message->getInfo(), row.info());
            Message::useDoNotUseString = round % 3 != 0;
            const bool isKey = message->getInfo() == key.getInfo();
            MessageCheck(*message, isKey ? static_cast<const Message&>(end) : key, seen).run();
            if (testing::Test::HasFailure())
                return;
        }
    }
    EXPECT_EQ(seen.messages.size(), messageMakers().count);
    for (const auto& [name, number] : seen.messages)
        EXPECT_EQ(MemLeakTracer::getTotalAllocations(name.c_str()), number) << name;
    EXPECT_EQ(MemLeakTracer::getUnbalancedNames().join(' ').toStdString(), "");
    std::vector<std::string> onlyOneWay;
    std::set_symmetric_difference(seen.present.begin(), seen.present.end(), seen.absent.begin(),
                                  seen.absent.end(), std::back_inserter(onlyOneWay));
    EXPECT_EQ(onlyOneWay, std::vector<std::string>()) << "always or never there";
    EXPECT_GT(seen.doNotUse.size(), 900U);
}

} // namespace
