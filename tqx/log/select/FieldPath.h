#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx_log_export.h"

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"

#include <set>
#include <string_view>
#include <vector>

namespace tqx
{

/// A field of a type; both live as long as the codec.
struct FieldOfType {
    const Kor::MessageApi::TQX_TypeLayout* type;
    const Kor::MessageApi::TQX_FieldLayout* layout;

    const Kor::MessageApi::TQX_FieldFacts& facts() const { return TQX_factsOf(*type, *layout); }
};

/// A field and the sub-block fields that lead to it from a main block.
struct FieldPath {
    std::vector<FieldOfType> through;
    FieldOfType field;
};

/// How far names could be followed, for error messages.
struct UnknownField {
    size_t depth = 0;                      ///< the name that is not known
    std::set<std::string_view> candidates; ///< what was probably meant
};

/// The fields of a type that names lead to, from `first` on: a field of the type itself or, when it
/// has none of that name, all in its sub-blocks at any depth. Blanks in the name of a field are
/// written as underscores. When there is none, `unknown` is updated.
TQX_LOG_API std::vector<FieldPath> findFields(const Kor::MessageApi::TQX_TypeLayout& type,
                                              const std::vector<ExpressionWord>& names,
                                              size_t first, UnknownField& unknown);

} // namespace tqx
