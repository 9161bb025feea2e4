// test_fields LOG TYPES CONDITION [FROM]
//
// Shows which fields a condition asks for in the types that a pattern names, and for how many of
// their blocks each of its terms and all of it hold; from a time on, if there is one.

#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/FieldTest.h"
#include "tqx/log/select/NamePattern.h"
#include "tqx/log/select/TimeText.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/stream/BlockStream.h"

#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace
{

/// The tests of a term in each type that has its field.
using Tests = std::map<uint32_t, std::vector<tqx::FieldTest>>;

Tests testsOf(const tqx::ExpressionTerm& term, const std::string& pattern)
{
    Tests tests;
    tqx::forEachType([&](const Kor::MessageApi::TQX_TypeLayout& type) {
        if (type.blockNumber == 0 || !tqx::matchesPattern(type.name, pattern))
            return;
        tqx::UnknownField unknown;
        for (const tqx::FieldPath& path : tqx::findFields(type, term.path, 0, unknown)) {
            std::string why;
            std::printf("%s.%s", path.field.type->name, path.field.layout->name);
            if (auto test = tqx::FieldTest::make(path, term, why))
                tests[type.recordType].push_back(*test);
            std::printf("%s\n", why.empty() ? "" : (": " + why).c_str());
        }
    });
    return tests;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4 && argc != 5)
        return 1;
    try {
        const tqx::TypeSelection types({argv[2]}, {});
        const tqx::Condition condition(argv[3], types);
        const tqx::Expression expression(argv[3]);
        std::vector<Tests> terms;
        for (const tqx::ExpressionTerm& term : expression.terms()) {
            if (!term.isName && term.number.compare(tqx::Number::ofSigned(0)) < 0)
                std::printf("asks for a number below zero\n");
            terms.push_back(testsOf(term, argv[2]));
        }
        std::optional<tqx::GnssMillis> from;
        if (argc == 5)
            from = tqx::parseTime("FROM", argv[4]);

        std::vector<unsigned> counts(terms.size());
        unsigned blocks = 0;
        unsigned accepted = 0;
        const std::unique_ptr<tqx::ByteSource> source = tqx::openSource(argv[1]);
        tqx::BlockStream stream(*source);
        tqx::RecordDecoder decoder;
        for (tqx::Block block = {}; stream.next(block);) {
            if (!types.accepts(block.getNumber()) || (from && block.getTime() < from) ||
                decoder.decode(block, stream.getContext()) <= 0)
                continue;
            ++blocks;
            accepted += condition.accepts(decoder.getRecord()) ? 1 : 0;
            const uint32_t type = decoder.getDecoded().getHeader().korcg_type;
            for (size_t i = 0; i < terms.size(); ++i) {
                bool passes = false;
                for (const tqx::FieldTest& test : terms[i][type])
                    passes = passes || test.passes(decoder.getRecord());
                counts[i] += passes ? 1 : 0;
            }
        }
        for (const unsigned count : counts)
            std::printf("a term holds for %u\n", count);
        std::printf("the condition holds for %u of %u\n", accepted, blocks);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
