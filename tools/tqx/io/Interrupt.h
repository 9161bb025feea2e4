#pragma once

namespace tqx::tool
{

/// Requests to end, from the keyboard or by `kill`. The first one ends the inputs: what has been
/// read until then is still written and summed up. A second one ends the program at once.
namespace interrupt
{

/// Begins to take requests.
void watch();

/// Whether one has come.
bool hasCome();

/// Ends the program as the request would have ended it, if one has come.
void obey();

} // namespace interrupt

} // namespace tqx::tool
