#include "ChangeText.hpp"

#include "JSONText.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::editing::Change;

ordered_json toJSON(const Change::State& state) {
    if (state.text.empty() && state.type.empty() && !state.size)
        return nullptr;
    return {{"text", state.text},
            {"type", textOrNull(state.type)},
            {"external", state.isExternal},
            {"size", state.size ? ordered_json(*state.size) : ordered_json()}};
}

} // namespace

ordered_json changeToJSON(const Change& change) {
    return {{"kind", nameOf(change.kind)},     {"place", change.place},
            {"name", textOrNull(change.name)}, {"before", toJSON(change.before)},
            {"after", toJSON(change.after)},   {"text", describe(change)}};
}

} // namespace opctool
