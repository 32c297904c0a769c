#pragma once

#include <opc/inspection/Inspection.hpp>

#include <string>
#include <string_view>
#include <unordered_set>

namespace opc::inspection {

using RuleIds = std::unordered_set<std::string_view>;

/// Collects what the checks find, as far as the options ask for it.
class Findings {
public:
    /// @param options, report  must outlive this object
    Findings(const InspectionOptions& options, Report& report);
    Findings(const Findings&) = delete;
    Findings& operator=(const Findings&) = delete;

    /// Whether findings of this rule count. A check asks first where looking costs time.
    bool wants(std::string_view rule) const { return chosen->count(rule) != 0; }

    /// How bad it is that a document can't be read to its end for our limits: whoever looks for harm hasn't seen all of it.
    Severity ofUnread() const {
        return (options.profiles & SECURITY) != 0 ? Severity::Error : Severity::Warning;
    }

    /// Adds a finding with the severity of the rule, or with a lower one. Drops it if nobody wants it.
    void add(std::string_view rule, Place place, std::string message, std::string hint = {});
    void add(std::string_view rule, Severity severity, Place place, std::string message,
             std::string hint = {});

private:
    const InspectionOptions& options;
    Report& report;
    RuleIds named;         ///< the rules that count, where the options name rules
    const RuleIds* chosen; ///< these, or those of the profiles
    std::map<std::string_view, std::size_t> counts;
};

} // namespace opc::inspection
