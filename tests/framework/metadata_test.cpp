#include "QtPrinters.h"
#include "Toy.h"

#include <PathExpression.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace
{

class Metadata : public testing::Test
{
protected:
    Metadata()
    {
        m_inner.setIsMain(false);
        m_inner.addFieldInfo(&m_speed, 0, false);
        m_word.addSubFieldInfo(&m_bit);
        // In another order than that of the list.
        m_outer.addFieldInfo(&m_children, 3, false);
        m_outer.addFieldInfo(&m_word, 1, false);
        m_outer.addFieldInfo(&m_station, 0, true);
        m_outer.addFieldInfo(&m_bit, 2, false);
        m_format.addMessageInfo(&m_outer);
        m_format.addSubMessageInfo(&m_inner);
    }

    ToyFormat m_format{QStringLiteral("Toy")};
    ToyInfo m_outer{QStringLiteral("Outer")};
    ToyInfo m_inner{QStringLiteral("Inner")};
    ToyField m_speed{QStringLiteral("Speed"), FieldType::f32()};
    ToyField m_station{QStringLiteral("Station"), FieldType::u(16)};
    ToyField m_word{QStringLiteral("Word"), FieldType::u(8)};
    ToyField m_bit{QStringLiteral("Bit"), FieldType::u(1)};
    ToyField m_children{QStringLiteral("Children"), FieldType::subMessage(&m_inner)};
};

TEST_F(Metadata, DescribesTheTypes)
{
    EXPECT_EQ(m_format.getAllMessageInfos(), (QVector<const MessageInfo*>{&m_outer, &m_inner}));
    EXPECT_EQ(m_format.getMessageInfo(QStringLiteral("Inner")), &m_inner);
    EXPECT_EQ(m_format.getMessageInfo(QStringLiteral("inner")), nullptr);
    EXPECT_EQ(FormatInfo::getFormat(QStringLiteral("Toy")), &m_format);

    EXPECT_EQ(m_outer.getFieldInfos(),
              (QVector<const FieldInfo*>{&m_station, &m_word, &m_bit, &m_children}));
    EXPECT_EQ(m_outer.getFieldInfo(QStringLiteral("Bit")), &m_bit);
    EXPECT_EQ(m_outer.getFieldInfo(QStringLiteral("bit")), nullptr);
    for (const int index : {-1, 0, 1, 2, 3, 4})
        EXPECT_EQ(m_outer.isIdentifying(index), index == 0) << index;

    m_outer.setAttribute(QStringLiteral("number"), 0);
    m_outer.setAttribute(QStringLiteral("number"), 1);
    EXPECT_EQ(m_outer.getAttribute(QStringLiteral("number")), QVariant(1));
    EXPECT_TRUE(m_outer.getAttribute(QStringLiteral("colour")).isNull());
    EXPECT_EQ(m_outer.getAttributes().size(), 1);
}

TEST_F(Metadata, FormatsAreListedWhenTheirSetUpEnds)
{
    const auto isListed = [](const char* name) { return FormatInfo::getFormat(name) != nullptr; };
    {
        const ToyFormat::SetUp setUp;
        const ToyFormat slow(QStringLiteral("Slow"));
        {
            const ToyFormat::SetUp nested;
            const ToyFormat givenUp(QStringLiteral("GivenUp"));
        }
        EXPECT_FALSE(isListed("Slow"));
        std::thread([&] {
            const ToyFormat quick(QStringLiteral("Quick"));
            EXPECT_TRUE(isListed("Quick")) << "the set-up is that of another thread";
            EXPECT_FALSE(isListed("Slow"));
        }).join();
    }
    EXPECT_FALSE(isListed("Slow")) << "gone before it was listed";
    EXPECT_FALSE(isListed("GivenUp"));

    std::unique_ptr<ToyFormat> late;
    {
        const ToyFormat::SetUp setUp;
        late = std::make_unique<ToyFormat>(QStringLiteral("Late"));
        EXPECT_FALSE(isListed("Late"));
    }
    EXPECT_EQ(FormatInfo::getFormat("Late"), late.get());
    late.reset();
    EXPECT_FALSE(isListed("Late"));
}

TEST_F(Metadata, PathsLeadToFields)
{
    const std::vector<std::pair<const char*, const FieldInfo*>> rows = {
        {"Toy:Outer:Station", &m_station},      {"Toy:Outer:Word:Bit", &m_bit},
        {"Toy:Outer:Children", &m_children},    {"Toy:Outer:Children:Speed", &m_speed},
        {"Toy:Inner:Speed", &m_speed},          {"Toy:Outer:Wind", nullptr},
        {"Toy:Outer:Wind:Speed", nullptr},      {"Toy:Outer:Station:Speed", nullptr},
        {"Toy:Outer:Children:Colour", nullptr}, {"Toy:Outer:", nullptr},
    };
    for (const auto& [path, field] : rows)
        EXPECT_EQ(PathExpression::getUniqueFieldInfo(path), field) << path;
}

TEST_F(Metadata, PathsThroughTheUnknownThrow)
{
    const struct {
        const char* path;
        const FormatInfo* format;
        const char* text;
    } rows[] = {
        {"Tides:High:Level", nullptr, "Unknown format \"Tides\" in the path \"Tides:High:Level\"."},
        {"Toy:Storm:Speed", &m_format,
         "Unknown message \"Storm\" in the path \"Toy:Storm:Speed\"."},
        {"Toy:Inner", nullptr,
         "FORMAT:MESSAGE:FIELD is expected, not found in the path \"Toy:Inner\"."},
    };
    for (const auto& row : rows) {
        try {
            PathExpression::getUniqueFieldInfo(row.path);
            ADD_FAILURE() << row.path;
        } catch (const MessageApiEvent& event) {
            EXPECT_EQ(event.getType(), MessageApiEvent::FieldAccess);
            EXPECT_EQ(event.getText(), row.text);
            EXPECT_EQ(event.getFormatInfo(), row.format);
        }
    }
}

TEST_F(Metadata, MessagesHaveNoSubMessagesOfTheirOwn)
{
    ToyMessage parent(&m_outer);
    ToyMessage child(&m_inner);
    EXPECT_TRUE(parent.getSubMessages().isEmpty());
    EXPECT_TRUE(std::as_const(parent).getSubMessages().isEmpty());
    EXPECT_EQ(parent.getRawRepresentationOf(&child), &child.values);
    EXPECT_EQ(parent.getRawRepresentationOf(nullptr), nullptr);
}

TEST_F(Metadata, CopiesOfAMessageHaveTheirOwnReferenceCount)
{
    const auto* message = new ToyMessage(&m_outer);
    message->addReference();
    const ToyMessage copy(*message);
    EXPECT_EQ(copy.getReferenceCount(), 0);
    auto* assigned = new ToyMessage(&m_inner);
    assigned->addReference();
    *assigned = *message;
    message->addReference();
    message->removeReference();
    EXPECT_EQ(message->getReferenceCount(), 1);
    EXPECT_EQ(assigned->getReferenceCount(), 1);
    message->removeReference();
    assigned->removeReference();
}

} // namespace
