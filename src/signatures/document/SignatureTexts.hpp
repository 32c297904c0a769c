#pragma once

#include <string>

/// @file
/// The two elements of a signature document that are digested and signed.
/// All operations throw `InvalidPartContent` if a text holds characters that XML can't hold.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

/// The text of `SignedInfo`, over which the signature value is made.
std::u16string writeSignedInfo(const SignatureRecord& record);

/// The text of the package object, of which `SignedInfo` holds the digest.
std::u16string writePackageObject(const SignatureContent& content);

} // namespace opc::model
