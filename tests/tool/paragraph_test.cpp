#include "FieldRoles.h"
#include "MessageDecoder.h"
#include "RandomStream.h"
#include "Tool.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/value/FieldText.h"
#include "tqx/log/write/Paragraph.h"

#include "FieldInfo.h"
#include "Message.h"
#include "MessageInfo.h"
#include "TQX_FieldInfo.h"
#include "TQX_FormatInfo.h"
#include "tqx/framing/BlockFramer.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <cmath>
#include <cstring>
#include <random>

// Text against what the metadata says of messages.

using namespace Kor::MessageApi;

namespace
{

class Paragraphs : public testing::Test
{
protected:
    Paragraphs() { QLocale::setDefault(QLocale::c()); }
    ~Paragraphs() override { QLocale::setDefault(m_before); }

private:
    QLocale m_before;
};

/// As a paragraph shows it: without control characters, nor blanks at its end.
QString shownText(const QString& text)
{
    QString shown;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (code == '\n' || code == '\r' || code == '\t') {
            shown += code == '\n' ? "\\n" : code == '\r' ? "\\r" : "\\t";
        } else if (code < 0x20 || (code >= 0x7f && code < 0xa0)) {
            shown += QString("\\x%1").arg(code, 2, 16, QChar('0'));
        } else {
            shown += character;
        }
    }
    return shown;
}

QString withoutBlanksAtTheEnd(QString line)
{
    while (line.endsWith(' '))
        line.chop(1);
    return line;
}

QString storedText(const FieldInfo& info, const Message& message)
{
    QStringList texts;
    for (unsigned i = 0; i < info.getNumberOfValues(&message); ++i)
        texts += info.getValue(&message, i).toString();
    return texts.join(' ');
}

/// Messages from a main block down to the one in question.
using Chain = std::vector<const Message*>;

/// Whether all inputs of a field have a value, by what the metadata says of them.
bool hasInputs(const FieldInfo& info, const Chain& chain)
{
    for (const TQX_FieldInput& input :
         TQX_inputs(static_cast<const TQX_FieldInfo&>(info).facts())) {
        const Message* holder = chain[chain.size() - 1 - input.linksUp];
        const FieldInfo& field = *holder->getInfo()->getFieldInfos()[input.row];
        if (field.isDoNotUse(field.getValue(holder, 0)))
            return false;
    }
    return true;
}

size_t notAvailable = 0; ///< derived values that lack an input

QString scaledText(const FieldInfo& info, const Chain& chain)
{
    const Message& message = *chain.back();
    // Metadata knows single elements only; those of an array that is one value are shown together.
    if (static_cast<const TQX_FieldInfo&>(info).facts().has(TQX_FieldFacts::Whole)) {
        for (unsigned i = 0; i < info.getNumberOfValues(&message); ++i) {
            if (!info.isDoNotUse(info.getValue(&message, i)))
                return storedText(info, message);
        }
    }
    if (hasInputs(info, chain))
        return info.getValueString(&message);
    ++notAvailable;
    return Message::doNotUseString;
}

QString linesOf(const Chain& chain, bool stored, int indentation)
{
    const Message& message = *chain.back();
    constexpr int headerFields = 10;
    QVector<const FieldInfo*> infos = message.getInfo()->getFieldInfos();
    if (message.getInfo()->isMain())
        infos.remove(0, headerFields);
    QVector<const FieldInfo*> parts;
    for (const FieldInfo* info : infos)
        parts += info->getSubFieldInfos();
    const auto label = [&](const FieldInfo* info) {
        return QString(indentation + (parts.contains(info) ? 2 : 0), ' ') + info->getName();
    };
    int column = 0;
    for (const FieldInfo* info : infos) {
        if (!info->getType().getSubMessageInfo())
            column = std::max(column, label(info).size() + 2);
    }
    QString text;
    for (const FieldInfo* info : infos) {
        if (!info->hasValue(&message))
            continue;
        if (!info->getType().getSubMessageInfo()) {
            const bool isNumber = info->getType().getKind() != FieldKind::Ch;
            const QString value = stored && isNumber ? storedText(*info, message)
                                  : stored           ? info->getValueString(&message)
                                                     : scaledText(*info, chain);
            text +=
                withoutBlanksAtTheEnd(label(info).leftJustified(column) + shownText(value)) + '\n';
            continue;
        }
        for (unsigned i = 0; i < info->getNumberOfValues(&message); ++i) {
            Chain below = chain;
            below.push_back(info->getValue(&message, i).getSubMessage());
            text += label(info) + (info->isRepeated() ? QString("[%1]").arg(i) : "") + '\n' +
                    linesOf(below, stored, indentation + 4);
        }
    }
    return text;
}

/// Compares the paragraphs of a stream, what follows their first lines.
void compareParagraphs(const std::string& stream, bool stored)
{
    const tqx::FieldFilter everything;
    tqx::ValueStyle style;
    style.isStored = stored;
    tqx::Paragraph paragraph(everything, style);
    tqx::MessageDecoder messages;
    tqx::RecordDecoder records;
    tqx::BlockFramer framer;
    framer.append(reinterpret_cast<const uint8_t*>(stream.data()), stream.size());
    tqx::Buffer out;
    size_t compared = 0;
    for (; framer.hasBlock(); framer.takeBlock()) {
        const tqx::Block block = {framer.block().data, static_cast<uint16_t>(framer.block().size),
                                  framer.block().offset};
        messages.decode(block);
        ASSERT_GT(records.decode(block), 0);
        if (!messages.getMessage())
            continue;
        out.clear();
        paragraph.write(out, block, records.getRecord());
        const std::string_view lines = out.view().substr(out.view().find('\n') + 1);
        ASSERT_EQ(lines, linesOf({messages.getMessage()}, stored, 4).toStdString() + '\n')
            << tqx::describeBlock(block.getNumber());
        ++compared;
    }
    EXPECT_GT(compared, 600U);
}

uint64_t bitsOf(double value, bool isSingle)
{
    uint64_t word = 0;
    const auto single = static_cast<float>(value);
    if (isSingle) {
        std::memcpy(&word, &single, sizeof single);
    } else {
        std::memcpy(&word, &value, sizeof value);
    }
    return word;
}

} // namespace

TEST_F(Paragraphs, OfRandomBlocksAreTextsOfTheMetadata)
{
    notAvailable = 0;
    for (const bool stored : {false, true})
        compareParagraphs(randomStream(), stored);
    EXPECT_GT(notAvailable, 0U);
}

TEST_F(Paragraphs, OfALogAreTextsOfTheMetadata)
{
    const std::string log = runTool({"simulate", "--duration", "40"}).output;
    for (const bool stored : {false, true})
        compareParagraphs(log, stored);
}

// Numbers as they occur, not random bits: few digits, ties between two texts, both signs, and what
// means not available.
TEST_F(Paragraphs, FloatingPointNumbersAreRoundedAsTheMetadataDoes)
{
    std::mt19937_64 random(5);
    size_t numbers = 0;
    for (const TQX_TypeLayout* type : allTypes()) {
        const MessageInfo* message =
            TQX_FormatInfo::getInstance()->getMessageInfo(QLatin1String(type->name));
        for (int row = 0; message && row < type->fieldCount; ++row) {
            const TQX_FieldLayout& field = type->fields[row];
            const bool isSingle = field.type == TQX_MemberType::F32;
            if (!isSingle && field.type != TQX_MemberType::F64)
                continue;
            const FieldInfo& info = *message->getFieldInfos()[row];
            const tqx::FieldText text(field, TQX_fieldFacts(type->recordType)[row], false, false);
            const double unit = std::pow(10, -info.getPrecision()) / info.getScaleFactor();
            for (int i = 0; i < 200; ++i) {
                const auto halves = static_cast<int64_t>(random()) >> random() % 64;
                const double value = i == 0 && info.hasDoNotUseValue()
                                         ? info.getDoNotUseValue().toDouble()
                                         : static_cast<double>(halves) / 2 * unit;
                const FieldValue expected =
                    isSingle ? FieldValue::f32(static_cast<float>(value)) : FieldValue::f64(value);
                tqx::Buffer out;
                EXPECT_NE(text.append(out, bitsOf(value, isSingle)), info.isDoNotUse(expected));
                EXPECT_EQ(out.view(), info.toScaledString(expected).toStdString())
                    << type->name << "::" << field.name;
                ++numbers;
            }
        }
    }
    EXPECT_GT(numbers, 100000U);
}
