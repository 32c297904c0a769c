#include <opc/model/Errors.hpp>

// Each destructor is the key function of its class: the compiler emits the virtual table and the type information
// only in this file. So handlers in an application recognise exceptions that a shared library throws.

namespace opc::model {

ContentTypeNotFound::~ContentTypeNotFound() = default;
ContentTypeParameterNotFound::~ContentTypeParameterNotFound() = default;
CouldNotGenerateSignature::~CouldNotGenerateSignature() = default;
CouldNotRemoveSignature::~CouldNotRemoveSignature() = default;
InconsistentPackage::~InconsistentPackage() = default;
InvalidContentType::~InvalidContentType() = default;
InvalidContentTypeParameter::~InvalidContentTypeParameter() = default;
InvalidContentTypeStream::~InvalidContentTypeStream() = default;
InvalidCorePropertiesRelationships::~InvalidCorePropertiesRelationships() = default;
InvalidObject::~InvalidObject() = default;
InvalidPartContent::~InvalidPartContent() = default;
InvalidPartName::~InvalidPartName() = default;
InvalidPartStream::~InvalidPartStream() = default;
InvalidRelationshipContent::~InvalidRelationshipContent() = default;
InvalidRelationshipID::~InvalidRelationshipID() = default;
InvalidRelationshipTarget::~InvalidRelationshipTarget() = default;
InvalidRelationshipType::~InvalidRelationshipType() = default;
InvalidSignature::~InvalidSignature() = default;
InvalidURI::~InvalidURI() = default;
InvalidXMLDocument::~InvalidXMLDocument() = default;
InvalidXMLSchema::~InvalidXMLSchema() = default;
XmlParserNotLoaded::~XmlParserNotLoaded() = default;
NotImplemented::~NotImplemented() = default;
PackageAlreadyOpen::~PackageAlreadyOpen() = default;
PackageCloseFailed::~PackageCloseFailed() = default;
PackageCreateOnly::~PackageCreateOnly() = default;
PackageNotFound::~PackageNotFound() = default;
PackageNotOpen::~PackageNotOpen() = default;
PackageOpenFailed::~PackageOpenFailed() = default;
PackagePermissionDenied::~PackagePermissionDenied() = default;
PackageReadOnly::~PackageReadOnly() = default;
PartAlreadyExists::~PartAlreadyExists() = default;
PartCreateFailed::~PartCreateFailed() = default;
PartDeleteFailed::~PartDeleteFailed() = default;
PartHasRelationshipName::~PartHasRelationshipName() = default;
PartIsDerivedFromExistingPartName::~PartIsDerivedFromExistingPartName() = default;
PartNotFound::~PartNotFound() = default;
RelationshipAlreadyExists::~RelationshipAlreadyExists() = default;
RelationshipNotFound::~RelationshipNotFound() = default;
SignatureNotFound::~SignatureNotFound() = default;
UnsupportedRelativize::~UnsupportedRelativize() = default;
UnsupportedResolve::~UnsupportedResolve() = default;

} // namespace opc::model
