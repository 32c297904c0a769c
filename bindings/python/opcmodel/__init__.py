"""Packages in the Open Packaging Conventions (ECMA-376 Part 2): parts, relationships, properties and signatures."""

from ._errors import (
    BreaksSignatures as BreaksSignatures,
    CertificateException as CertificateException,
    CodesigningException as CodesigningException,
    ContentTypeNotFound as ContentTypeNotFound,
    ContentTypeParameterNotFound as ContentTypeParameterNotFound,
    CouldNotComputeDigest as CouldNotComputeDigest,
    CouldNotGenerateSignature as CouldNotGenerateSignature,
    CouldNotRemoveSignature as CouldNotRemoveSignature,
    CryptoNotLoaded as CryptoNotLoaded,
    FormatError as FormatError,
    InconsistentPackage as InconsistentPackage,
    InstallationError as InstallationError,
    InvalidContentType as InvalidContentType,
    InvalidContentTypeParameter as InvalidContentTypeParameter,
    InvalidContentTypeStream as InvalidContentTypeStream,
    InvalidCorePropertiesRelationships as InvalidCorePropertiesRelationships,
    InvalidJob as InvalidJob,
    InvalidKey as InvalidKey,
    InvalidObject as InvalidObject,
    InvalidPartContent as InvalidPartContent,
    InvalidPartName as InvalidPartName,
    InvalidPartStream as InvalidPartStream,
    InvalidRelationshipContent as InvalidRelationshipContent,
    InvalidRelationshipID as InvalidRelationshipID,
    InvalidRelationshipTarget as InvalidRelationshipTarget,
    InvalidRelationshipType as InvalidRelationshipType,
    InvalidResult as InvalidResult,
    InvalidSignature as InvalidSignature,
    InvalidURI as InvalidURI,
    InvalidXMLDocument as InvalidXMLDocument,
    InvalidXMLSchema as InvalidXMLSchema,
    LenientWarning as LenientWarning,
    NotFound as NotFound,
    NotImplemented as NotImplemented,
    OpcError as OpcError,
    PackageAlreadyOpen as PackageAlreadyOpen,
    PackageCloseFailed as PackageCloseFailed,
    PackageCreateOnly as PackageCreateOnly,
    PackageInUse as PackageInUse,
    PackageNotFound as PackageNotFound,
    PackageNotOpen as PackageNotOpen,
    PackageOpenFailed as PackageOpenFailed,
    PackagePermissionDenied as PackagePermissionDenied,
    PackageReadOnly as PackageReadOnly,
    PartAlreadyExists as PartAlreadyExists,
    PartCreateFailed as PartCreateFailed,
    PartDeleteFailed as PartDeleteFailed,
    PartHasRelationshipName as PartHasRelationshipName,
    PartIsDerivedFromExistingPartName as PartIsDerivedFromExistingPartName,
    PartNotFound as PartNotFound,
    RelationshipAlreadyExists as RelationshipAlreadyExists,
    RelationshipNotFound as RelationshipNotFound,
    SignatureError as SignatureError,
    SignatureNotFound as SignatureNotFound,
    SigningRefused as SigningRefused,
    StateError as StateError,
    StoreError as StoreError,
    UnsavedChanges as UnsavedChanges,
    UnsupportedRelativize as UnsupportedRelativize,
    UnsupportedResolve as UnsupportedResolve,
    UnusableKey as UnusableKey,
    X509CertificateException as X509CertificateException,
    XmlParserNotLoaded as XmlParserNotLoaded,
)
from ._package import Package as Package
from ._package import Part as Part
from ._package import Relationship as Relationship
from ._package import Relationships as Relationships
from ._package import open as open
from ._scanning import Scan as Scan
from ._scanning import ScannedExternal as ScannedExternal
from ._scanning import ScannedPart as ScannedPart
from ._scanning import ScannedRelationship as ScannedRelationship
from ._scanning import ScannedSignature as ScannedSignature
from ._scanning import ScanResult as ScanResult
from ._scanning import scan as scan
from ._streams import PartStream as PartStream
from ._values import IgnoredItem as IgnoredItem
from ._values import Limits as Limits
from ._values import Oddity as Oddity
from ._types import RT as RT
from ._inspection import (
    Report as Report,
    check as check,
    content_hash as content_hash,
    detect as detect,
    diff as diff,
    diff_part as diff_part,
    flat_text as flat_text,
    repair as repair,
    repaired as repaired,
    rules as rules,
)
from ._properties import (
    CoreProperties as CoreProperties,
    OfficeProperties as OfficeProperties,
)
from ._signatures import (
    Coverage as Coverage,
    Covered as Covered,
    Cryptography as Cryptography,
    JudgedSignature as JudgedSignature,
    NewSignature as NewSignature,
    Reason as Reason,
    Reference as Reference,
    Signature as Signature,
    SignatureCoverage as SignatureCoverage,
    Trust as Trust,
    Unsigned as Unsigned,
    Verification as Verification,
    VerifiedSignature as VerifiedSignature,
    coverage as coverage,
    sign as sign,
    signatures as signatures,
    verify as verify,
)
from ._store import (
    Store as Store,
)
from ._values import (
    Change as Change,
    ChangeState as ChangeState,
    Comparison as Comparison,
    ContentDifference as ContentDifference,
    ContentDifferences as ContentDifferences,
    ContentHash as ContentHash,
    ContentVersion as ContentVersion,
    Finding as Finding,
    Format as Format,
    Hunk as Hunk,
    Mended as Mended,
    Mending as Mending,
    PropertyDifference as PropertyDifference,
    RelationshipDifference as RelationshipDifference,
    RelationshipVersion as RelationshipVersion,
    Rule as Rule,
)
