#include "TQX_DescribedType.h"
#include "read/Load.h"

#include <gtest/gtest.h>

#include <set>

using namespace korcg::generator;

// Whatever the built-in types derive, descriptions can derive, too.
TEST(Formulas, areThoseOfTheFormat)
{
    Errors errors;
    const Format format = load(readSources(TQX_DESCRIPTION, errors), errors);
    std::set<std::string> seen;
    for (const RecordType& type : format.types) {
        for (const Field& field : type.fields) {
            if (field.function.empty() || !seen.insert(field.function).second)
                continue;
            const Kor::MessageApi::TQX_Formula* formula =
                Kor::MessageApi::TQX_findFormula(field.function.c_str());
            ASSERT_NE(formula, nullptr) << field.function;
            EXPECT_EQ(TQX_argumentCount(*formula), field.inputs.size()) << field.function;
        }
    }
    EXPECT_GT(seen.size(), 10U);
}
