#include "tqx/log/select/Condition.h"

#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/FieldPath.h"

#include "Message.h"
#include "MessageInfo.h"
#include "TQX_FormatInfo.h"

#include <utility>

namespace tqx
{

using Kor::MessageApi::TQX_TypeLayout;

namespace
{

/// The main type that the first of several names names, or null.
const MessageInfo* typeNamedBy(const std::vector<ExpressionWord>& path)
{
    const TQX_TypeLayout* layout = path.size() > 1 ? findType(path.front().text) : nullptr;
    if (!layout || layout->blockNumber == 0)
        return nullptr;
    return TQX_FormatInfo::getInstance()->getMessageInfo(QString::fromLatin1(layout->name));
}

struct MainType {
    const MessageInfo* info;
    uint16_t number;
};

const std::vector<MainType>& mainTypes()
{
    static const std::vector<MainType> types = [] {
        std::vector<MainType> list;
        for (const MessageInfo* info : TQX_FormatInfo::getInstance()->getMessageInfos())
            list.push_back({info, findType(info->getName().toStdString())->blockNumber});
        return list;
    }();
    return types;
}

std::string unknownFieldText(const ExpressionTerm& term, const UnknownField& unknown,
                             const MessageInfo* owner)
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
    const std::string kind = owner        ? "field of " + owner->getName().toStdString()
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
    const MessageInfo* owner = typeNamedBy(term.path);
    UnknownField unknown;
    std::string why;
    bool isKnown = false;
    bool isTest = false;
    bool isSelected = false;
    for (const auto& [type, number] : mainTypes()) {
        if (owner && owner != type)
            continue;
        for (const FieldPath& path : findFields(*type, term.path, owner ? 1 : 0, unknown)) {
            isKnown = true;
            const std::optional<FieldTest> test = FieldTest::make(path, term, why);
            if (!test)
                continue;
            isTest = true;
            if (!types.accepts(number))
                continue;
            isSelected = true;
            readTypes.set(number);
            testsOfTypes.try_emplace(type, noTests).first->second[termIndex].push_back(*test);
        }
    }
    if (!isKnown)
        expression.fail(term.path[unknown.depth].position, unknownFieldText(term, unknown, owner));
    if (!isTest)
        expression.fail(term.value.position, why);
    if (!isSelected)
        expression.fail(term.path.front().position, "no selected block has this field");
}

bool Condition::accepts(const Message* message) const
{
    const auto tests = message ? testsOfTypes.find(message->getInfo()) : testsOfTypes.end();
    return holds(expression.root(), tests == testsOfTypes.end() ? noTests : tests->second, message);
}

bool Condition::holds(size_t index, const Tests& tests, const Message* message) const
{
    using Kind = Expression::Node::Kind;
    const Expression::Node& node = expression.node(index);
    switch (node.kind) {
    case Kind::And:
        return holds(node.left, tests, message) && holds(node.right, tests, message);
    case Kind::Or:
        return holds(node.left, tests, message) || holds(node.right, tests, message);
    case Kind::Not:
        return !holds(node.left, tests, message);
    default:
        for (const FieldTest& test : tests[node.left])
            if (test.passes(*message))
                return true;
        return false;
    }
}

} // namespace tqx
