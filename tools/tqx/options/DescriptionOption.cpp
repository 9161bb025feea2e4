#include "options/DescriptionOption.h"

#include "io/ToolError.h"
#include "io/Words.h"
#include "tqx/log/DataError.h"

namespace tqx::tool
{

void DescriptionOption::add(CLI::App& command)
{
    command
        .add_option("--description", m_paths,
                    "Add the blocks described in this YAML file, or in the *.yaml files of this "
                    "folder, to the built-in ones; can be given more than once")
        ->allow_extra_args(false)
        ->type_name("PATH");
}

const Schema& DescriptionOption::getSchema() const
{
    if (m_schema)
        return *m_schema;
    try {
        m_schema = Schema::read(m_paths);
    } catch (const DataError& error) {
        std::string text = error.what();
        for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
            words::say(text.substr(0, end));
            text.erase(0, end + 1);
        }
        throw ToolError(text);
    }
    return *m_schema;
}

} // namespace tqx::tool
