#pragma once

#include <opc/core/InputStream.hpp>

#include <string_view>

namespace opc::standard_signatures {

/// The form of the content of a part that needn't be signed. Nothing else is taken for it.
struct ContentForm {
    enum class Kind {
        CoreProperties,
        ExtendedProperties,
        CustomProperties,
        Thumbnail,
        Origin, ///< of signatures
        Signature,
        Certificate,
    };

    Kind kind;
    std::string_view contentType;
    std::string_view extensions;   ///< each behind a dot, with a dot at the end; empty: any or none
    std::string_view rootName;     ///< of an XML document; empty: it isn't one
    std::string_view beginning[2]; ///< first octets, or the namespaces of the root; one or both may be empty

    bool isOfSignatures() const { return kind >= Kind::Origin; }

    /// The form that a part with this content type has, if its name is one of such a part; null otherwise.
    /// @param name  without percent-encoding
    static const ContentForm* find(Kind kind, std::string_view name, std::string_view contentType);

    /// Reads content to its end.
    /// @param stream  open, at its first byte
    /// @return why it hasn't this form, as words for a message; null if it has
    /// @throws the exceptions of the stream
    const char* defectIn(InputStream& stream) const;
};

} // namespace opc::standard_signatures
