#include "SourceNames.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/RelationshipSource.hpp>

namespace opctool {

namespace {

/// Enough for 100,000 parts with three relationships each and names of 66 characters.
constexpr std::size_t MAXIMUM_LENGTH = 20000000;

} // namespace

void SourceNames::add(const opc::model::RelationshipSource& source) {
    const auto relationships = source.getRelationships();
    if (relationships.empty())
        return;
    length += relationships.size() * (*relationships.begin()).getSourceURI().toString().size();
    if (length > MAXIMUM_LENGTH)
        throw opc::Exception(
            "The list would have more than 20000000 characters for the sources alone, and isn't "
            "printed");
}

} // namespace opctool
