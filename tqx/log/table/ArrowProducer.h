#pragma once

#include "tqx/log/table/ArrowInterface.h"
#include "tqx_log_export.h"

#include <functional>

namespace tqx
{

/// Whatever makes a table batch by batch. Both may throw; what `out` held is forgotten, not
/// released, and it is as it was when they throw.
struct ArrowProducer {
    /// Describes the table as a struct of its columns. May be called any number of times.
    std::function<void(ArrowSchema& out)> describe;

    /// Writes the next batch; false at the end, and `out` is as it was.
    std::function<bool(ArrowArray& out)> next;
};

/// Exports a table through the Arrow C stream interface. What `out` held is forgotten, not
/// released. Its calls return 0, ENOMEM, the code of a std::system_error of the generic category,
/// or EIO for anything else that was thrown; get_last_error gives the text. The table ends with an
/// error. What the producer refers to must live until `out` is released. Throws std::bad_alloc, and
/// leaves `out` as it was.
TQX_LOG_API void exportStream(ArrowProducer producer, ArrowArrayStream& out);

} // namespace tqx
