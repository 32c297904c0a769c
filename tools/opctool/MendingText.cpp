#include "MendingText.hpp"

#include <opc/inspection/Rule.hpp>

namespace opctool {

std::string describePlace(const opc::inspection::Rule& rule, const opc::inspection::Place& place) {
    const std::string& thing = place.part.empty() ? place.item : place.part;
    const std::string name = thing + (place.relationship.empty() ? "" : '#' + place.relationship);
    return std::string(rule.id) + ' ' + name + (name.empty() ? "" : ": ");
}

std::string describeLeft(const opc::inspection::Finding& finding) {
    return describePlace(*finding.rule, finding.place) + finding.message +
           (finding.hint.empty() ? "" : ". " + finding.hint);
}

} // namespace opctool
