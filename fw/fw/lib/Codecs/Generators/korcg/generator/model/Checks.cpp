#include "model/Checks.h"

namespace korcg::generator
{

void check(const Format&, Errors&) {}

} // namespace korcg::generator
