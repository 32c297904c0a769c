#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/inspection/Export.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace opc::inspection {

/// What a signature signs by its manifest, whether or not it holds, and in which form ever it is. A value type.
///
/// Names of parts are compared without regard to the case of ASCII letters, in UTF-8.
class OPC_INSPECTION_EXPORT SignatureExtent {
public:
    /// Reads a signature part as far as it can be read. Throws nothing but `std::bad_alloc`.
    /// @param signature  ready to read
    explicit SignatureExtent(InputStream& signature);

    /// @param name  of a part that is no relationships part
    bool signsPart(std::string_view name) const;

    /// @param source  a part name, or "/"
    /// @param type    of the relationship, as signatures can sign all of a type
    bool signsRelationship(std::string_view source, std::string_view id, std::string_view type) const;

    /// Whether it signs any relationship of the source.
    bool signsRelationshipsOf(std::string_view source) const;

private:
    struct Selection {
        bool all = false;
        std::set<std::string, std::less<>> ids, types;
    };

    const Selection* find(std::string_view source) const;

    std::set<std::string, std::less<>> parts;                    ///< by what names are compared by
    std::map<std::string, Selection, std::less<>> relationships; ///< by source
};

enum class SignaturePartKind { Origin, Signature, Certificate };

/// What a relationship of this type leads to, if it is one of signatures.
OPC_INSPECTION_EXPORT std::optional<SignaturePartKind> targetOfSignatureType(std::string_view type);

} // namespace opc::inspection
