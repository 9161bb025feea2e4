#pragma once

#include <stdexcept>

/// Handles Ctrl-C while C++ works without the interpreter's lock.
namespace tqx::python
{

/// The user interrupted the work: KeyboardInterrupt in Python.
class Interrupted : public std::runtime_error
{
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// Remembers the calling thread as the one that signals come to; called when the module is loaded.
void rememberMainThread();

/// Throws Interrupted when Ctrl-C was pressed. Does nothing in other threads than the main one,
/// where no signal is handled, and cheap enough for every few milliseconds of work. The lock need
/// not be held.
void checkInterrupt();

} // namespace tqx::python
