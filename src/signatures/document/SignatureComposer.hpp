#pragma once

#include <string>

/// @file
/// Composes the documents of signatures byte for byte as Xerces writes them, at a small part of its cost. Xerces writes
/// those with a value that isn't plain (`xml/PlainMarkup.hpp`) or with an empty list.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

/// Composes `SignedInfo` as `buildSignedInfo` builds it.
/// @param text  is replaced by the document
/// @return whether the document is plain. If not, `text` means nothing
bool composePlainSignedInfo(const SignatureRecord& data, std::string& text);

/// The same for the package object: `buildPackageObject`.
bool composePlainPackageObject(const SignatureContent& content, std::string& text);

/// The same for the whole signature part.
bool composePlainSignature(const SignatureRecord& data, std::string& document);

} // namespace opc::model
