#pragma once

#include "canonical/XmlTree.hpp"

#include <cstdint>
#include <set>
#include <string>

namespace opc::standard_signatures {

/// How the canonical form of a subtree is written.
struct CanonicalForm {
    enum class Version {
        Inclusive10, ///< Canonical XML 1.0
        Inclusive11, ///< Canonical XML 1.1
        Exclusive,   ///< Exclusive XML Canonicalization 1.0
    };

    Version version = Version::Inclusive10;
    bool withComments = false;
    std::set<std::string, std::less<>>
        inclusivePrefixes; ///< of the exclusive form; empty for the default namespace

    bool operator==(const CanonicalForm& other) const {
        return version == other.version && withComments == other.withComments &&
               inclusivePrefixes == other.inclusivePrefixes;
    }
};

/// The canonical form of an element with all that is in it, as octets.
/// @throws model::InvalidXMLDocument  a namespace is a relative reference, which has no canonical form
/// @throws Refusal  with `BeyondLimit`: the form has more than 40 MiB. The exclusive one can write a namespace once more at each
///     element
std::string canonicalize(const XmlTreeNode& element, const CanonicalForm& form = {});

/// The same, as long as it may still be work: one unit for each node, attribute and declaration, also those that the form doesn't
/// have, and for 64 bytes of the form.
/// @param work  becomes less
/// @throws Refusal  with `BeyondLimit`: nothing is left
std::string canonicalize(const XmlTreeNode& element, const CanonicalForm& form, std::uint64_t& work);

} // namespace opc::standard_signatures
