#pragma once

#include "model/Errors.h"
#include "model/Model.h"
#include "tqx/log/schema/AddedTypes.h"

#include <memory>

namespace tqx
{

/// Layouts, facts and formulas of the types of an addition that was read without errors. What the
/// decoder could not handle is reported; then the result is null.
std::shared_ptr<const AddedTypes> buildAddedTypes(const korcg::generator::Format& format,
                                                  korcg::generator::Errors& errors);

} // namespace tqx
