#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tqx
{

/// Bytes with random access and a known size: a file, memory, the content of a compressed file.
/// Reading does not change the object: several threads may read at the same time, unless a class
/// documents otherwise.
class TQX_LOG_API RandomAccess
{
public:
    virtual ~RandomAccess();

    /// For messages: the path of a file.
    virtual const std::string& getName() const = 0;

    /// Total number of bytes, constant for the lifetime of the object.
    virtual uint64_t getSize() const = 0;

    /// Writes the bytes from `offset` on to `bytes` and returns how many: `count`, or as many as
    /// there are before getSize(). Throws SourceError with file and offset when they cannot be
    /// read, also when a file has shrunk; `bytes` is then unspecified.
    virtual size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const = 0;

    /// All bytes, if they are in memory; null otherwise. They live as long as the object.
    virtual const uint8_t* getBytes() const { return nullptr; }

protected:
    RandomAccess() = default;
    RandomAccess(const RandomAccess&) = default;
    RandomAccess& operator=(const RandomAccess&) = default;
};

/// Bytes in memory. They belong to the caller and must outlive the object.
class TQX_LOG_API MemoryAccess : public RandomAccess
{
public:
    /// `label` names it in messages.
    MemoryAccess(const uint8_t* data, size_t count, std::string label = "memory");

    const std::string& getName() const override { return m_name; }
    uint64_t getSize() const override { return m_size; }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override;
    const uint8_t* getBytes() const override { return m_content; }

private:
    const uint8_t* m_content;
    size_t m_size;
    std::string m_name;
};

} // namespace tqx
