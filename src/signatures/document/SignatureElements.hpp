#pragma once

#include <opc/model/XercesDeleter.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <memory>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
XERCES_CPP_NAMESPACE_END

/// @file
/// The two elements of a signature document that are digested and signed, as trees. The root of each is the element in
/// question. The caller holds a `XercesGuard`. All operations throw `InvalidPartContent` if XML can't hold
/// a text.

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

using OwnedDocument = std::unique_ptr<xercesc::DOMDocument, XercesDeleter>;

/// `SignedInfo`, with a namespace declaration of its own.
OwnedDocument buildSignedInfo(const SignatureRecord& record);

/// The package object: `Object` without a declaration of the default namespace.
OwnedDocument buildPackageObject(const SignatureContent& content);

} // namespace opc::model
