#include "tqx/log/select/Condition.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/Elements.h"
#include "tqx/log/select/FieldPath.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// The main type that the first of several names names, or null.
const TQX_TypeLayout* typeNamedBy(const std::vector<ExpressionWord>& path, const Schema& schema)
{
    const TQX_TypeLayout* type = path.size() > 1 ? schema.findType(path.front().text) : nullptr;
    return type && type->blockNumber != 0 ? type : nullptr;
}

std::vector<const TQX_TypeLayout*> mainTypes(const Schema& schema)
{
    std::vector<const TQX_TypeLayout*> list;
    schema.forEachType([&](const TQX_TypeLayout& type) {
        if (type.blockNumber != 0)
            list.push_back(&type);
    });
    return list;
}

/// `owner` is the name of what the names are looked up in, "" for all main blocks.
std::string unknownFieldText(const std::vector<ExpressionWord>& path, const UnknownField& unknown,
                             const std::string& owner, const Schema& schema)
{
    const std::string& name = path[unknown.depth].text;
    if (owner.empty() && path.size() == 1) {
        const TQX_TypeLayout* layout = schema.findType(name);
        if (layout && layout->blockNumber != 0)
            return name + " is a block; name a field of it, as " + name + ".TOW";
    }
    std::vector<std::string_view> candidates(unknown.candidates.begin(), unknown.candidates.end());
    const bool mayBeBlock = owner.empty() && unknown.depth == 0 && path.size() > 1;
    if (mayBeBlock) {
        schema.forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber != 0)
                candidates.emplace_back(type.name);
        });
    }
    const std::string kind = !owner.empty() ? "field of " + owner
                             : mayBeBlock   ? "block or field"
                                            : "field";
    return unknownName(kind, name, candidates);
}

} // namespace

Condition::Tests::Tests(const Expression& all)
    : terms(all.terms().size()), branches(all.scopes().size())
{
}

Condition::Tests::Tests(const ExpressionScope& scope)
    : firstTerm(scope.firstTerm), firstScope(scope.firstScope),
      terms(scope.endTerm - scope.firstTerm), branches(scope.endScope - scope.firstScope)
{
}

Condition::Condition(const std::string& text, const TypeSelection& types)
    : m_schema(types.getSchema()), m_expression(text), m_noTests(m_expression)
{
    Places places;
    for (const TQX_TypeLayout* type : mainTypes(m_schema)) {
        Tests* tests = nullptr;
        if (types.accepts(type->blockNumber))
            tests = &m_testsOfTypes.emplace(type->recordType, m_expression).first->second;
        places.list.push_back({type, type->blockNumber, tests});
    }
    resolve(m_expression.root(), places);
}

// In the order of the text, so that what is wrong first is reported.
void Condition::resolve(size_t index, const Places& places)
{
    using Kind = Expression::Node::Kind;
    const Expression::Node& node = m_expression.node(index);
    switch (node.kind) {
    case Kind::And:
    case Kind::Or:
        resolve(node.left, places);
        return resolve(node.right, places);
    case Kind::Not:
        return resolve(node.left, places);
    case Kind::Any:
        return resolve(node.left, resolveScope(node.right, places));
    case Kind::Term:
        return resolveTerm(node.left, places);
    }
}

/// At least one.
std::vector<Condition::Found> Condition::find(const std::vector<ExpressionWord>& path,
                                              const Places& places) const
{
    const TQX_TypeLayout* type = places.owner.empty() ? typeNamedBy(path, m_schema) : nullptr;
    std::vector<Found> found;
    UnknownField unknown;
    for (const Place& place : places.list) {
        if (type && type != place.type)
            continue;
        for (const FieldPath& each : findFields(*place.type, path, type ? 1 : 0, unknown))
            found.push_back({place, each});
    }
    if (found.empty()) {
        m_expression.fail(
            path[unknown.depth].position,
            unknownFieldText(path, unknown, type ? type->name : places.owner, m_schema));
    }
    return found;
}

void Condition::resolveTerm(size_t index, const Places& places)
{
    const ExpressionTerm& term = m_expression.terms()[index];
    std::string why;
    bool isTest = false;
    bool isSelected = false;
    for (const Found& each : find(term.path, places)) {
        const std::optional<FieldTest> test = FieldTest::make(each.path, term, why);
        if (!test)
            continue;
        isTest = true;
        Tests* const tests = each.place.tests;
        if (!tests)
            continue;
        isSelected = true;
        m_readTypes.set(each.place.blockNumber);
        tests->terms[index - tests->firstTerm].push_back(*test);
    }
    if (!isTest)
        m_expression.fail(term.value.position, why);
    if (!isSelected)
        m_expression.fail(term.path.front().position, "no selected block has this field");
}

/// The types of the elements that it is about.
Condition::Places Condition::resolveScope(size_t index, const Places& places)
{
    const ExpressionScope& scope = m_expression.scopes()[index];
    Places inner = {{}, scope.path.back().text};
    const std::vector<Found> all = find(scope.path, places);
    for (const Found& each : all) {
        if (each.path.field.layout->recordType == 0)
            continue;
        Tests* const tests = each.place.tests;
        if (tests) {
            std::vector<FieldOfType> fields = each.path.through;
            fields.push_back(each.path.field);
            tests->branches[index - tests->firstScope].push_back({std::move(fields), Tests(scope)});
        }
    }
    // The branches stay where they are from here on.
    const Place* last = nullptr;
    size_t branch = 0;
    for (const Found& each : all) {
        const TQX_TypeLayout* type = each.path.field.layout->sub;
        if (!type)
            continue;
        branch = &each.place == last ? branch + 1 : 0;
        last = &each.place;
        Tests* const tests = each.place.tests;
        inner.list.push_back(
            {type, each.place.blockNumber,
             tests ? &tests->branches[index - tests->firstScope][branch].tests : nullptr});
    }
    if (inner.list.empty()) {
        m_expression.fail(scope.path.back().position,
                          inner.owner + " holds no sub-blocks, which any requires");
    }
    return inner;
}

bool Condition::accepts(const void* record) const
{
    const auto tests =
        record ? m_testsOfTypes.find(static_cast<const KorcgHeader_s*>(record)->korcg_type)
               : m_testsOfTypes.end();
    return holds(m_expression.root(), tests == m_testsOfTypes.end() ? m_noTests : tests->second,
                 record);
}

bool Condition::holds(size_t index, const Tests& tests, const void* record) const
{
    using Kind = Expression::Node::Kind;
    const Expression::Node& node = m_expression.node(index);
    switch (node.kind) {
    case Kind::And:
        return holds(node.left, tests, record) && holds(node.right, tests, record);
    case Kind::Or:
        return holds(node.left, tests, record) || holds(node.right, tests, record);
    case Kind::Not:
        return !holds(node.left, tests, record);
    case Kind::Any:
        for (const Branch& branch : tests.ofScope(node.right)) {
            const auto meets = [&](const void* element) {
                return holds(node.left, branch.tests, element);
            };
            if (anyElement(branch.fields, record, meets))
                return true;
        }
        return false;
    case Kind::Term:
        break;
    }
    for (const FieldTest& test : tests.ofTerm(node.left)) {
        if (test.passes(record))
            return true;
    }
    return false;
}

} // namespace tqx
