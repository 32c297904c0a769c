#include "Failures.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

namespace {

nlohmann::ordered_json orNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

} // namespace

nlohmann::ordered_json toJSON(const Failure& failure) {
    return {{"class", failure.className},   {"code", failure.code},
            {"kind", failure.kind()},       {"message", failure.message},
            {"part", orNull(failure.part)}, {"relationship", orNull(failure.relationship)}};
}

} // namespace opctool
