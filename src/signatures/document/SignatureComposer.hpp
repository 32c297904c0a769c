#pragma once

#include <string>

/// @file
/// Composes the documents of signatures byte for byte as Xerces writes them, at a small part of its cost. Each is
/// left to Xerces if a value in it isn't plain (`xml/PlainMarkup.hpp`) or a list is empty.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

/// The text of `SignedInfo`, as `buildSignedInfo` has it.
/// @param text  takes the document in place of what it held
/// @return whether it is plain. If not, `text` doesn't count
bool composePlainSignedInfo(const SignatureRecord& data, std::string& text);

/// The same for the package object: `buildPackageObject`.
bool composePlainPackageObject(const SignatureContent& content, std::string& text);

/// The same for the whole signature part.
bool composePlainSignature(const SignatureRecord& data, std::string& document);

} // namespace opc::model
