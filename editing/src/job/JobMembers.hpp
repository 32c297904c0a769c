#pragma once

#include <opc/editing/Job.hpp>

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <string_view>

namespace opc::editing {

/// The members of one object of a job. What isn't asked for is refused at the end.
class JobMembers {
public:
    /// @param object  must outlive this object
    /// @param place   what messages name
    JobMembers(const nlohmann::json& object, std::string place);

    bool has(const char* name) const { return object.contains(name); }

    /// @throws InvalidJob  it isn't there, or isn't a text
    std::string text(const char* name);

    /// The same, but it need not be there.
    /// @param otherwise  for a member that isn't there
    std::string text(const char* name, const std::string& otherwise) {
        return has(name) ? text(name) : otherwise;
    }

    /// False if it isn't there.
    bool flag(const char* name);

    /// Any value; the member must be there.
    const nlohmann::json& value(const char* name);

    /// @throws InvalidJob  there are more members
    void end() const;

    [[noreturn]] void fail(const std::string& what) const;

private:
    const nlohmann::json& object;
    const std::string place;
    std::set<std::string, std::less<>> asked;
};

} // namespace opc::editing
