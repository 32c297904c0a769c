#pragma once

#include "signatures/document/SignatureRecords.hpp"

#include <string_view>
#include <vector>

/// @file
/// Recognises signature documents in the form that this library writes, in a fraction of the parser's time.
///
/// As with plain documents (`xml/PlainDocument.hpp`), whatever is recognised is valid and means the same to the
/// parser. The parser gets every other form, every doubt and every error. In this form all elements are as Xerces
/// writes them, so the text of an element is the text in the document.

namespace opc::model {

/// The content of a recognised document. The views point into the scanned bytes.
struct ScannedSignature {
    std::string_view id;         ///< of the root, with its prefix; empty if there is none
    std::string_view signedInfo; ///< the whole element
    std::string_view canonicalizationMethod;
    std::string_view signatureMethod;
    Reference objectReference; ///< the only one in `SignedInfo`: to the package object
    std::string_view signatureValue;

    /// The key in Base64: modulus and exponent, or certificates, or nothing.
    /// @{
    std::string_view modulus;
    std::string_view exponent;
    std::vector<std::string_view> certificates;
    /// @}

    std::string_view object; ///< the whole package object, which is the only one
    std::vector<Reference> manifestReferences;
    std::string_view propertyTarget; ///< of the only property, which is the time
    std::string_view time;
};

/// @param found  receives the content; its old content is lost
/// @return whether the document is recognised. If not, ignore `found`
bool scanSignature(std::string_view document, ScannedSignature& found);

} // namespace opc::model
