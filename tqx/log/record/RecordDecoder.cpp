#include "tqx/log/record/RecordDecoder.h"

#include <cstring>

namespace tqx
{

using namespace Kor::MessageApi;

RecordDecoder::RecordDecoder() : record(new TQX_AnyRecord_u)
{
    TQX_init_context(&context);
    std::memset(static_cast<void*>(record.get()), 0, sizeof(TQX_MainHeader_s));
}

RecordDecoder::~RecordDecoder()
{
    clear();
}

// The driver leaves a record that it does not get to untouched; a head of zeros makes the release
// of such a record do nothing.
void RecordDecoder::clear()
{
    TQX_release(record.get());
    std::memset(static_cast<void*>(record.get()), 0, sizeof(TQX_MainHeader_s));
}

int32_t RecordDecoder::decode(const Block& block)
{
    clear();
    last = block;
    consumed = TQX_decode(&context, block.data, block.size, record.get());
    return consumed;
}

} // namespace tqx
