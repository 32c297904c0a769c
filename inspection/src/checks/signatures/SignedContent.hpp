#pragma once

#include "subject/Subject.hpp"

namespace opc::inspection {

/// What the signatures of a package name, whether or not they hold.
class SignedContent {
public:
    /// @param subject  must outlive this object
    explicit SignedContent(const Subject& subject) { (void)subject; }

    bool hasSignatures() const { return false; }
    bool covers(const PartView& part) const { return (void)part, false; }
    bool covers(const RelationshipsView& source, const RelationshipView& relationship) const {
        return (void)source, (void)relationship, false;
    }
};

} // namespace opc::inspection
