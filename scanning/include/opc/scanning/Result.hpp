#pragma once

#include <opc/inspection/External.hpp>
#include <opc/inspection/Format.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/interfaces/Oddity.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/scanning/Export.hpp>
#include <opc/scanning/Failure.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::scanning {

/// A part of a package. Texts are UTF-8, and lie in the result.
struct ScannedPart {
    std::string_view name;
    std::string_view contentType;
    std::uint64_t size = 0;        ///< in bytes, uncompressed
    std::size_t relationships = 0; ///< how many it has
};

/// A relationship. Texts are UTF-8, as they stand in the package, and lie in the result.
struct ScannedRelationship {
    std::string_view source; ///< a part name, or "/" for the package
    std::string_view id, type, target;
    bool isExternal = false;
    bool exists = false; ///< whether it leads to a part that is there; false for an external target
};

/// The part name that an internal target leads to, with fragment and query if it has them.
/// @param source  a part name, or "/"
/// @param target  as it stands in the relationship
/// @throws opc::Exception  it leads nowhere
OPC_SCANNING_EXPORT std::string resolveTarget(std::string_view source, std::string_view target);

/// What is found out about the signatures of a package, in both profiles.
struct ScannedSignatures {
    enum class State {
        Unsigned,
        Holds,      ///< yes: see `isYes`
        Broken,     ///< what a signature signs has changed, or it wasn't made by its key
        Unreadable, ///< a signature can't be read or checked
        Unproven, ///< nothing that is signed has changed, but something else keeps the answer from being yes
    };

    State state = State::Unsigned;
    standard_signatures::PackageVerification standard; ///< those in the standard's profile
    std::vector<model::JudgedSignature> own;           ///< those of `DigitalSignatureManager`
    std::vector<model::VerdictReason> reasons;         ///< why these aren't a yes
    bool ownCoverEverything = false;                   ///< whether those that hold leave nothing out

    /// The only yes about the package: it has signatures; those in the standard's profile are valid, complete and trusted; the
    /// own ones hold, as the policy asks; and nothing about the package as a whole speaks against it.
    bool isYes() const { return state == State::Holds; }

    /// Adds what is found out about one of the profiles, each at most once and the own one first.
    /// @{
    OPC_SCANNING_EXPORT void add(const model::SignatureVerdict& verdict);
    OPC_SCANNING_EXPORT void add(standard_signatures::PackageVerification verification);
    /// @}
};

/// Why a signature in the standard's profile isn't a yes, and what was accepted in it, in lines for people.
OPC_SCANNING_EXPORT std::vector<std::string>
reasonsOf(const standard_signatures::VerifiedSignature& signature);

/// What was found out about one file. Only what was asked for is there, and of that only what could be read.
struct Result {
    std::string name;               ///< of its source
    std::optional<Failure> failure; ///< the first one: why something that was asked for isn't there

    /// What was passed over when the package was opened as a package, which parts, relationships, properties and signatures
    /// need.
    std::vector<interfaces::Oddity> hidden;

    std::optional<inspection::Format> format;
    std::optional<std::vector<ScannedPart>> parts; ///< without relationships parts, sorted by name
    std::optional<std::vector<ScannedRelationship>>
        relationships;                 ///< of the package, then of each part that has some
    std::shared_ptr<const void> texts; ///< what the texts of parts and relationships lie in
    std::optional<model::CoreProperties> properties;
    std::string
        propertiesFailure; ///< why properties can't be read although the package can; that is no failure
    std::optional<inspection::Externals> externals;
    std::optional<ScannedSignatures> signatures;
    std::optional<inspection::Report> findings;
};

} // namespace opc::scanning
