#pragma once

#include <opc/editing/Change.hpp>
#include <opc/editing/Export.hpp>

#include <opc/core/Exception.hpp>
#include <opc/inspection/SignatureExtent.hpp>

#include <set>
#include <string>
#include <vector>

namespace opc::model {
class Package;
}

namespace opc::inspection {
class Archive;
}

namespace opc::editing {

/// A change would break signatures. The message names them.
class OPC_EDITING_EXPORT BreaksSignatures : public Exception {
public:
    explicit BreaksSignatures(const std::string& message) : Exception(message) {}
    ~BreaksSignatures() override;
};

/// @param signatures  parts of signatures that changes break
/// @throws BreaksSignatures  there are some
OPC_EDITING_EXPORT void throwIfBroken(const std::vector<std::string>& signatures);

/// The signatures of a package, in the standard's form and in that of `model::DigitalSignatureManager`: what they consist of
/// and what each signs. A value type: it tells what was there when it was made. Names are compared without regard to the
/// case of ASCII letters.
class OPC_EDITING_EXPORT Signatures {
public:
    /// Reads the signature parts. One that can't be read signs nothing: it can't hold either.
    /// @param package  open
    explicit Signatures(const model::Package& package);

    /// The same for a package that no model needs to open.
    explicit Signatures(const inspection::Archive& archive);

    bool areNone() const { return found.empty(); }

    /// Whether the part is one of the signatures themselves: their origin, a signature, or a certificate.
    bool consistOf(const std::string& part) const;

    /// Whether one of them signs the part or relationships of it.
    bool sign(const std::string& part) const;

    /// The signature parts of those that don't hold any more after the changes, in the order of the package. Whether they
    /// have held before isn't asked.
    std::vector<std::string> brokenBy(const std::vector<Change>& changes) const;

    /// The signature parts of those that go on to hold and don't cover what the changes add: parts, and relationships other than
    /// those of signatures. A signature that was complete is partial then.
    std::vector<std::string> narrowedBy(const std::vector<Change>& changes) const;

    /// @throws BreaksSignatures  the changes break some
    void throwIfBrokenBy(const std::vector<Change>& changes) const;

private:
    struct Signature {
        std::string part;
        inspection::SignatureExtent extent;
    };

    bool isBrokenBy(const Change& change, const Signature& signature) const;

    std::vector<Signature> found;
    std::set<std::string> origins, own; ///< names in lower case; `own` has all parts that they consist of
};

} // namespace opc::editing
