#pragma once

#include <csignal>

namespace opc::physical::zip {

/// While it lives, signals to this thread wait: what it does is done wholly before a signal ends the process.
class SignalsHeld {
public:
    SignalsHeld() noexcept {
        sigset_t all{};
        sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, &before);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before{};
};

} // namespace opc::physical::zip
