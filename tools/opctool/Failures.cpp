#include "Failures.hpp"

#include "JSONText.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

nlohmann::ordered_json failureToJSON(const Failure& failure) {
    return {{"class", failure.className},       {"code", failure.code},
            {"kind", failure.kind()},           {"message", failure.message},
            {"part", textOrNull(failure.part)}, {"relationship", textOrNull(failure.relationship)}};
}

} // namespace opctool
