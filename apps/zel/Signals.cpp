#include "Signals.h"

#include <csignal>
#include <initializer_list>

#include <unistd.h>

#include <3dzel.h>

#include "ExitCode.h"
#include "StandardInput.h"

namespace {

// All that is done in here is safe in a handler.
void RemoveFiles()
{
    fileRemoveTemporaries();
    RemoveSpooledInput();
}

void OnInterrupt(int)
{
    RemoveFiles();
    _exit(EXIT_INTERRUPTED);
}

// The handler is gone when it runs: the signal ends the program.
void OnFault(int signal)
{
    RemoveFiles();
    raise(signal);
}

void Handle(int signal, void (*handler)(int), int flags)
{
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)    // as nohup has it
        return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}

void EndCleanlyOnSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGALRM, SIGVTALRM, SIGPROF, SIGXCPU, SIGUSR1, SIGUSR2, SIGPOLL})
        Handle(signal, OnInterrupt, 0);
    for (const int signal : {SIGQUIT, SIGPIPE, SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGSYS, SIGTRAP})
        Handle(signal, OnFault, static_cast<int>(SA_RESETHAND) | SA_NODEFER);
    std::signal(SIGXFSZ, SIG_IGN);
}
