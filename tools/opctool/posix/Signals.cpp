#include "Signals.hpp"

#include "Terminal.hpp"

#include <opc/physical/UnfinishedFiles.hpp>

#include <csignal>

namespace opctool {

namespace {

sigset_t heldBefore; ///< what was held back before short work

extern "C" void endBySignal(int signal) {
    opc::physical::removeUnfinishedFiles();
    showTyping();
    // SA_RESETHAND has restored its usual effect, which comes when the handler returns.
    std::raise(signal);
}

} // namespace

void leaveNothingBehindOnSignals() {
    constexpr int SIGNALS[] = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ};
    for (const int signal : SIGNALS) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL)
            continue; // the caller wants it ignored, like nohup
        action.sa_handler = endBySignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigfillset(&action.sa_mask);
        ::sigaction(signal, &action, nullptr);
    }
}

WithoutSignals::WithoutSignals() noexcept {
    sigset_t all;
    sigfillset(&all);
    ::sigprocmask(SIG_BLOCK, &all, &heldBefore);
}

WithoutSignals::~WithoutSignals() {
    ::sigprocmask(SIG_SETMASK, &heldBefore, nullptr);
}

} // namespace opctool
