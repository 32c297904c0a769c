#pragma once

#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/Export.hpp>

#include <stdexcept>
#include <string>

/// @file
/// The exceptions of the library: one class for each kind of failure.
///
/// Each class but `XmlParserNotLoaded` derives directly from `opc::Exception`. A handler for one class catches only this class, and a handler
/// for `opc::Exception` catches all of them. What the installation lacks isn't among them, as no failure of memory is: code
/// that goes on after an `opc::Exception` would take it for a fault in a document (`XmlParserNotLoaded` here,
/// `bedrock::crypto::utils::CryptoNotLoaded` for OpenSSL). Exceptions are values: copy them freely, also to another thread. Copying
/// never fails.
///
/// `what()` gives a message that is fixed for each kind of failure, and `details()` says where in the document the
/// failure is. `code()` of `PackageOpenFailed` and `PackageCloseFailed` gives the cause that the system reported; in
/// all other classes it is 0. `part()` and `relationship()` name what the failure is about.
///
/// The destructor of each class is defined in the library. So a program has one type information of the class, and
/// an application catches by class what a shared library throws.

namespace opc::model {

/// No content type is known for a part, or the package has no content types stream.
class OPC_MODEL_EXPORT ContentTypeNotFound : public Exception {
public:
    explicit ContentTypeNotFound(const std::string& message) : Exception(message) {}
    ~ContentTypeNotFound() override;
};

/// A content type has no parameter with this attribute.
class OPC_MODEL_EXPORT ContentTypeParameterNotFound : public Exception {
public:
    explicit ContentTypeParameterNotFound(const std::string& message) : Exception(message) {}
    ~ContentTypeParameterNotFound() override;
};

/// The package can't be signed or countersigned.
class OPC_MODEL_EXPORT CouldNotGenerateSignature : public Exception {
public:
    explicit CouldNotGenerateSignature(const std::string& message) : Exception(message) {}
    ~CouldNotGenerateSignature() override;
};

/// The parts or relationships of a signature can't be deleted.
class OPC_MODEL_EXPORT CouldNotRemoveSignature : public Exception {
public:
    explicit CouldNotRemoveSignature(const std::string& message) : Exception(message) {}
    ~CouldNotRemoveSignature() override;
};

/// A relationships part has no source part.
class OPC_MODEL_EXPORT InconsistentPackage : public Exception {
public:
    explicit InconsistentPackage(const std::string& message) : Exception(message) {}
    ~InconsistentPackage() override;
};

/// A text isn't a content type.
class OPC_MODEL_EXPORT InvalidContentType : public Exception {
public:
    explicit InvalidContentType(const std::string& message) : Exception(message) {}
    ~InvalidContentType() override;
};

/// A parameter of a content type has an invalid attribute or value.
class OPC_MODEL_EXPORT InvalidContentTypeParameter : public Exception {
public:
    explicit InvalidContentTypeParameter(const std::string& message) : Exception(message) {}
    ~InvalidContentTypeParameter() override;
};

/// The content types stream can't be read or written, or writing it would lose elements that weren't read.
class OPC_MODEL_EXPORT InvalidContentTypeStream : public Exception {
public:
    explicit InvalidContentTypeStream(const std::string& message) : Exception(message) {}
    ~InvalidContentTypeStream() override;
};

/// A package has more than one core properties relationship.
class OPC_MODEL_EXPORT InvalidCorePropertiesRelationships : public Exception {
public:
    explicit InvalidCorePropertiesRelationships(const std::string& message) : Exception(message) {}
    ~InvalidCorePropertiesRelationships() override;
};

/// The part of a handle was deleted, or its package was closed.
class OPC_MODEL_EXPORT InvalidObject : public Exception {
public:
    explicit InvalidObject(const std::string& message) : Exception(message) {}
    ~InvalidObject() override;
};

/// The XML of a part isn't valid, or a value can't be written to it.
class OPC_MODEL_EXPORT InvalidPartContent : public Exception {
public:
    explicit InvalidPartContent(const std::string& message) : Exception(message) {}
    ~InvalidPartContent() override;
};

/// A name breaks the part name rules [M1.1] to [M1.10].
class OPC_MODEL_EXPORT InvalidPartName : public Exception {
public:
    explicit InvalidPartName(const std::string& message) : Exception(message) {}
    ~InvalidPartName() override;
};

/// The store gives no stream for a part, or the content of the part was deleted.
class OPC_MODEL_EXPORT InvalidPartStream : public Exception {
public:
    explicit InvalidPartStream(const std::string& message) : Exception(message) {}
    ~InvalidPartStream() override;
};

/// A relationships part can't be read or changed, or writing it would lose elements that weren't read.
class OPC_MODEL_EXPORT InvalidRelationshipContent : public Exception {
public:
    explicit InvalidRelationshipContent(const std::string& message) : Exception(message) {}
    ~InvalidRelationshipContent() override;
};

/// A relationship ID isn't an `xsd:ID`.
class OPC_MODEL_EXPORT InvalidRelationshipID : public Exception {
public:
    explicit InvalidRelationshipID(const std::string& message) : Exception(message) {}
    ~InvalidRelationshipID() override;
};

/// A relationship target breaks the rules of the standard, or can't be written.
class OPC_MODEL_EXPORT InvalidRelationshipTarget : public Exception {
public:
    explicit InvalidRelationshipTarget(const std::string& message) : Exception(message) {}
    ~InvalidRelationshipTarget() override;
};

/// A relationship type is empty, or isn't an `xsd:anyURI`.
class OPC_MODEL_EXPORT InvalidRelationshipType : public Exception {
public:
    explicit InvalidRelationshipType(const std::string& message) : Exception(message) {}
    ~InvalidRelationshipType() override;
};

/// A signature is malformed or can't be verified. `getErrorCode` says why.
class OPC_MODEL_EXPORT InvalidSignature : public Exception {
public:
    InvalidSignature(const std::string& message, const bedrock::codesigning_verifier::ErrorCode& errorCode)
        : Exception(message), errorCode(errorCode) {}
    ~InvalidSignature() override;

    bedrock::codesigning_verifier::ErrorCode getErrorCode() const { return errorCode; }

private:
    bedrock::codesigning_verifier::ErrorCode errorCode;
};

/// A text isn't a URI.
class OPC_MODEL_EXPORT InvalidURI : public Exception {
public:
    explicit InvalidURI(const std::string& message) : Exception(message) {}
    ~InvalidURI() override;
};

/// XML can't be parsed, isn't allowed in a package, or can't be written.
class OPC_MODEL_EXPORT InvalidXMLDocument : public Exception {
public:
    explicit InvalidXMLDocument(const std::string& message) : Exception(message) {}
    ~InvalidXMLDocument() override;
};

/// A schema of the library can't be loaded.
class OPC_MODEL_EXPORT InvalidXMLSchema : public Exception {
public:
    explicit InvalidXMLSchema(const std::string& message) : Exception(message) {}
    ~InvalidXMLSchema() override;
};

/// The library that has the XML parser isn't installed beside this one. This says nothing about the package, so it isn't an
/// `Exception`: nobody can take it for a failure in a document.
class OPC_MODEL_EXPORT XmlParserNotLoaded : public std::runtime_error {
public:
    explicit XmlParserNotLoaded(const std::string& message) : runtime_error(message) {}
    ~XmlParserNotLoaded() override;
};

/// A signature has an element that the library doesn't support.
class OPC_MODEL_EXPORT NotImplemented : public Exception {
public:
    explicit NotImplemented(const std::string& message) : Exception(message) {}
    ~NotImplemented() override;
};

/// The operation needs a closed package: opening it, or adding a data manager.
class OPC_MODEL_EXPORT PackageAlreadyOpen : public Exception {
public:
    explicit PackageAlreadyOpen(const std::string& message) : Exception(message) {}
    ~PackageAlreadyOpen() override;
};

/// The store can't be closed.
class OPC_MODEL_EXPORT PackageCloseFailed : public Exception {
public:
    PackageCloseFailed(const std::string& message, boost::system::error_code code)
        : Exception(message, code) {}
    ~PackageCloseFailed() override;
};

/// The operation isn't possible in a package that was opened `CreateOnly`.
class OPC_MODEL_EXPORT PackageCreateOnly : public Exception {
public:
    explicit PackageCreateOnly(const std::string& message) : Exception(message) {}
    ~PackageCreateOnly() override;
};

/// The package doesn't exist.
class OPC_MODEL_EXPORT PackageNotFound : public Exception {
public:
    explicit PackageNotFound(const std::string& message) : Exception(message) {}
    ~PackageNotFound() override;
};

/// The operation needs an open package.
class OPC_MODEL_EXPORT PackageNotOpen : public Exception {
public:
    explicit PackageNotOpen(const std::string& message) : Exception(message) {}
    ~PackageNotOpen() override;
};

/// The store can't be opened, or can't list its parts.
class OPC_MODEL_EXPORT PackageOpenFailed : public Exception {
public:
    PackageOpenFailed(const std::string& message, boost::system::error_code code)
        : Exception(message, code) {}
    ~PackageOpenFailed() override;
};

/// The store has no permission to write the package when it is closed.
class OPC_MODEL_EXPORT PackagePermissionDenied : public Exception {
public:
    explicit PackagePermissionDenied(const std::string& message) : Exception(message) {}
    ~PackagePermissionDenied() override;
};

/// The operation isn't possible in a package that was opened `ReadOnly`.
class OPC_MODEL_EXPORT PackageReadOnly : public Exception {
public:
    explicit PackageReadOnly(const std::string& message) : Exception(message) {}
    ~PackageReadOnly() override;
};

/// A part with this name exists already.
class OPC_MODEL_EXPORT PartAlreadyExists : public Exception {
public:
    explicit PartAlreadyExists(const std::string& message) : Exception(message) {}
    ~PartAlreadyExists() override;
};

/// The store can't create a part.
class OPC_MODEL_EXPORT PartCreateFailed : public Exception {
public:
    explicit PartCreateFailed(const std::string& message) : Exception(message) {}
    ~PartCreateFailed() override;
};

/// The store can't delete a part.
class OPC_MODEL_EXPORT PartDeleteFailed : public Exception {
public:
    explicit PartDeleteFailed(const std::string& message) : Exception(message) {}
    ~PartDeleteFailed() override;
};

/// The name of a new part is that of a relationships part.
class OPC_MODEL_EXPORT PartHasRelationshipName : public Exception {
public:
    explicit PartHasRelationshipName(const std::string& message) : Exception(message) {}
    ~PartHasRelationshipName() override;
};

/// A part name is derived from the name of another part, or the other way round [M1.11]: `/a` and `/a/b`.
class OPC_MODEL_EXPORT PartIsDerivedFromExistingPartName : public Exception {
public:
    explicit PartIsDerivedFromExistingPartName(const std::string& message) : Exception(message) {}
    ~PartIsDerivedFromExistingPartName() override;
};

/// There is no part with this name.
class OPC_MODEL_EXPORT PartNotFound : public Exception {
public:
    explicit PartNotFound(const std::string& message) : Exception(message) {}
    ~PartNotFound() override;
};

/// The source has a relationship with this ID already.
class OPC_MODEL_EXPORT RelationshipAlreadyExists : public Exception {
public:
    explicit RelationshipAlreadyExists(const std::string& message) : Exception(message) {}
    ~RelationshipAlreadyExists() override;
};

/// The source has no relationship with this ID.
class OPC_MODEL_EXPORT RelationshipNotFound : public Exception {
public:
    explicit RelationshipNotFound(const std::string& message) : Exception(message) {}
    ~RelationshipNotFound() override;
};

/// The package has no such signature, origin part or countersignature.
class OPC_MODEL_EXPORT SignatureNotFound : public Exception {
public:
    explicit SignatureNotFound(const std::string& message) : Exception(message) {}
    ~SignatureNotFound() override;
};

/// `relativize` doesn't support these URIs.
class OPC_MODEL_EXPORT UnsupportedRelativize : public Exception {
public:
    explicit UnsupportedRelativize(const std::string& message) : Exception(message) {}
    ~UnsupportedRelativize() override;
};

/// `resolve` doesn't support these URIs.
class OPC_MODEL_EXPORT UnsupportedResolve : public Exception {
public:
    explicit UnsupportedResolve(const std::string& message) : Exception(message) {}
    ~UnsupportedResolve() override;
};

} // namespace opc::model
