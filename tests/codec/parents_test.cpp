// Sub-blocks insist on the records above them, and only where they look something up there.

#include "Ancestors.h"
#include "FieldRoles.h"
#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cctype>
#include <string>

namespace
{

using namespace Kor::MessageApi;

const std::string father = "TQX_AS_KORCG_HEADER(p)->korcg_father";
const std::string grandfather = "TQX_AS_KORCG_HEADER(" + father + ")->korcg_father";

bool looksUpRevision(const TQX_TypeLayout& type)
{
    for (int i = 0; i < type.fieldCount; ++i) {
        if (isOnWire(type.fields[i]) && !type.fields[i].alwaysSent &&
            (type.fields[i].presence == TQX_Presence::SinceRevision ||
             type.fields[i].presence == TQX_Presence::OnlyRevision))
            return true;
    }
    return false;
}

bool looksUpLength(const TQX_TypeLayout& type)
{
    for (int i = 0; i < type.fieldCount; ++i) {
        if (type.fields[i].lengthInMain)
            return true;
    }
    return false;
}

// The blocks that own sub-blocks with a length or, of the last two, a revision to look up are
// asserted by name.
std::string kindText(const TQX_TypeLayout& type)
{
    const std::string name = ownerOf(type)->name;
    std::string kind;
    if (name == "GenMeasEpoch" || name == "MeasEpoch2") {
        kind = "MEASEPOCH_HEADER";
    } else if (looksUpLength(type) || name == "LBandTrackerStatus1" || name == "ExtSensorSetup1") {
        for (const char letter : name)
            kind += static_cast<char>(std::toupper(letter));
    }
    return kind.empty() ? kind : "TQX_IS_" + kind + "(" + father + ")";
}

std::string escaped(const std::string& text)
{
    std::string pattern;
    for (const char letter : text) {
        pattern += (std::isalnum(letter) != 0 || letter == '_' || letter == ' ')
                       ? std::string(1, letter)
                       : std::string("[") + letter + "]";
    }
    // A backslash is literal within brackets.
    return pattern;
}

// One entry and one selected content of everything.
void decode(const TQX_TypeLayout& type, void* parent)
{
    // The assertion goes to standard output.
    dup2(STDERR_FILENO, STDOUT_FILENO);
    const std::vector<uint8_t> bytes(400, 1);
    uint32_t offset = 0;
    AnyRecord record;
    decodeAlone(type, nullptr, bytes.data(), 400, &offset, parent, 0, record.get());
}

void expectAssertion(const TQX_TypeLayout& type, void* parent, const std::string& text)
{
    EXPECT_EXIT(decode(type, parent), testing::ExitedWithCode(1),
                escaped("messageapi\\formats\\tqx\\src\\generated\\TQX_codec:") + "[0-9]+" +
                    escaped(": Assertion failed '" + text + "'"))
        << type.name;
}

TEST(ParentsDeathTest, AreAssertedWhereTheyAreNeeded)
{
    KorcgHeader_s orphan = {1, 0, nullptr}; // a sub-block that owns nothing
    KorcgHeader_s child = {1, 0, &orphan};
    unsigned needy = 0;
    for (const TQX_TypeLayout* type : allTypes()) {
        if (type->linksToMain == 0)
            continue;
        if (!looksUpRevision(*type) && !looksUpLength(*type)) {
            const std::vector<uint8_t> bytes(2000, 1);
            uint32_t offset = 0;
            AnyRecord record;
            EXPECT_GT(
                decodeAlone(*type, nullptr, bytes.data(), 2000, &offset, nullptr, 0, record.get()),
                0)
                << type->name;
            continue;
        }
        ++needy;
        expectAssertion(*type, nullptr, father + " != NULL");
        if (const std::string kind = kindText(*type); !kind.empty()) {
            expectAssertion(*type, &orphan, kind);
        } else if (type->linksToMain == 1) {
            expectAssertion(*type, &orphan, "TQX_IS_BLOCK_HEADER(" + father + ")");
        } else {
            expectAssertion(*type, &orphan, grandfather + " != NULL");
            expectAssertion(*type, &child, "TQX_IS_BLOCK_HEADER(" + grandfather + ")");
        }
    }
    EXPECT_GT(needy, 40U);
}

// Two kinds of block hold the same entries.
TEST(Parents, OfMeasurementsAreOfEitherKind)
{
    const TQX_TypeLayout& type = *TQX_layout(308);
    for (const uint32_t kind : {370U, 371U}) {
        AnyRecord main;
        TQX_layout(kind)->init(main.get());
        const std::vector<uint8_t> bytes(200, 1);
        uint32_t offset = 0;
        AnyRecord record;
        EXPECT_EQ(
            decodeAlone(type, nullptr, bytes.data(), 200, &offset, main.get(), 0, record.get()),
            (20 + 12) * 8);
    }
}

} // namespace
