#include "tqx/log/record/RecordDecoder.h"

namespace tqx
{

RecordDecoder::RecordDecoder()
{
    TQX_init_context(&context);
}

int32_t RecordDecoder::decode(const Block& block)
{
    last = block;
    consumed = record.decode(&context, block.data, block.size);
    return consumed;
}

} // namespace tqx
