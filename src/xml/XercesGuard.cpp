#include <opc/model/XercesGuard.hpp>

#include "xml/XercesFailures.hpp"
#include "xml/XercesLife.hpp"

#include <boost/thread/mutex.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <atomic>

namespace opc::model {

namespace {

/// Initialize and Terminate may not run at the same time. Never destroyed, so that a guard in a static object
/// works at any time of the program's end.
boost::mutex& platformMutex() {
    static boost::mutex& mutex = *new boost::mutex;
    return mutex;
}

std::atomic<bool> staysUp{false};

void initialize() {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr, nullptr);
}

} // namespace

XercesGuard::XercesGuard() {
    const boost::unique_lock<boost::mutex> lock(platformMutex());
    translateLackOfMemory([] {
        if (!xercesc::XMLPlatformUtils::fgMemoryManager) {
            initialize(); // never terminated: it takes longer than reading most packages
            staysUp = true;
        }
        initialize();
    });
}

bool xercesStaysUp() noexcept {
    return staysUp;
}

XercesGuard::~XercesGuard() { // NOLINT(bugprone-exception-escape): see the header
    const boost::unique_lock<boost::mutex> lock(platformMutex());
    xercesc::XMLPlatformUtils::Terminate();
}

} // namespace opc::model
