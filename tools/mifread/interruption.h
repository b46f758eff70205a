// The end that the user asks for by a signal.
#ifndef MIFREAD_INTERRUPTION_H
#define MIFREAD_INTERRUPTION_H

#include <stdexcept>

namespace mifread
{

// The user asked the program to end.
class Interrupted : public std::runtime_error
{
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// Has the signals by which a user ends a program end all conversions with Interrupted; a second one ends the program.
void watchSignals();

// The signal that asked the program to end, or 0.
int caughtSignal() noexcept;

void throwIfInterrupted();

// Waits until a descriptor can be read from, or throws Interrupted.
void waitForInput(int file);

// Has all conversions end as if that signal had come.
void interruptBy(int signal) noexcept;

} // namespace mifread

#endif
