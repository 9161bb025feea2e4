#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx/log/select/FieldTest.h"
#include "tqx/log/select/TypeSelection.h"
#include "tqx_log_export.h"

#include <bitset>
#include <string>
#include <unordered_map>
#include <vector>

namespace tqx
{

/// An expression with its names resolved: decides for which messages it holds.
///
/// A field means all its values in the message: one, or all elements of an array and of all
/// sub-blocks. A comparison holds when it holds for at least one available value, in the unit and
/// with the names of the description; so it never holds for messages without the field. `has` tests
/// for an available value. `any` holds when its whole condition holds for one and the same element
/// of a field of sub-blocks.
///
/// Immutable once made: any number of threads may use the same one.
class TQX_LOG_API Condition
{
public:
    /// Resolves names among the main types that `types` accepts. Throws DataError for an
    /// expression that cannot be parsed, names that do not exist, and comparisons that a field does
    /// not have.
    Condition(const std::string& text, const TypeSelection& types);

    /// Whether any of the fields belongs to that type. If not, accepts() returns the same for all
    /// its blocks, and for null.
    bool reads(uint16_t blockNumber) const { return m_readTypes[blockNumber]; }

    /// Whether the condition holds for the record of a main block. Null stands for a block that has
    /// none of the fields.
    bool accepts(const void* record) const;

private:
    struct Branch;

    /// The terms resolved for one type, and where the scopes lead.
    struct Tests {
        explicit Tests(const Expression& all);
        explicit Tests(const ExpressionScope& scope);

        const std::vector<FieldTest>& ofTerm(size_t term) const { return terms[term - firstTerm]; }
        const std::vector<Branch>& ofScope(size_t scope) const
        {
            return branches[scope - firstScope];
        }

        size_t firstTerm = 0;
        size_t firstScope = 0;
        std::vector<std::vector<FieldTest>> terms;
        std::vector<std::vector<Branch>> branches;
    };

    /// A field of sub-blocks and the tests of its elements.
    struct Branch {
        std::vector<FieldOfType> fields; ///< that lead to it, and itself
        Tests tests;
    };

    /// A type in which names are looked up.
    struct Place {
        const Kor::MessageApi::TQX_TypeLayout* type;
        uint16_t blockNumber; ///< of the main block that it is or that it is in
        Tests* tests;         ///< null when that is not selected
    };

    /// Where the names of a scope are looked up.
    struct Places {
        std::vector<Place> list;
        std::string owner; ///< name of the field whose elements they are; "" for main blocks
    };

    /// A field that a path leads to in one of the places.
    struct Found {
        const Place& place;
        FieldPath path;
    };

    void resolve(size_t node, const Places& places);
    void resolveTerm(size_t term, const Places& places);
    Places resolveScope(size_t scope, const Places& places);
    std::vector<Found> find(const std::vector<ExpressionWord>& path, const Places& places) const;
    bool holds(size_t node, const Tests& tests, const void* record) const;

    Schema m_schema;
    Expression m_expression;
    std::unordered_map<uint32_t, Tests> m_testsOfTypes; ///< by record type, of selected main types
    Tests m_noTests;
    std::bitset<TypeSelection::numbers> m_readTypes;
};

} // namespace tqx
