#pragma once

namespace opc::model {

class ElementIndex;
struct SignatureContent;

/// Refuses a signature document in which something could pass for signed that isn't. In a document that passes, the
/// signature value protects everything that is read, except the key and the signature's identifier:
///
/// - `SignedInfo` references the package object once, and nothing twice, nothing outside of the document, and
///   nothing through a transform other than a canonicalization;
/// - what it references is an `Object` of the root, and no other element has its `Id`;
/// - every element that is read is in the place and the namespace that XML Signature gives it, without a prefix;
/// - no manifest and no time is outside of what `SignedInfo` references, and there is at most one time;
/// - values are texts without comments in them.
///
/// @param content  what was read from the document
/// @throws InvalidPartContent
void checkSignatureForm(const ElementIndex& document, const SignatureContent& content);

} // namespace opc::model
