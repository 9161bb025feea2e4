#pragma once

#include <string>

namespace tqx::tool
{

/// A file that is written beside the one whose place it takes once it is complete: what was there
/// stays as it is until then.
class NewFile
{
public:
    /// For a file `target`, which is there already or can be created. Throws ToolError when it
    /// cannot be written, or is there and no regular file.
    explicit NewFile(const std::string& target);

    /// Removes what was written, unless it was put in place.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Where to write: an empty file.
    const std::string& getPath() const { return m_path; }

    /// Makes it the target. Throws ToolError.
    void putInPlace();

private:
    std::string m_target;
    std::string m_path; ///< empty once it is in place
};

} // namespace tqx::tool
