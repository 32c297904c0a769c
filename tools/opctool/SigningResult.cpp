#include "SigningResult.hpp"

#include "FileRun.hpp"
#include "JSONText.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

void printResult(FileRun& run, const SigningResult& result) {
    if (!run.wantsJSON()) {
        run.printName(result.name);
        return;
    }
    run.json().add({{"name", result.name},
                    {"profile", profileName(result.profile)},
                    {"part", textOrNull(result.part)},
                    {"coverage", textOrNull(result.coverage)},
                    {"unreachable", result.unreachable},
                    {"dangling", result.dangling}});
}

} // namespace opctool
