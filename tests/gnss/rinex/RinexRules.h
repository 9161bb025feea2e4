#pragma once

#include <string>
#include <vector>

namespace rinex
{

/// What the public documents demand of observation files of 3.05 and 4.02, and where a file breaks
/// it: columns and labels of the header, records that must be there, epoch lines, counts of
/// satellites, order of epochs, digits. Empty for a file without fault.
std::vector<std::string> faultsOfObservations(const std::string& text);

/// The same of navigation files: lengths of lines, numbers of records by system and message.
std::vector<std::string> faultsOfNavigation(const std::string& text);

} // namespace rinex
