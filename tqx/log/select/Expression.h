#pragma once

#include "tqx/log/select/Number.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// A name or value and its place in the text of an expression.
struct ExpressionWord {
    std::string text;
    size_t position;
};

enum class Comparison { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, Like, Has };

/// One test of a field: `path op value`, or `has path`.
struct ExpressionTerm {
    std::vector<ExpressionWord> path; ///< names between points, never empty
    Comparison comparison;
    ExpressionWord value; ///< as written, a name without its quotes; nothing for Has
    bool isName = false;  ///< the value is in quotes
    Number number;        ///< for values without quotes
};

/// The condition of `any` on the elements of a field. Terms, and scopes within it, have consecutive
/// numbers.
struct ExpressionScope {
    std::vector<ExpressionWord> path; ///< of the field, never empty
    size_t firstTerm = 0;
    size_t endTerm = 0;
    size_t firstScope = 0; ///< of those within
    size_t endScope = 0;
};

/// A condition on the fields of messages, parsed into a tree. The grammar, loosest binding first:
///
///     condition = both { "or" both }
///     both      = test { "and" test }
///     test      = "not" test | "(" condition ")" | "has" field | field op value
///               | field "like" 'name' | "any" "(" field ":" condition ")"
///     field     = name { "." name }
///     op        = "==" | "!=" | "<" | "<=" | ">" | ">="
///     value     = number | 0x number | 'name' | "name"
///
/// Names are not resolved here. Immutable once made.
class TQX_LOG_API Expression
{
public:
    /// A node; the children of And and Or are other nodes, Not has one, Term is terms()[left]. Any
    /// has one, left, for the elements of scopes()[right].
    struct Node {
        enum class Kind { And, Or, Not, Term, Any };
        Kind kind;
        size_t left;
        size_t right;
    };

    /// Throws DataError for a text that is not an expression, see fail(). `option` is the option
    /// that it was given with, named in errors; it must outlive this object.
    explicit Expression(std::string text, const char* option = "--where");

    /// Terms and scopes are in the order of the text; nodes follow their children, the root is
    /// last. They live as long as the expression.
    const std::vector<ExpressionTerm>& terms() const { return m_allTerms; }
    const std::vector<ExpressionScope>& scopes() const { return m_allScopes; }
    const Node& node(size_t index) const { return m_nodes[index]; }
    size_t root() const { return m_nodes.size() - 1; }

    /// Throws DataError: the option, `why`, then the expression, then a line that points to
    /// `position` in it.
    [[noreturn]] void fail(size_t position, const std::string& why) const;

private:
    friend class ExpressionParser;

    std::string m_source;
    const char* m_option;
    std::vector<ExpressionTerm> m_allTerms;
    std::vector<ExpressionScope> m_allScopes;
    std::vector<Node> m_nodes; ///< children before their parents
};

} // namespace tqx
