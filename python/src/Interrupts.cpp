#include "Interrupts.h"

#include <nanobind/nanobind.h>

#include <thread>

namespace tqx::python
{

namespace
{

std::thread::id& mainThread()
{
    static std::thread::id thread;
    return thread;
}

} // namespace

void rememberMainThread()
{
    mainThread() = std::this_thread::get_id();
}

void checkInterrupt()
{
    if (std::this_thread::get_id() != mainThread())
        return;
    const nanobind::gil_scoped_acquire lock;
    if (PyErr_CheckSignals() == 0)
        return;
    PyErr_Clear();
    throw Interrupted();
}

} // namespace tqx::python
