#pragma once

namespace tqx::tool
{

/// Requests to end, from the keyboard or by `kill`. The first one ends the inputs: what has been
/// read until then is still written and summarised. A second one ends the program at once.
namespace interrupt
{

/// Begins to accept requests.
void watch();

/// Whether a request has come.
bool hasCome();

/// If a request has come, ends the program as the request would have.
void obey();

} // namespace interrupt

} // namespace tqx::tool
