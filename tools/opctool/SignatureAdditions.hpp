#pragma once

#include <opc/editing/Signatures.hpp>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

/// What a new signature adds to the relationships of a package, and which signatures that breaks: one that signs all
/// relationships of a type, or a relationships part by its octets.
class SignatureAdditions {
public:
    /// @param package  before it is signed
    explicit SignatureAdditions(const opc::model::Package& package);

    /// @param package  the same with the new signature
    /// @return the parts of the signatures that don't hold any more
    std::vector<std::string> findBroken(const opc::model::Package& package) const;

private:
    opc::editing::Signatures signatures;
    std::set<std::pair<std::string, std::string>> known; ///< sources and IDs
};

} // namespace opctool
