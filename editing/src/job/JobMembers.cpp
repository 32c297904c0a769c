#include "job/JobMembers.hpp"

#include <utility>

namespace opc::editing {

JobMembers::JobMembers(const nlohmann::json& object, std::string place)
    : object(object), place(std::move(place)) {
    if (!object.is_object())
        fail("isn't an object");
}

std::string JobMembers::text(const char* name) {
    const nlohmann::json& found = value(name);
    if (!found.is_string())
        fail(std::string(name) + " isn't a text");
    return found.get<std::string>();
}

bool JobMembers::flag(const char* name) {
    if (!has(name))
        return false;
    const nlohmann::json& found = value(name);
    if (!found.is_boolean())
        fail(std::string(name) + " is neither true nor false");
    return found.get<bool>();
}

const nlohmann::json& JobMembers::value(const char* name) {
    asked.insert(name);
    const auto found = object.find(name);
    if (found == object.end())
        fail(std::string(name) + " is missing");
    return *found;
}

void JobMembers::end() const {
    for (const auto& member : object.items())
        if (asked.count(member.key()) == 0)
            fail("has an unknown member: " + member.key());
}

void JobMembers::fail(const std::string& what) const {
    throw InvalidJob(place + ": " + what);
}

} // namespace opc::editing
