#include "emit/Emitters.h"
#include "emit/Groups.h"

#include "emit/messages/Accessors.h"
#include "emit/messages/Factory.h"
#include "emit/messages/MessageClass.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace korcg::generator
{

namespace
{

constexpr size_t sourceFiles = 16;

constexpr const char* groupText = R"({includes}#include "TQX_Getters.h"
#include "TQX_RawString.h"
#include "TQX_SubMessages.h"
#include "TQX_codec.h"

#include "MemLeakTracer.h"

#include <algorithm>

using namespace Kor::MessageApi;
{classes})";

std::string sourcesOf(const Selection& types)
{
    std::set<std::string> names;
    for (const RecordType* type : types)
        names.insert(sourceOf(*type));
    return names.empty() ? "no description file" : fmt::format("{}", fmt::join(names, ", "));
}

std::string groupSource(const Format& format, const Selection& types)
{
    std::string includes;
    std::string classes;
    for (const RecordType* type : types) {
        includes += fmt::format(
            "#include \"TQX_{0}_Message.h\"\n#include \"TQX_{0}_MessageInfo.h\"\n", type->name);
        classes += messageSource(format, *type);
    }
    return fmt::format(fmt::runtime(groupText), fmt::arg("includes", includes),
                       fmt::arg("classes", classes));
}

} // namespace

void emitMessages(const Format& format, const Selection& selection, Output& output)
{
    Selection classes;
    std::copy_if(selection.begin(), selection.end(), std::back_inserter(classes),
                 [](const RecordType* type) { return type->hasMessage; });
    for (const RecordType* type : classes) {
        output.write(fmt::format("TQX_{}_Message.h", type->name), sourceOf(*type),
                     messageHeader(format, *type));
    }
    int number = 0;
    for (const Selection& run : groups(classes, sourceFiles)) {
        output.write(fmt::format("TQX_Messages_{}.cpp", number++), sourcesOf(run),
                     groupSource(format, run));
    }
    const std::string source = "the description";
    output.write("TQX_Messages.h", source, allMessagesHeader(classes));
    output.write("TQX_MessageFactory.h", source, factoryHeader());
    output.write("TQX_MessageFactory.cpp", source, factorySource(classes));
    output.write("tests/TQX_MessageAccessors.h", source, accessorsHeader());
    output.write("tests/TQX_MessageAccessors.cpp", source, accessorsSource(classes));
}

} // namespace korcg::generator
