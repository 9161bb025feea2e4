#include "tqx/log/select/RowCondition.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/TypeNames.h"

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// A test of the record of a row or of one that it is in.
struct LinkedTest {
    size_t linksUp; ///< parent links to the record
    FieldTest test;
};

/// A field and how many levels of records above that of a row have it.
struct LinkedPath {
    size_t linksUp;
    FieldPath path;
};

const TQX_FieldLayout* findField(const TQX_TypeLayout& type, const std::string& name)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        if (equalFields(type.fields[row].name, name))
            return type.fields + row;
    }
    return nullptr;
}

} // namespace

class RowCondition::Tests
{
public:
    std::vector<std::vector<LinkedTest>> terms; ///< at most one for each
};

/// The types of the records from the main block to a row, and the fields between them.
struct RowCondition::Table {
    std::vector<const TQX_TypeLayout*> types;
    Path path;

    /// The field that names from `at` on lead to from the record of a level.
    std::optional<LinkedPath> findFrom(size_t level, const std::vector<ExpressionWord>& names,
                                       size_t at) const
    {
        const TQX_TypeLayout* type = types[level];
        std::vector<FieldOfType> through;
        for (;; ++at) {
            const TQX_FieldLayout* field = findField(*type, names[at].text);
            if (!field)
                return std::nullopt;
            if (at + 1 == names.size())
                return LinkedPath{types.size() - 1 - level, {through, {type, field}}};
            if (field->kind == TQX_FieldKind::Embedded) {
                through.push_back({type, field});
                type = field->sub;
            } else if (through.empty() && level < path.size() && path[level] == field) {
                type = types[++level];
            } else {
                return std::nullopt;
            }
        }
    }

    std::optional<LinkedPath> find(const std::vector<ExpressionWord>& names) const
    {
        const bool namesBlock = names.size() > 1 && equalNames(types.front()->name, names[0].text);
        for (size_t level = types.size(); level-- != 0;) {
            if (std::optional<LinkedPath> found = findFrom(level, names, namesBlock ? 1 : 0))
                return found;
        }
        return std::nullopt;
    }
};

RowCondition::RowCondition(const std::string& text, const TypeSelection& types)
    : m_schema(types.getSchema()), m_expression(text, "--rows")
{
    if (!m_expression.scopes().empty()) {
        m_expression.fail(m_expression.scopes().front().path.front().position,
                          "any is only for blocks; a row has one element of each array");
    }
    std::vector<Term> terms(m_expression.terms().size());
    types.getSchema().forEachType([&](const TQX_TypeLayout& type) {
        if (type.blockNumber == 0 || !types.accepts(type.blockNumber))
            return;
        Table table = {{&type}, {}};
        addTables(table, terms);
    });
    checkTerms(terms);
}

RowCondition::~RowCondition() = default;

/// Makes the tests for a table and all those below it.
void RowCondition::addTables(Table& table, std::vector<Term>& terms)
{
    const TQX_TypeLayout& type = *table.types.back();
    Tests tests;
    tests.terms.resize(terms.size());
    for (size_t i = 0; i < terms.size(); ++i) {
        const std::optional<LinkedPath> found = table.find(m_expression.terms()[i].path);
        if (!found)
            continue;
        terms[i].isKnown = true;
        const std::optional<FieldTest> test =
            FieldTest::make(found->path, m_expression.terms()[i], terms[i].why);
        if (!test)
            continue;
        terms[i].isTest = true;
        tests.terms[i].push_back({found->linksUp, *test});
    }
    m_tests.emplace(std::pair(table.types.front()->recordType, table.path), std::move(tests));
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        m_names.insert(field.name);
        if (field.kind != TQX_FieldKind::Blocks)
            continue;
        table.types.push_back(field.sub);
        table.path.push_back(&field);
        addTables(table, terms);
        table.types.pop_back();
        table.path.pop_back();
    }
}

void RowCondition::checkTerms(const std::vector<Term>& terms) const
{
    for (size_t i = 0; i < terms.size(); ++i) {
        const ExpressionTerm& term = m_expression.terms()[i];
        if (!terms[i].isKnown) {
            std::string name;
            for (const ExpressionWord& word : term.path)
                name += (name.empty() ? "" : ".") + word.text;
            m_expression.fail(
                term.path.front().position,
                unknownName("field of a selected row", name, {m_names.begin(), m_names.end()}));
        }
        if (!terms[i].isTest)
            m_expression.fail(term.value.position, terms[i].why);
    }
}

const RowCondition::Tests* RowCondition::find(const TQX_TypeLayout& type, const Path& path) const
{
    const auto found = m_tests.find({type.recordType, path});
    return found == m_tests.end() ? nullptr : &found->second;
}

bool RowCondition::accepts(const Tests& tests, const void* record) const
{
    return holds(m_expression.root(), tests, record);
}

bool RowCondition::holds(size_t index, const Tests& tests, const void* record) const
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
    case Kind::Any: // refused
    case Kind::Term:
        break;
    }
    for (const LinkedTest& each : tests.terms[node.left]) {
        const void* owner = record;
        for (size_t i = 0; owner && i < each.linksUp; ++i)
            owner = static_cast<const KorcgHeader_s*>(owner)->korcg_father;
        if (owner && each.test.passes(owner))
            return true;
    }
    return false;
}

} // namespace tqx
