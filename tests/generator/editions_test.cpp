// The first edition is checked against its totals, and the ledger of later ones only grows.

#include "GeneratorTesting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace korcg::generator;

namespace
{

/// The description of this project with one piece of text replaced.
std::vector<Source> realWith(const std::string& before, const std::string& after)
{
    Errors errors;
    std::vector<Source> sources = readSources(DESCRIPTION_DIRECTORY, errors);
    int replaced = 0;
    for (Source& source : sources) {
        const std::size_t at = source.text.find(before);
        if (at == std::string::npos)
            continue;
        source.text.replace(at, before.size(), after);
        ++replaced;
    }
    EXPECT_EQ(1, replaced) << before;
    return sources;
}

/// What is reported, without the directory.
std::vector<std::string> errorsOf(const std::vector<Source>& sources)
{
    Errors errors;
    loadWithHistory(sources, errors, {});
    std::vector<std::string> lines = errors.report();
    for (std::string& line : lines)
        line.erase(0, line.rfind('/', line.find(": ")) + 1);
    return lines;
}

bool anyContains(const std::vector<std::string>& lines, const std::string& text)
{
    for (const std::string& line : lines) {
        if (line.find(text) != std::string::npos)
            return true;
    }
    return false;
}

constexpr char startOfDop[] = "  record: 164\n  generation: 2\n  flexrate: true\n  esoc: true\n"
                              "  timestamp: R\n  text: Dilution of precision\n  fields:\n";

TEST(FirstEdition, TakesNoFurtherField)
{
    EXPECT_EQ(errorsOf(realWith(startOfDop, startOfDop)), std::vector<std::string>());
    const std::vector<std::string> errors =
        errorsOf(realWith(startOfDop, startOfDop + std::string("    - {name: More, type: u8}\n")));
    EXPECT_TRUE(anyContains(errors, "the first DISABLED code gets code -5830 instead of -5829: the "
                                    "runs in front have 1 code too many"));
}

/// Nor does a wrong number of types keep the codes from being looked at.
TEST(FirstEdition, TakesNoFurtherType)
{
    const std::vector<std::string> errors = errorsOf(
        realWith("- block: DOP2\n", "- {block: More, number: 8000, record: 383, timestamp: "
                                    "R, message: false, fields: [{name: X, type: u8}]}\n\n"
                                    "- block: DOP2\n"));
    EXPECT_TRUE(anyContains(errors, "the first edition has 383 types, not 382"));
    EXPECT_TRUE(anyContains(errors, "record number 383 of More is above 382"));
    EXPECT_TRUE(anyContains(errors, "TQX_ERR_EOF gets code "));
}

const char growing[] = R"(format: TQX
registration: [A, B]
---
- {block: A, number: 4000, record: 1, timestamp: R, fields: [{name: X, type: u8}]}
- {block: B, number: 4001, edition: 2, timestamp: R, message: true, fields: [{name: X, type: u8}]}
)";

std::vector<std::string> errorsWith(const std::string& ledgerText,
                                    const char* description = growing)
{
    Errors errors;
    Ledger ledger("ledger.txt", ledgerText, false, errors);
    loadWithHistory({{"a.yaml", description}}, errors, {0, &ledger});
    return errors.report();
}

std::string grownLedger()
{
    Errors errors;
    Ledger ledger("ledger.txt", "", true, errors);
    loadWithHistory({{"a.yaml", growing}}, errors, {0, &ledger});
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(ledger.hasGrown());
    return ledger.text();
}

std::string replaced(std::string text, const std::string& before, const std::string& after)
{
    const std::size_t at = text.find(before);
    EXPECT_NE(at, std::string::npos) << before;
    return text.replace(at, before.size(), after);
}

TEST(LedgerOfEditions, NumbersWhatIsNew)
{
    const std::string text = grownLedger();
    EXPECT_NE(text.find("\n2 type 2 B\n2 code -17 TQX_ERR_B_SYNC1_EXT_BUFFER_OVERFLOW\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\n2 code -28 TQX_ERR_B_DISABLED\n"), std::string::npos) << text;
    EXPECT_EQ(errorsWith(text), std::vector<std::string>());
}

TEST(LedgerOfEditions, IsNeverChanged)
{
    const std::string text = grownLedger();
    struct Case {
        std::string ledger;
        const char* error;
    };
    const Case cases[] = {
        {"", "a.yaml:5: B and 12 more are not in the ledger yet; --update-ledger adds what is "
             "missing"},
        {text + "2 type 3 Gone\n", "ledger.txt:18: type Gone is no longer in the description"},
        {replaced(text, "2 type 2 B", "2 type 3 B"),
         "ledger.txt:5: B has the number 3, expected 2"},
        {replaced(text, "code -18 ", "code -19 "), "ledger.txt:7: TQX_ERR_B_SYNC2_EXT_BUFFER_"
                                                   "OVERFLOW has the number -19, expected -18"},
        {replaced(text, "2 code -17", "3 code -17"),
         "ledger.txt:7: TQX_ERR_B_SYNC2_EXT_BUFFER_OVERFLOW is of edition 2, but edition 3 has "
         "begun before it"},
        {replaced(text, "2 type 2 B", "2 typo 2 B"),
         "ledger.txt:5: '2 typo 2 B' is not an entry: edition, type or code, number, name"},
    };
    for (const Case& each : cases)
        EXPECT_TRUE(anyContains(errorsWith(each.ledger), each.error)) << each.error;
    // A code of another name: what it is called is no longer there.
    EXPECT_EQ(errorsWith(replaced(text, "TQX_ERR_B_X_EXT", "TQX_ERR_B_Y_EXT")).size(), 2U);
}

TEST(LedgerOfEditions, EditionsAreReadOneByOne)
{
    Errors errors;
    const std::vector<Source> sources = {{"a.yaml", growing}};
    const Format first = loadWithHistory(sources, errors, {1, nullptr});
    EXPECT_EQ(first.types.size(), 1U);
    EXPECT_EQ(first.codeNames.size(), 16U);
    const Format second = loadWithHistory(sources, errors, {2, nullptr});
    EXPECT_EQ(second.types.size(), 2U);
    EXPECT_EQ(second.codeNames.size(), 28U);
    EXPECT_TRUE(errors.empty());
    loadWithHistory(sources, errors, {3, nullptr});
    EXPECT_EQ(errors.report(), std::vector<std::string>({"--edition: there is no edition 3, the "
                                                         "latest is 2"}));
}

} // namespace
