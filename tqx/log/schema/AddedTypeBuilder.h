#pragma once

#include "model/Errors.h"
#include "model/Model.h"
#include "tqx/log/schema/AddedTypes.h"

#include <memory>

namespace tqx
{

/// Makes the layouts, facts and formulas of the types of an addition that was read without errors.
/// Reports what the decoder could not handle, and then returns null.
std::shared_ptr<const AddedTypes> buildAddedTypes(const korcg::generator::Format& format,
                                                  korcg::generator::Errors& errors);

} // namespace tqx
