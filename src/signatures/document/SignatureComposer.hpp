#pragma once

#include <string>

/// @file
/// Composes the documents of signatures byte for byte as Xerces would write them, in a fraction of the time. Xerces
/// writes those with a value that isn't plain (`xml/PlainMarkup.hpp`) or with an empty list.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

/// Composes `SignedInfo` as `buildSignedInfo` builds it.
/// @param text  receives the document; its old content is lost
/// @return whether the document is plain. If not, ignore `text`
bool composePlainSignedInfo(const SignatureRecord& data, std::string& text);

/// The same for the package object: `buildPackageObject`.
bool composePlainPackageObject(const SignatureContent& content, std::string& text);

/// The same for the whole signature part.
bool composePlainSignature(const SignatureRecord& data, std::string& document);

} // namespace opc::model
