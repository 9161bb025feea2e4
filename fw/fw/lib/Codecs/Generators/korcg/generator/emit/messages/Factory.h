#pragma once

#include "emit/Emitters.h"

#include <string>

namespace korcg::generator
{

/// TQX_Messages.h: the headers of all message classes.
std::string allMessagesHeader(const Selection& classes);

/// TQX_MessageFactory.h and .cpp: record to message, and the table of message types.
std::string factoryHeader();
std::string factorySource(const Selection& classes);

} // namespace korcg::generator
