#pragma once

#include <opc/model/XercesDeleter.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <memory>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
XERCES_CPP_NAMESPACE_END

/// @file
/// The two elements of a signature document that are digested and signed.
/// All operations throw `InvalidPartContent` if XML can't hold a text.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

using OwnedDocument = std::unique_ptr<xercesc::DOMDocument, XercesDeleter>;

/// The text of `SignedInfo`, over which the signature value is made.
std::u16string writeSignedInfo(const SignatureRecord& record);

/// The text of the package object, of which `SignedInfo` holds the digest.
std::u16string writePackageObject(const SignatureContent& content);

/// @name As trees
/// The root of each is that element. The caller must hold a `XercesGuard`.
/// @{

/// `SignedInfo`, with a namespace declaration of its own.
OwnedDocument buildSignedInfo(const SignatureRecord& record);

/// The package object: `Object` without a declaration of the default namespace.
OwnedDocument buildPackageObject(const SignatureContent& content);

/// @}

} // namespace opc::model
