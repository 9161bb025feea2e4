#include "io/Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace tqx::tool::interrupt
{

namespace
{

volatile std::sig_atomic_t received = 0;

void note(int signal)
{
    received = signal;
}

} // namespace

void watch()
{
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = static_cast<int>(SA_RESETHAND); // no SA_RESTART: reads must end
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction before = {};
        if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

bool hasCome()
{
    return received != 0;
}

void obey()
{
    if (!hasCome())
        return;
    std::signal(received, SIG_DFL);
    std::raise(received);
}

} // namespace tqx::tool::interrupt
