#pragma once

#include <string>

namespace tqx::tool
{

/// A file that is written beside its target and replaces it once complete: until then the target is
/// unchanged.
class NewFile
{
public:
    /// For a file `target`, which exists or can be created. Throws ToolError when it cannot be
    /// written, or exists and is not a regular file.
    explicit NewFile(const std::string& target);

    /// Removes the new file unless it has replaced the target.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Path of the empty file to write.
    const std::string& getPath() const { return m_path; }

    /// Replaces the target. Throws ToolError.
    void putInPlace();

private:
    std::string m_target;
    std::string m_path; ///< empty once it is in place
};

} // namespace tqx::tool
