#pragma once

namespace opc::model {

class ElementIndex;
struct SignatureContent;

/// Refuses a signature document in which something could pass for signed that isn't. Of a document that passes,
/// all that is read but the key and the signature's identifier is protected by the signature value:
///
/// - `SignedInfo` references the package object once, and nothing twice, nothing outside of the document, and
///   nothing through a transform other than a canonicalization;
/// - what it references is an `Object` of the root, and no other element has its `Id`;
/// - every element that is read stands where XML Signature has it, has its namespace, and no prefix;
/// - no manifest and no time lies outside of what `SignedInfo` references, and there is one time at most;
/// - values are texts alone, without comments in them.
///
/// @param content  what was read from the document
/// @throws InvalidPartContent
void checkSignatureForm(const ElementIndex& document, const SignatureContent& content);

} // namespace opc::model
