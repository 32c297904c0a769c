#pragma once

#include "checks/signatures/Signatures.hpp"
#include "hash/TextHash.hpp"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::inspection {

/// What the signatures of a package name, whether or not they hold.
class SignedContent {
public:
    /// @param subject  must outlive this object
    explicit SignedContent(const Subject& subject) : SignedContent(subject, findSignatures(subject)) {}
    SignedContent(const Subject& subject, const std::vector<FoundSignature>& signatures);

    bool hasSignatures() const { return signaturesExist; }
    bool covers(const PartView& part) const { return parts.count(&part) != 0; }
    bool covers(const RelationshipsView& source, const RelationshipView& relationship) const;

private:
    /// The relationships of one source.
    struct Signed {
        bool all = false;
        std::unordered_set<std::string, TextHash> ids, types;
    };

    void add(const Subject& subject, const SignatureReference& reference);

    bool signaturesExist;
    std::unordered_set<const PartView*> parts;
    std::unordered_map<const PartView*, Signed> relationships; ///< by relationships part
};

} // namespace opc::inspection
