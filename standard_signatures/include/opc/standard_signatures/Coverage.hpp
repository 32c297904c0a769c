#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace opc::standard_signatures {

/// Something of a package that a signature doesn't protect.
struct Unsigned {
    enum class Kind {
        Part,        ///< its content
        ContentType, ///< of a part whose content is signed
        Relationship,
        Item,         ///< something in the store that is no part, or has no content type
        MainDocument, ///< it isn't certain which part the document is
    };

    Kind kind;
    std::string place; ///< the part, the source of the relationship ("/" for the package), or the item
    std::string id;    ///< of a relationship
    std::string type;  ///< of a relationship
    std::string text;  ///< what is unsigned, in English
};

/// The second answer: what a signature protects. It says nothing if the cryptography is broken: then nothing is protected.
struct CoverageAnswer {
    std::size_t signedParts = 0; ///< without relationships parts
    std::size_t signedRelationships = 0;

    /// What is unsigned although it should be signed, with the beginning of long IDs and types. All signatures of a package list
    /// at most `MOST_LISTED` here and in `byCustom` together.
    std::vector<Unsigned> gaps;
    std::size_t gapCount = 0; ///< of all

    /// What signing programs leave out by custom, so that it can change: core, extended and custom properties, and the
    /// thumbnail, with their relationships. Title, author and dates are there.
    std::vector<Unsigned> byCustom;

    /// Signed relationships that lead out of the package: what they lead to can change.
    std::size_t externalTargets = 0;

    /// Whether everything is signed, but what is left out by custom.
    bool isComplete() const { return gapCount == 0 && signedParts != 0; }

    static constexpr std::size_t MOST_LISTED = 10000;
};

} // namespace opc::standard_signatures
