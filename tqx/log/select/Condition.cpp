#include "tqx/log/select/Condition.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/FieldPath.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// The main type that the first of several names names, or null.
const TQX_TypeLayout* typeNamedBy(const std::vector<ExpressionWord>& path)
{
    const TQX_TypeLayout* type = path.size() > 1 ? findType(path.front().text) : nullptr;
    return type && type->blockNumber != 0 ? type : nullptr;
}

const std::vector<const TQX_TypeLayout*>& mainTypes()
{
    static const std::vector<const TQX_TypeLayout*> types = [] {
        std::vector<const TQX_TypeLayout*> list;
        forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber != 0)
                list.push_back(&type);
        });
        return list;
    }();
    return types;
}

std::string unknownFieldText(const ExpressionTerm& term, const UnknownField& unknown,
                             const TQX_TypeLayout* owner)
{
    const std::string& name = term.path[unknown.depth].text;
    if (unknown.depth == 0 && term.path.size() == 1) {
        const TQX_TypeLayout* layout = findType(name);
        if (layout && layout->blockNumber != 0)
            return name + " is a block; name a field of it, as " + name + ".TOW";
    }
    std::vector<std::string_view> candidates(unknown.candidates.begin(), unknown.candidates.end());
    const bool mayBeBlock = unknown.depth == 0 && term.path.size() > 1;
    if (mayBeBlock)
        forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber != 0)
                candidates.emplace_back(type.name);
        });
    const std::string kind = owner        ? "field of " + std::string(owner->name)
                             : mayBeBlock ? "block or field"
                                          : "field";
    return unknownName(kind, name, candidates);
}

} // namespace

Condition::Condition(const std::string& text, const TypeSelection& types)
    : expression(text), noTests(expression.terms().size())
{
    for (size_t i = 0; i < expression.terms().size(); ++i)
        resolve(i, types);
}

void Condition::resolve(size_t termIndex, const TypeSelection& types)
{
    const ExpressionTerm& term = expression.terms()[termIndex];
    const TQX_TypeLayout* owner = typeNamedBy(term.path);
    UnknownField unknown;
    std::string why;
    bool isKnown = false;
    bool isTest = false;
    bool isSelected = false;
    for (const TQX_TypeLayout* type : mainTypes()) {
        if (owner && owner != type)
            continue;
        for (const FieldPath& path : findFields(*type, term.path, owner ? 1 : 0, unknown)) {
            isKnown = true;
            const std::optional<FieldTest> test = FieldTest::make(path, term, why);
            if (!test)
                continue;
            isTest = true;
            if (!types.accepts(type->blockNumber))
                continue;
            isSelected = true;
            readTypes.set(type->blockNumber);
            testsOfTypes.try_emplace(type->recordType, noTests)
                .first->second[termIndex]
                .push_back(*test);
        }
    }
    if (!isKnown)
        expression.fail(term.path[unknown.depth].position, unknownFieldText(term, unknown, owner));
    if (!isTest)
        expression.fail(term.value.position, why);
    if (!isSelected)
        expression.fail(term.path.front().position, "no selected block has this field");
}

bool Condition::accepts(const void* record) const
{
    const auto tests =
        record ? testsOfTypes.find(static_cast<const KorcgHeader_s*>(record)->korcg_type)
               : testsOfTypes.end();
    return holds(expression.root(), tests == testsOfTypes.end() ? noTests : tests->second, record);
}

bool Condition::holds(size_t index, const Tests& tests, const void* record) const
{
    using Kind = Expression::Node::Kind;
    const Expression::Node& node = expression.node(index);
    switch (node.kind) {
    case Kind::And:
        return holds(node.left, tests, record) && holds(node.right, tests, record);
    case Kind::Or:
        return holds(node.left, tests, record) || holds(node.right, tests, record);
    case Kind::Not:
        return !holds(node.left, tests, record);
    default:
        for (const FieldTest& test : tests[node.left])
            if (test.passes(record))
                return true;
        return false;
    }
}

} // namespace tqx
