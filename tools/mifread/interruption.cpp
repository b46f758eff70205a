#include "interruption.h"

#include <atomic>

#include "system.h"

namespace mifread
{

namespace
{

std::atomic<int> signalCaught = 0;
static_assert(std::atomic<int>::is_always_lock_free, "set by a signal handler");

} // namespace

void watchSignals()
{
    system::catchSignals([](int number) { signalCaught = number; });
}

int caughtSignal() noexcept
{
    return signalCaught;
}

void interruptBy(int signal) noexcept
{
    signalCaught = signal;
}

void throwIfInterrupted()
{
    if (caughtSignal() != 0) {
        throw Interrupted();
    }
}

void waitForInput(int file)
{
    if (!system::waitToRead(file)) {
        throw Interrupted();
    }
    throwIfInterrupted(); // what never ends is always ready
}

} // namespace mifread
