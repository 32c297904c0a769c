#include "Start.hpp"

namespace opctool {

char** startProcess(int& /*count*/, char** arguments) {
    return arguments;
}

} // namespace opctool
