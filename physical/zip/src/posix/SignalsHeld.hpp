#pragma once

#include <csignal>

namespace opc::physical::zip {

/// Holds back signals to this thread while it lives, so that no signal ends the process in between.
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
