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
        inner.setIsMain(false);
        inner.addFieldInfo(&speed, 0, false);
        word.addSubFieldInfo(&bit);
        // In another order than that of the list.
        outer.addFieldInfo(&children, 3, false);
        outer.addFieldInfo(&word, 1, false);
        outer.addFieldInfo(&station, 0, true);
        outer.addFieldInfo(&bit, 2, false);
        format.addMessageInfo(&outer);
        format.addSubMessageInfo(&inner);
    }

    ToyFormat format{QStringLiteral("Toy")};
    ToyInfo outer{QStringLiteral("Outer")};
    ToyInfo inner{QStringLiteral("Inner")};
    ToyField speed{QStringLiteral("Speed"), FieldType::f32()};
    ToyField station{QStringLiteral("Station"), FieldType::u(16)};
    ToyField word{QStringLiteral("Word"), FieldType::u(8)};
    ToyField bit{QStringLiteral("Bit"), FieldType::u(1)};
    ToyField children{QStringLiteral("Children"), FieldType::subMessage(&inner)};
};

TEST_F(Metadata, DescribesTheTypes)
{
    EXPECT_EQ(format.getAllMessageInfos(), (QVector<const MessageInfo*>{&outer, &inner}));
    EXPECT_EQ(format.getMessageInfo(QStringLiteral("Inner")), &inner);
    EXPECT_EQ(format.getMessageInfo(QStringLiteral("inner")), nullptr);
    EXPECT_EQ(FormatInfo::getFormat(QStringLiteral("Toy")), &format);

    EXPECT_EQ(outer.getFieldInfos(), (QVector<const FieldInfo*>{&station, &word, &bit, &children}));
    EXPECT_EQ(outer.getFieldInfo(QStringLiteral("Bit")), &bit);
    EXPECT_EQ(outer.getFieldInfo(QStringLiteral("bit")), nullptr);
    for (const int index : {-1, 0, 1, 2, 3, 4})
        EXPECT_EQ(outer.isIdentifying(index), index == 0) << index;

    outer.setAttribute(QStringLiteral("number"), 0);
    outer.setAttribute(QStringLiteral("number"), 1);
    EXPECT_EQ(outer.getAttribute(QStringLiteral("number")), QVariant(1));
    EXPECT_TRUE(outer.getAttribute(QStringLiteral("colour")).isNull());
    EXPECT_EQ(outer.getAttributes().size(), 1);
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
        {"Toy:Outer:Station", &station},
        {"Toy:Outer:Word:Bit", &bit},
        {"Toy:Outer:Children", &children},
        {"Toy:Outer:Children:Speed", &speed},
        {"Toy:Inner:Speed", &speed},
        {"Toy:Outer:Wind", nullptr},
        {"Toy:Outer:Wind:Speed", nullptr},
        {"Toy:Outer:Station:Speed", nullptr},
        {"Toy:Outer:Children:Colour", nullptr},
        {"Toy:Outer:", nullptr},
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
        {"Toy:Storm:Speed", &format, "Unknown message \"Storm\" in the path \"Toy:Storm:Speed\"."},
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
    ToyMessage parent(&outer);
    ToyMessage child(&inner);
    EXPECT_TRUE(parent.getSubMessages().isEmpty());
    EXPECT_TRUE(std::as_const(parent).getSubMessages().isEmpty());
    EXPECT_EQ(parent.getRawRepresentationOf(&child), &child.values);
    EXPECT_EQ(parent.getRawRepresentationOf(nullptr), nullptr);
}

TEST_F(Metadata, CopiesOfAMessageHaveTheirOwnReferenceCount)
{
    const auto* message = new ToyMessage(&outer);
    message->addReference();
    const ToyMessage copy(*message);
    EXPECT_EQ(copy.getReferenceCount(), 0);
    auto* assigned = new ToyMessage(&inner);
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
