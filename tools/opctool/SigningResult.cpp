#include "SigningResult.hpp"

#include "FileRun.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

namespace {

nlohmann::ordered_json orNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

} // namespace

void print(FileRun& run, const SigningResult& result) {
    if (!run.wantsJSON()) {
        run.printName(result.name);
        return;
    }
    run.json().add({{"name", result.name},
                    {"profile", nameOf(result.profile)},
                    {"part", orNull(result.part)},
                    {"coverage", orNull(result.coverage)},
                    {"unreachable", result.unreachable}});
}

} // namespace opctool
