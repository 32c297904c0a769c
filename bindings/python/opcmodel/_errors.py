"""The exceptions. Each class of the C++ libraries has one here, under the same name, in a family that Python knows."""

from __future__ import annotations

import errno
from typing import Optional

from ._values import Oddity


class OpcError(Exception):
    """The base of all exceptions of this package."""

    part: Optional[str] = None
    """The name of the part that the failure is about."""

    relationship: Optional[str] = None
    """The ID of the relationship that the failure is about."""

    rule: Optional[str] = None
    """The number of the rule in ECMA-376 Part 2 that is broken, where the class alone tells it."""

    details: Optional[str] = None
    """Where in the document the failure is, and what helps."""

    code: int = 0
    """The code of the system, or of a signature; 0 for none."""

    def __str__(self) -> str:
        message = str(self.args[-1]) if self.args else ""
        return f"{message}; {self.details}" if self.details else message


class FormatError(OpcError, ValueError):
    """A package, a document in it or a value breaks the standard."""


class NotFound(OpcError, KeyError):
    """Something isn't in the package."""


class StateError(OpcError):
    """The call doesn't fit the state of the package: it is closed, opened for reading, in use, or has that already."""


class StoreError(OpcError, OSError):
    """The bytes can't be read or written; `errno` says why where the system has."""

    limit: bool = False
    """Whether a limit was hit: see `Limits`."""


class SignatureError(OpcError):
    """Something about signatures, keys or certificates; `code` is that of a signature."""


class InstallationError(OpcError, RuntimeError):
    """The machine lacks a library. This says nothing about the package."""


class ContentTypeNotFound(FormatError):
    """No content type is known for a part."""


class ContentTypeParameterNotFound(NotFound):
    """A content type has no such parameter."""


class InconsistentPackage(FormatError):
    """A relationships part has no source."""


class InvalidContentType(FormatError):
    """A text isn't a content type."""


class InvalidContentTypeParameter(FormatError):
    """A parameter of a content type has an invalid attribute or value."""


class InvalidContentTypeStream(FormatError):
    """The content types stream can't be read, or writing it would lose something."""


class InvalidCorePropertiesRelationships(FormatError):
    """A package has more than one core properties relationship."""

    rule = "M4.1"


class InvalidPartContent(FormatError):
    """The XML of a part isn't valid, or a value can't be written to it."""


class InvalidPartName(FormatError):
    """A name breaks the rules for part names."""


class InvalidRelationshipContent(FormatError):
    """A relationships part can't be read or changed."""


class InvalidRelationshipID(FormatError):
    """A relationship ID isn't an `xsd:ID`."""

    rule = "M1.26"


class InvalidRelationshipTarget(FormatError):
    """A relationship target breaks the standard, or can't be written."""


class InvalidRelationshipType(FormatError):
    """A relationship type is empty, or isn't a URI."""


class InvalidURI(FormatError):
    """A text isn't a URI."""


class InvalidXMLDocument(FormatError):
    """XML can't be parsed, or isn't allowed in a package."""


class NotImplemented(FormatError):
    """A signature has an element that isn't supported."""


class PartHasRelationshipName(FormatError):
    """The name of a new part is that of a relationships part."""


class PartIsDerivedFromExistingPartName(FormatError):
    """A part name is derived from that of another part, or the other way round."""

    rule = "M1.11"


class UnsupportedRelativize(FormatError):
    """No relative reference leads from one URI to the other."""


class UnsupportedResolve(FormatError):
    """A reference can't be resolved."""


class InvalidJob(FormatError):
    """A text isn't a job."""


class InvalidResult(FormatError):
    """A changed package isn't what it must be."""


class PackageNotFound(NotFound, FileNotFoundError):
    """The package doesn't exist."""


class PartNotFound(NotFound):
    """There is no part with this name."""


class RelationshipNotFound(NotFound):
    """The source has no relationship with this ID."""


class SignatureNotFound(NotFound):
    """The package has no such signature."""


class InvalidObject(StateError):
    """The part was deleted, or the package was closed."""


class PackageAlreadyOpen(StateError):
    """The operation needs a closed package."""


class PackageCreateOnly(StateError):
    """The operation isn't possible in a package that was opened with mode w or x, before it is saved."""


class PackageInUse(StateError):
    """Another call uses the package at the same time."""


class PackageNotOpen(StateError):
    """The package is closed."""


class PackageReadOnly(StateError):
    """The package was opened for reading."""


class PartAlreadyExists(StateError):
    """A part with this name exists already."""


class RelationshipAlreadyExists(StateError):
    """The source has a relationship with this ID already."""


class UnsavedChanges(StateError):
    """The operation needs a package whose changes are saved."""


class InvalidPartStream(StoreError):
    """The store gives no stream for a part."""


class InvalidXMLSchema(StoreError):
    """A schema of the library can't be loaded."""


class PackageCloseFailed(StoreError):
    """The package can't be written."""


class PackageOpenFailed(StoreError):
    """The package can't be read."""


class PackagePermissionDenied(StoreError, PermissionError):
    """There is no permission to write the package."""


class PartCreateFailed(StoreError):
    """The store can't create a part."""


class PartDeleteFailed(StoreError):
    """The store can't delete a part."""


class BreaksSignatures(SignatureError):
    """A change would break signatures."""


class CouldNotGenerateSignature(SignatureError):
    """The package can't be signed."""


class CouldNotRemoveSignature(SignatureError):
    """A signature can't be removed."""


class InvalidSignature(SignatureError):
    """A signature is malformed or can't be verified."""


class SigningRefused(SignatureError):
    """A package can't be signed, or a signature can't be removed, without harm."""


class CertificateException(SignatureError, ValueError):
    """A certificate, a bundle or a list of certificates can't be used."""


class X509CertificateException(CertificateException):
    """A certificate can't be used."""


class CodesigningException(SignatureError):
    """A signature can't be verified."""


class InvalidKey(SignatureError, ValueError):
    """A key can't be used."""


class UnusableKey(InvalidKey):
    """A key is protected by a password, or isn't one for this."""


class CouldNotComputeDigest(SignatureError):
    """A digest can't be computed."""


class CryptoNotLoaded(InstallationError):
    """The library for signatures isn't installed."""


class XmlParserNotLoaded(InstallationError):
    """The library that has the XML parser isn't installed."""


class LenientWarning(UserWarning):
    """A package breaks the standard, and something in it was passed over. `oddities` has all of it."""

    oddities: list[Oddity] = []


FAMILIES = (FormatError, NotFound, StateError, StoreError, SignatureError, InstallationError)


def make(
    name: str,
    message: str,
    code: int,
    details: Optional[str],
    part: Optional[str],
    relationship: Optional[str],
) -> OpcError:
    """The exception for a failure of the C++ class `name`; what has no class of its own is a `StoreError`."""
    kind = globals().get(name)
    if not (isinstance(kind, type) and issubclass(kind, OpcError)) or kind in FAMILIES:
        kind = StoreError
    made: OpcError = kind(code, message) if code and issubclass(kind, OSError) else kind(message)
    made.code, made.details, made.part, made.relationship = code, details, part, relationship
    if isinstance(made, StoreError):
        made.limit = code == errno.EFBIG
    return made
