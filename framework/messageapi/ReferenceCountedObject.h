#pragma once

#include "messageapi_export.h"

#include <atomic>

/// An object on the heap that lives as long as there are references to it.
///
/// The count starts at 0, belongs to the object and is never copied. Counting is safe from any
/// thread.
class MESSAGEAPI_API ReferenceCountedObject
{
public:
    void addReference() const { m_count.fetch_add(1, std::memory_order_relaxed); }

    /// Drops one reference and deletes the object with the last one. Every call pairs with one of
    /// addReference.
    void removeReference() const;

    int getReferenceCount() const { return m_count.load(std::memory_order_relaxed); }

protected:
    ReferenceCountedObject() = default;
    ReferenceCountedObject(const ReferenceCountedObject&) {}
    ReferenceCountedObject& operator=(const ReferenceCountedObject&) { return *this; }
    virtual ~ReferenceCountedObject();

private:
    mutable std::atomic<int> m_count{0};
};
