#include "read/Load.h"

#include "model/Checks.h"
#include "model/Numbering.h"
#include "read/Reader.h"

namespace korcg::generator
{

Format load(const std::vector<Source>& sources, Errors& errors)
{
    Format format = readDescription(sources, errors);
    link(format, errors);
    placeFields(format);
    number(format, errors);
    check(format, errors);
    return format;
}

} // namespace korcg::generator
