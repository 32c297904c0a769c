#pragma once

#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/Export.hpp>

/// @file
/// The error family: one class for each kind of failure, told apart by class.
///
/// Every class derives from `opc::Exception` directly, so that a handler for one catches that one alone, and
/// a handler for `opc::Exception` all of them. They are values, free to be copied to another thread. Where a
/// failure has a cause in the system, `code()` of `PackageOpenFailed` and `PackageCloseFailed` holds it;
/// elsewhere it is 0.

namespace opc::model {

/// No content type is known for a part, or the package has no content types stream.
class OPC_MODEL_EXPORT ContentTypeNotFound : public Exception {
public:
    explicit ContentTypeNotFound(const std::string& message) : Exception(message) {}
    ContentTypeNotFound(const ContentTypeNotFound&) = default;
    ContentTypeNotFound(ContentTypeNotFound&&) = default;
    ~ContentTypeNotFound() override;
};

/// A content type has no parameter of that attribute.
class OPC_MODEL_EXPORT ContentTypeParameterNotFound : public Exception {
public:
    explicit ContentTypeParameterNotFound(const std::string& message) : Exception(message) {}
    ContentTypeParameterNotFound(const ContentTypeParameterNotFound&) = default;
    ContentTypeParameterNotFound(ContentTypeParameterNotFound&&) = default;
    ~ContentTypeParameterNotFound() override;
};

/// Signing or countersigning can't be done.
class OPC_MODEL_EXPORT CouldNotGenerateSignature : public Exception {
public:
    explicit CouldNotGenerateSignature(const std::string& message) : Exception(message) {}
    CouldNotGenerateSignature(const CouldNotGenerateSignature&) = default;
    CouldNotGenerateSignature(CouldNotGenerateSignature&&) = default;
    ~CouldNotGenerateSignature() override;
};

/// The parts or relationships of a signature can't be deleted.
class OPC_MODEL_EXPORT CouldNotRemoveSignature : public Exception {
public:
    explicit CouldNotRemoveSignature(const std::string& message) : Exception(message) {}
    CouldNotRemoveSignature(const CouldNotRemoveSignature&) = default;
    CouldNotRemoveSignature(CouldNotRemoveSignature&&) = default;
    ~CouldNotRemoveSignature() override;
};

/// A relationships part has no source part.
class OPC_MODEL_EXPORT InconsistentPackage : public Exception {
public:
    explicit InconsistentPackage(const std::string& message) : Exception(message) {}
    InconsistentPackage(const InconsistentPackage&) = default;
    InconsistentPackage(InconsistentPackage&&) = default;
    ~InconsistentPackage() override;
};

/// A text is no content type.
class OPC_MODEL_EXPORT InvalidContentType : public Exception {
public:
    explicit InvalidContentType(const std::string& message) : Exception(message) {}
    InvalidContentType(const InvalidContentType&) = default;
    InvalidContentType(InvalidContentType&&) = default;
    ~InvalidContentType() override;
};

/// A content type's parameter has a bad attribute or value.
class OPC_MODEL_EXPORT InvalidContentTypeParameter : public Exception {
public:
    explicit InvalidContentTypeParameter(const std::string& message) : Exception(message) {}
    InvalidContentTypeParameter(const InvalidContentTypeParameter&) = default;
    InvalidContentTypeParameter(InvalidContentTypeParameter&&) = default;
    ~InvalidContentTypeParameter() override;
};

/// The content types stream can't be read or written, or would lose elements that weren't read.
class OPC_MODEL_EXPORT InvalidContentTypeStream : public Exception {
public:
    explicit InvalidContentTypeStream(const std::string& message) : Exception(message) {}
    InvalidContentTypeStream(const InvalidContentTypeStream&) = default;
    InvalidContentTypeStream(InvalidContentTypeStream&&) = default;
    ~InvalidContentTypeStream() override;
};

/// A package has more than one core properties relationship.
class OPC_MODEL_EXPORT InvalidCorePropertiesRelationships : public Exception {
public:
    explicit InvalidCorePropertiesRelationships(const std::string& message) : Exception(message) {}
    InvalidCorePropertiesRelationships(const InvalidCorePropertiesRelationships&) = default;
    InvalidCorePropertiesRelationships(InvalidCorePropertiesRelationships&&) = default;
    ~InvalidCorePropertiesRelationships() override;
};

/// A handle is used whose part or package has gone.
class OPC_MODEL_EXPORT InvalidObject : public Exception {
public:
    explicit InvalidObject(const std::string& message) : Exception(message) {}
    InvalidObject(const InvalidObject&) = default;
    InvalidObject(InvalidObject&&) = default;
    ~InvalidObject() override;
};

/// The XML of a part breaks its format.
class OPC_MODEL_EXPORT InvalidPartContent : public Exception {
public:
    explicit InvalidPartContent(const std::string& message) : Exception(message) {}
    InvalidPartContent(const InvalidPartContent&) = default;
    InvalidPartContent(InvalidPartContent&&) = default;
    ~InvalidPartContent() override;
};

/// A name breaks the part name rules [M1.1] to [M1.10].
class OPC_MODEL_EXPORT InvalidPartName : public Exception {
public:
    explicit InvalidPartName(const std::string& message) : Exception(message) {}
    InvalidPartName(const InvalidPartName&) = default;
    InvalidPartName(InvalidPartName&&) = default;
    ~InvalidPartName() override;
};

/// The physical layer gives no stream for a part.
class OPC_MODEL_EXPORT InvalidPartStream : public Exception {
public:
    explicit InvalidPartStream(const std::string& message) : Exception(message) {}
    InvalidPartStream(const InvalidPartStream&) = default;
    InvalidPartStream(InvalidPartStream&&) = default;
    ~InvalidPartStream() override;
};

/// A relationships part can't be read, or would lose elements that weren't read.
class OPC_MODEL_EXPORT InvalidRelationshipContent : public Exception {
public:
    explicit InvalidRelationshipContent(const std::string& message) : Exception(message) {}
    InvalidRelationshipContent(const InvalidRelationshipContent&) = default;
    InvalidRelationshipContent(InvalidRelationshipContent&&) = default;
    ~InvalidRelationshipContent() override;
};

/// A relationship ID is no `xsd:ID`.
class OPC_MODEL_EXPORT InvalidRelationshipID : public Exception {
public:
    explicit InvalidRelationshipID(const std::string& message) : Exception(message) {}
    InvalidRelationshipID(const InvalidRelationshipID&) = default;
    InvalidRelationshipID(InvalidRelationshipID&&) = default;
    ~InvalidRelationshipID() override;
};

/// A relationship target breaks the rules.
class OPC_MODEL_EXPORT InvalidRelationshipTarget : public Exception {
public:
    explicit InvalidRelationshipTarget(const std::string& message) : Exception(message) {}
    InvalidRelationshipTarget(const InvalidRelationshipTarget&) = default;
    InvalidRelationshipTarget(InvalidRelationshipTarget&&) = default;
    ~InvalidRelationshipTarget() override;
};

/// A relationship type is empty, or no `xsd:anyURI`.
class OPC_MODEL_EXPORT InvalidRelationshipType : public Exception {
public:
    explicit InvalidRelationshipType(const std::string& message) : Exception(message) {}
    InvalidRelationshipType(const InvalidRelationshipType&) = default;
    InvalidRelationshipType(InvalidRelationshipType&&) = default;
    ~InvalidRelationshipType() override;
};

/// A signature is malformed or doesn't verify; the code says why.
class OPC_MODEL_EXPORT InvalidSignature : public Exception {
public:
    InvalidSignature(const std::string& message, const bedrock::codesigning_verifier::ErrorCode& error)
        : Exception(message), errorCode(error) {}
    InvalidSignature(const InvalidSignature&) = default;
    InvalidSignature(InvalidSignature&&) = default;
    ~InvalidSignature() override;

    bedrock::codesigning_verifier::ErrorCode getErrorCode() const { return errorCode; }

private:
    bedrock::codesigning_verifier::ErrorCode errorCode;
};

/// A text is no URI.
class OPC_MODEL_EXPORT InvalidURI : public Exception {
public:
    explicit InvalidURI(const std::string& message) : Exception(message) {}
    InvalidURI(const InvalidURI&) = default;
    InvalidURI(InvalidURI&&) = default;
    ~InvalidURI() override;
};

/// XML can't be parsed, isn't allowed in a package, or can't be written.
class OPC_MODEL_EXPORT InvalidXMLDocument : public Exception {
public:
    explicit InvalidXMLDocument(const std::string& message) : Exception(message) {}
    InvalidXMLDocument(const InvalidXMLDocument&) = default;
    InvalidXMLDocument(InvalidXMLDocument&&) = default;
    ~InvalidXMLDocument() override;
};

/// A schema of the library doesn't load.
class OPC_MODEL_EXPORT InvalidXMLSchema : public Exception {
public:
    explicit InvalidXMLSchema(const std::string& message) : Exception(message) {}
    InvalidXMLSchema(const InvalidXMLSchema&) = default;
    InvalidXMLSchema(InvalidXMLSchema&&) = default;
    ~InvalidXMLSchema() override;
};

/// A signature has an element that isn't supported.
class OPC_MODEL_EXPORT NotImplemented : public Exception {
public:
    explicit NotImplemented(const std::string& message) : Exception(message) {}
    NotImplemented(const NotImplemented&) = default;
    NotImplemented(NotImplemented&&) = default;
    ~NotImplemented() override;
};

/// An open package is opened again, or given a new data manager.
class OPC_MODEL_EXPORT PackageAlreadyOpen : public Exception {
public:
    explicit PackageAlreadyOpen(const std::string& message) : Exception(message) {}
    PackageAlreadyOpen(const PackageAlreadyOpen&) = default;
    PackageAlreadyOpen(PackageAlreadyOpen&&) = default;
    ~PackageAlreadyOpen() override;
};

/// The physical layer fails to close.
class OPC_MODEL_EXPORT PackageCloseFailed : public Exception {
public:
    PackageCloseFailed(const std::string& message, boost::system::error_code code)
        : Exception(message, code) {}
    PackageCloseFailed(const PackageCloseFailed&) = default;
    PackageCloseFailed(PackageCloseFailed&&) = default;
    ~PackageCloseFailed() override;
};

/// The operation is refused while a package is being created.
class OPC_MODEL_EXPORT PackageCreateOnly : public Exception {
public:
    explicit PackageCreateOnly(const std::string& message) : Exception(message) {}
    PackageCreateOnly(const PackageCreateOnly&) = default;
    PackageCreateOnly(PackageCreateOnly&&) = default;
    ~PackageCreateOnly() override;
};

/// The package doesn't exist.
class OPC_MODEL_EXPORT PackageNotFound : public Exception {
public:
    explicit PackageNotFound(const std::string& message) : Exception(message) {}
    PackageNotFound(const PackageNotFound&) = default;
    PackageNotFound(PackageNotFound&&) = default;
    ~PackageNotFound() override;
};

/// The operation needs an open package.
class OPC_MODEL_EXPORT PackageNotOpen : public Exception {
public:
    explicit PackageNotOpen(const std::string& message) : Exception(message) {}
    PackageNotOpen(const PackageNotOpen&) = default;
    PackageNotOpen(PackageNotOpen&&) = default;
    ~PackageNotOpen() override;
};

/// The physical layer fails to open or to list its parts.
class OPC_MODEL_EXPORT PackageOpenFailed : public Exception {
public:
    PackageOpenFailed(const std::string& message, boost::system::error_code code)
        : Exception(message, code) {}
    PackageOpenFailed(const PackageOpenFailed&) = default;
    PackageOpenFailed(PackageOpenFailed&&) = default;
    ~PackageOpenFailed() override;
};

/// The physical layer is denied permission when it closes.
class OPC_MODEL_EXPORT PackagePermissionDenied : public Exception {
public:
    explicit PackagePermissionDenied(const std::string& message) : Exception(message) {}
    PackagePermissionDenied(const PackagePermissionDenied&) = default;
    PackagePermissionDenied(PackagePermissionDenied&&) = default;
    ~PackagePermissionDenied() override;
};

/// The operation is refused on a package opened to read.
class OPC_MODEL_EXPORT PackageReadOnly : public Exception {
public:
    explicit PackageReadOnly(const std::string& message) : Exception(message) {}
    PackageReadOnly(const PackageReadOnly&) = default;
    PackageReadOnly(PackageReadOnly&&) = default;
    ~PackageReadOnly() override;
};

/// A part of that name exists.
class OPC_MODEL_EXPORT PartAlreadyExists : public Exception {
public:
    explicit PartAlreadyExists(const std::string& message) : Exception(message) {}
    PartAlreadyExists(const PartAlreadyExists&) = default;
    PartAlreadyExists(PartAlreadyExists&&) = default;
    ~PartAlreadyExists() override;
};

/// The physical layer fails to create a part.
class OPC_MODEL_EXPORT PartCreateFailed : public Exception {
public:
    explicit PartCreateFailed(const std::string& message) : Exception(message) {}
    PartCreateFailed(const PartCreateFailed&) = default;
    PartCreateFailed(PartCreateFailed&&) = default;
    ~PartCreateFailed() override;
};

/// The physical layer fails to delete a part.
class OPC_MODEL_EXPORT PartDeleteFailed : public Exception {
public:
    explicit PartDeleteFailed(const std::string& message) : Exception(message) {}
    PartDeleteFailed(const PartDeleteFailed&) = default;
    PartDeleteFailed(PartDeleteFailed&&) = default;
    ~PartDeleteFailed() override;
};

/// A part can't be given the name of a relationships part.
class OPC_MODEL_EXPORT PartHasRelationshipName : public Exception {
public:
    explicit PartHasRelationshipName(const std::string& message) : Exception(message) {}
    PartHasRelationshipName(const PartHasRelationshipName&) = default;
    PartHasRelationshipName(PartHasRelationshipName&&) = default;
    ~PartHasRelationshipName() override;
};

/// A name lies above or below the name of another part [M1.11].
class OPC_MODEL_EXPORT PartIsDerivedFromExistingPartName : public Exception {
public:
    explicit PartIsDerivedFromExistingPartName(const std::string& message) : Exception(message) {}
    PartIsDerivedFromExistingPartName(const PartIsDerivedFromExistingPartName&) = default;
    PartIsDerivedFromExistingPartName(PartIsDerivedFromExistingPartName&&) = default;
    ~PartIsDerivedFromExistingPartName() override;
};

/// There is no part of that name.
class OPC_MODEL_EXPORT PartNotFound : public Exception {
public:
    explicit PartNotFound(const std::string& message) : Exception(message) {}
    PartNotFound(const PartNotFound&) = default;
    PartNotFound(PartNotFound&&) = default;
    ~PartNotFound() override;
};

/// A relationship ID is in use.
class OPC_MODEL_EXPORT RelationshipAlreadyExists : public Exception {
public:
    explicit RelationshipAlreadyExists(const std::string& message) : Exception(message) {}
    RelationshipAlreadyExists(const RelationshipAlreadyExists&) = default;
    RelationshipAlreadyExists(RelationshipAlreadyExists&&) = default;
    ~RelationshipAlreadyExists() override;
};

/// There is no relationship of that ID.
class OPC_MODEL_EXPORT RelationshipNotFound : public Exception {
public:
    explicit RelationshipNotFound(const std::string& message) : Exception(message) {}
    RelationshipNotFound(const RelationshipNotFound&) = default;
    RelationshipNotFound(RelationshipNotFound&&) = default;
    ~RelationshipNotFound() override;
};

/// There is no such signature, origin or countersignature.
class OPC_MODEL_EXPORT SignatureNotFound : public Exception {
public:
    explicit SignatureNotFound(const std::string& message) : Exception(message) {}
    SignatureNotFound(const SignatureNotFound&) = default;
    SignatureNotFound(SignatureNotFound&&) = default;
    ~SignatureNotFound() override;
};

/// `relativize` can't be done on these URIs.
class OPC_MODEL_EXPORT UnsupportedRelativize : public Exception {
public:
    explicit UnsupportedRelativize(const std::string& message) : Exception(message) {}
    UnsupportedRelativize(const UnsupportedRelativize&) = default;
    UnsupportedRelativize(UnsupportedRelativize&&) = default;
    ~UnsupportedRelativize() override;
};

/// `resolve` can't be done on these URIs.
class OPC_MODEL_EXPORT UnsupportedResolve : public Exception {
public:
    explicit UnsupportedResolve(const std::string& message) : Exception(message) {}
    UnsupportedResolve(const UnsupportedResolve&) = default;
    UnsupportedResolve(UnsupportedResolve&&) = default;
    ~UnsupportedResolve() override;
};

} // namespace opc::model
