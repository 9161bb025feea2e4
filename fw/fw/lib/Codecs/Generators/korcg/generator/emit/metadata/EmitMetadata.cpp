#include "emit/Emitters.h"
#include "emit/metadata/MetadataHeaders.h"
#include "emit/metadata/MetadataSources.h"
#include "emit/metadata/Registration.h"

#include <algorithm>
#include <iterator>

namespace korcg::generator
{

void emitMetadata(const Selection& selection, Output& output)
{
    Selection types;
    std::copy_if(selection.begin(), selection.end(), std::back_inserter(types),
                 [](const RecordType* type) { return type->hasMessage; });

    emitTypeRowsHeader(types, output);
    for (const RecordType* type : types)
        emitMetadataHeaders(*type, output);
    emitMetadataSources(types, output);
    emitRegistration(types, output);
}

} // namespace korcg::generator
