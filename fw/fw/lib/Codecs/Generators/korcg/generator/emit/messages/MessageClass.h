#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

/// TQX_<Name>_Message.h after its head comment.
std::string messageHeader(const Format& format, const RecordType& type);

/// All member functions of TQX_<Name>_Message, to be placed in a source file that includes the
/// headers of the class and uses namespace Kor::MessageApi.
std::string messageSource(const Format& format, const RecordType& type);

} // namespace korcg::generator
