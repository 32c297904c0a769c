#pragma once

#include <opc/inspection/Rule.hpp>

#include <cstddef>

namespace opc::inspection {

/// The rules of one concern: a row for each, in the file of the concern in this folder.
struct RuleRows {
    const Rule* first;
    std::size_t count;
};

RuleRows containerRules();
RuleRows nameRules();
RuleRows contentTypeRules();
RuleRows relationshipRules();
RuleRows propertyRules();
RuleRows signatureRules();
RuleRows officeRules();
RuleRows securityRules();

} // namespace opc::inspection
