#pragma once

#include "tqx/log/source/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace tqx::tool
{

/// A temporary file for data that can only be read once; removed with the object.
class Spool
{
public:
    /// Creates it in a folder. Throws ToolError when that fails.
    explicit Spool(const std::string& folder);
    ~Spool();
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// Appends bytes. Throws ToolError when there is no room for them.
    void add(const uint8_t* bytes, size_t size);

    /// Reads what was added, from the start. The spool must outlive the source, and nothing may be
    /// added after this call.
    std::unique_ptr<ByteSource> read();

private:
    [[noreturn]] void fail() const;

    std::string m_path;
    std::FILE* m_file;
};

} // namespace tqx::tool
