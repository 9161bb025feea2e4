#include "ReferenceCountedObject.h"

ReferenceCountedObject::~ReferenceCountedObject() = default;

void ReferenceCountedObject::removeReference() const
{
    if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}
