#pragma once

#include "signatures/document/SignatureRecords.hpp"

#include <string_view>
#include <vector>

/// @file
/// Recognises signature documents in the form in which this library writes them, at a small part of the
/// parser's cost.
///
/// As with plain documents (`xml/PlainDocument.hpp`), what is recognised is valid and means the same to the parser. The
/// parser gets every other form, and whatever is doubtful or wrong. In this form all elements are as Xerces writes
/// them, so the text of an element is what the document holds.

namespace opc::model {

/// What a recognised document says. The views point into the bytes that were scanned.
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

/// @param found  is replaced by what the document says
/// @return whether the document is recognised. If not, `found` means nothing
bool scanSignature(std::string_view document, ScannedSignature& found);

} // namespace opc::model
