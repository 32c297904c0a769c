"""Signatures in both profiles: the standard's own, in which office programs sign, and that of this library alone."""

from __future__ import annotations

import contextlib
import os
import re
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from datetime import datetime, timezone
from typing import Optional, Union

from . import _opcmodel
from ._errors import SignatureNotFound
from ._package import Package, Source
from ._package import open as open_package
from ._store import Store

Verified = Union[Source, Store, Package]
Material = Union[bytes, str, "os.PathLike[str]"]
"""A key, a certificate, a bundle: the bytes, or the path of a file."""

_CERTIFICATE = re.compile(b"-----BEGIN CERTIFICATE-----.*?-----END CERTIFICATE-----", re.S)


def _read(material: Material) -> bytes:
    if isinstance(material, bytes):
        return material
    with open(material, "rb") as file:
        return file.read()


def _certificates(materials: Union[None, Material, Iterable[Material]]) -> list[bytes]:
    """Each of them alone; a file in PEM can have many."""
    if materials is None:
        return []
    if isinstance(materials, (bytes, str, os.PathLike)):
        materials = [materials]
    found = []
    for material in materials:
        content = _read(material)
        found += _CERTIFICATE.findall(content) or [content]
    return found


def _seconds(time: Optional[datetime]) -> Optional[float]:
    if time is None:
        return None
    if time.tzinfo is None:
        raise ValueError("the time needs a time zone")
    return time.timestamp()


def _time(text: Optional[str]) -> Optional[datetime]:
    if text is None:
        return None
    try:
        time = datetime.fromisoformat(text.replace("Z", "+00:00"))
    except ValueError:
        return None
    return time if time.tzinfo else time.replace(tzinfo=timezone.utc)


@dataclass(frozen=True, slots=True)
class Reason:
    """Why an answer isn't the best one."""

    place: str
    text: str

    def __str__(self) -> str:
        return f"{self.place}: {self.text}" if self.place else self.text


@dataclass(frozen=True, slots=True)
class Reference:
    """What a signature says is signed, and whether that is still so."""

    uri: str
    digest: str
    holds: bool
    reason: str


@dataclass(frozen=True, slots=True)
class Unsigned:
    """Something of a package that a signature doesn't protect."""

    kind: str
    place: str
    id: Optional[str]
    type: Optional[str]
    text: str


@dataclass(frozen=True, slots=True)
class Cryptography:
    """The first answer: whether what is signed is unchanged, and whether the key made the signature."""

    answer: str
    """`valid`, `weak` or `broken`."""
    method: str
    key_bits: int
    reasons: tuple[Reason, ...]
    references: tuple[Reference, ...]
    """The first 10,000 of all signatures of the package."""
    reference_count: int


@dataclass(frozen=True, slots=True)
class SignatureCoverage:
    """The second answer: what the signature protects."""

    answer: str
    """`complete` or `partial`."""
    signed_parts: int
    signed_relationships: int
    gaps: tuple[Unsigned, ...]
    gap_count: int
    by_custom: tuple[Unsigned, ...]
    """What signing programs leave out: properties and thumbnail, with title, author and dates."""
    external_targets: int


@dataclass(frozen=True, slots=True)
class Trust:
    """The third answer: who signed."""

    answer: str
    """`trusted`, `not trusted`, `unknown` or `not checked`."""
    reason: str
    signer: Optional[str]
    fingerprint: Optional[str]
    time: Optional[datetime]
    time_from: str
    time_stamp_failure: str


@dataclass(frozen=True, slots=True)
class VerifiedSignature:
    """A signature in the standard's profile, and the three answers about it."""

    name: str
    part: str
    cryptography: Cryptography
    coverage: SignatureCoverage
    trust: Trust
    claimed_time: Optional[datetime]
    yes: bool
    """The only yes: valid, complete and trusted."""

    profile = "standard"

    @property
    def holds(self) -> bool:
        """The same as `yes`. Whether what is signed is unchanged, `cryptography` says."""
        return self.yes


@dataclass(frozen=True, slots=True)
class JudgedSignature:
    """A signature in the library's own profile."""

    name: str
    holds: bool
    """Whether what is signed is unchanged, and the signer is accepted."""
    code: int
    status: str
    reason: str
    signer: Optional[str]
    fingerprint: Optional[str]
    claimed_time: Optional[datetime]
    weaknesses: tuple[str, ...]

    profile = "opcmodel"

    @property
    def yes(self) -> bool:
        return self.holds


@dataclass(frozen=True, slots=True)
class Verification:
    """The signatures of a package, in both profiles."""

    signatures: tuple[Union[VerifiedSignature, JudgedSignature], ...]
    problems: tuple[str, ...]
    """Why the answer isn't yes, beside the reasons of the signatures."""

    @property
    def yes(self) -> bool:
        """Whether the package has signatures, each of them is a yes, and there are no problems."""
        return bool(self.signatures) and not self.problems and all(one.yes for one in self.signatures)


@dataclass(frozen=True, slots=True)
class Covered:
    """A part or a relationship, and the signatures that protect it."""

    place: str
    id: Optional[str]
    type: Optional[str]
    standing: str
    """`content`; or why it needn't be signed: `left out by custom`, `of signatures`."""
    signatures: tuple[str, ...]


@dataclass(frozen=True, slots=True)
class Coverage:
    """What the signatures of a package protect, in the standard's profile."""

    parts: tuple[Covered, ...]
    relationships: tuple[Covered, ...]

    @property
    def uncovered_parts(self) -> tuple[str, ...]:
        """The parts that no valid signature protects, without those of the signatures."""
        return tuple(one.place for one in self.parts if not one.signatures and one.standing != "of signatures")

    @property
    def uncovered_relationships(self) -> tuple[tuple[str, str], ...]:
        """Source and ID of the relationships that no valid signature protects."""
        return tuple(
            (one.place, one.id or "")
            for one in self.relationships
            if not one.signatures and one.standing != "of signatures"
        )


@dataclass(frozen=True, slots=True)
class NewSignature:
    """A signature that was made."""

    name: str
    part: Optional[str]
    """Its part, in the standard's profile."""
    unreachable: tuple[str, ...]
    """Parts to which no relationship leads: no program shows them, but a later relationship can."""
    dangling: tuple[str, ...]
    """Signed relationships to parts that aren't there, as `/word/document.xml#rId5`: a later part can come in their place."""


def _policy(
    trust: Union[None, Material, Iterable[Material]],
    fingerprints: Iterable[str],
    public_key: Optional[Material],
    crls: Union[None, Material, Iterable[Material]],
    time: Optional[datetime],
    accept_weak: bool,
    accept_missing_null: bool,
) -> _opcmodel.Policy:
    policy = _opcmodel.Policy()
    policy.accept_weak = accept_weak
    policy.accept_missing_null = accept_missing_null
    policy.trusts_system = isinstance(trust, str) and trust == "system"
    policy.roots = [] if policy.trusts_system else _certificates(trust)
    policy.fingerprints = list(fingerprints)
    policy.public_key = b"" if public_key is None else _read(public_key)
    policy.checks_trust = trust is not None or bool(policy.fingerprints) or public_key is not None
    if crls is not None:
        policy.revocation_lists = [
            _read(one) for one in ([crls] if isinstance(crls, (bytes, str, os.PathLike)) else crls)
        ]
    policy.time = _seconds(time)
    return policy


def _verified(row: _opcmodel._SignatureRow) -> VerifiedSignature:
    name, part, crypto, coverage, trust, claimed, yes = row
    return VerifiedSignature(
        name,
        part,
        Cryptography(
            *crypto[:3],
            tuple(Reason(*one) for one in crypto[3]),
            tuple(Reference(*one) for one in crypto[4]),
            crypto[5],
        ),
        SignatureCoverage(
            *coverage[:3],
            tuple(Unsigned(*one) for one in coverage[3]),
            coverage[4],
            tuple(Unsigned(*one) for one in coverage[5]),
            coverage[6],
        ),
        Trust(
            *trust[:4],
            None if trust[4] is None else datetime.fromtimestamp(trust[4], timezone.utc),
            *trust[5:],
        ),
        _time(claimed),
        yes,
    )


@contextlib.contextmanager
def _saved(package: Verified) -> Iterator[Package]:
    """The package, open and without changes that aren't saved."""
    if isinstance(package, Package):
        package._open.require_saved()
        yield package
    else:
        with open_package(package) as opened:
            yield opened


def _require_open(package: Package) -> None:
    if not isinstance(package, Package):
        raise TypeError(f"needs an open package, not {type(package).__name__}: see open")


def verify(
    package: Verified,
    *,
    trust: Union[None, Material, Iterable[Material]] = None,
    fingerprints: Iterable[str] = (),
    public_key: Optional[Material] = None,
    crls: Union[None, Material, Iterable[Material]] = None,
    time: Optional[datetime] = None,
    accept_weak: bool = False,
    accept_missing_null: bool = False,
) -> Verification:
    """Verifies all signatures of a package. Nothing is fetched, and nobody is trusted who isn't named.

    :param package: an open one, whose changes must be saved, or what `open` reads
    :param trust: certificates to which signers must lead, or "system" for those of the system
    :param fingerprints: SHA-256 of certificates that are trusted whatever they say
    :param public_key: of a signer who is trusted, in PEM or DER
    :param crls: revocation lists; one must cover the signer then
    :param time: at which certificates must be valid; without it, the time of a trusted time stamp, or now
    :param accept_weak: whether SHA-1 and RSA keys below 2048 bits are good enough
    :raises UnsavedChanges: save the package first
    """
    policy = _policy(trust, fingerprints, public_key, crls, time, accept_weak, accept_missing_null)
    with _saved(package) as saved:
        return _verification(saved, policy)


def _verification(package: Package, policy: _opcmodel.Policy) -> Verification:
    standard, problems = _opcmodel.verify_standard(package._open, policy)
    own, reasons = _opcmodel.verify_own(package._open, policy)
    judged = [JudgedSignature(*row[:7], _time(row[7]), tuple(row[8])) for row in own]
    return Verification(
        tuple([*map(_verified, standard), *judged]), tuple([str(Reason(*one)) for one in problems] + reasons)
    )


class Signature:
    """A signature of a package. `signatures` gives it."""

    __slots__ = ("_package", "name", "part", "profile")

    def __init__(self, package: Package, name: str, part: Optional[str], profile: str) -> None:
        self._package = package
        self.name = name
        self.part = part
        self.profile = profile

    def verify(
        self,
        *,
        trust: Union[None, Material, Iterable[Material]] = None,
        fingerprints: Iterable[str] = (),
        public_key: Optional[Material] = None,
        crls: Union[None, Material, Iterable[Material]] = None,
        time: Optional[datetime] = None,
        accept_weak: bool = False,
        accept_missing_null: bool = False,
    ) -> Union[VerifiedSignature, JudgedSignature]:
        """The answers about this signature; the arguments are those of `verify`."""
        found = verify(
            self._package,
            trust=trust,
            fingerprints=fingerprints,
            public_key=public_key,
            crls=crls,
            time=time,
            accept_weak=accept_weak,
            accept_missing_null=accept_missing_null,
        )
        for one in found.signatures:
            if (one.profile, one.name) == (self.profile, self.name):
                return one
        raise SignatureNotFound(f"the package has no signature {self.name} any more")

    def remove(self) -> None:
        """Removes it from the package."""
        _opcmodel.remove_signature(self._package._open, self.name, self.part or "")

    def __repr__(self) -> str:
        return f"<Signature {self.name}, {self.profile} profile>"


def signatures(package: Package) -> list[Signature]:
    """The signatures of an open package, in both profiles."""
    _require_open(package)
    found = _verification(package, _opcmodel.Policy()).signatures
    return [Signature(package, one.name, getattr(one, "part", None), one.profile) for one in found]


def coverage(
    package: Verified,
    *,
    accept_weak: bool = False,
    accept_missing_null: bool = False,
) -> Coverage:
    """Which signatures protect each part and each relationship, in the standard's profile. A broken one protects nothing.

    :param package: an open one, whose changes must be saved, or what `open` reads
    :raises UnsavedChanges: save the package first
    """
    policy = _policy(None, (), None, None, None, accept_weak, accept_missing_null)
    with _saved(package) as saved:
        verified, parts, relationships = _opcmodel.tabulate_coverage(saved._open, policy)
    names = [row[0] for row in verified]

    def covered(row: _opcmodel._CoverageRow) -> Covered:
        return Covered(*row[:4], tuple(names[index] for index in row[4]))

    return Coverage(tuple(map(covered, parts)), tuple(map(covered, relationships)))


def sign(
    package: Package,
    *,
    key: Optional[Material] = None,
    certificate: Union[None, Material, Iterable[Material]] = None,
    p12: Optional[Material] = None,
    password: str = "",
    profile: str = "standard",
    digest: str = "sha256",
    parts: Iterable[str] = (),
    relationships: Iterable[tuple[str, str]] = (),
    everything: bool = False,
    comments: str = "",
    time: Optional[datetime] = None,
    accept_weak: bool = False,
) -> NewSignature:
    """Signs an open package, whose changes must be saved. Saving the package writes the signature.

    :param key: a private key in PEM or DER, RSA or EC
    :param certificate: of the key, and further ones that lead to a root; without one the signature has the public key alone
    :param p12: a bundle of all that, with its password
    :param profile: standard, in which office programs sign, or opcmodel, which takes an RSA key alone and signs all
    :param parts: names of the only parts that are signed
    :param relationships: sources and IDs of the only relationships that are signed
    :param everything: whether properties and thumbnail are signed too
    :param comments: why the document is signed
    :param time: of signing, as the signature claims; without it, now
    :raises UnsavedChanges: save the package first
    """
    _require_open(package)
    if (key is None) == (p12 is None):
        raise TypeError("either a key or a bundle signs")
    private = b"" if key is None else _read(key)
    if profile == "opcmodel":
        if certificate is not None or p12 is not None or everything or comments or parts or relationships:
            raise TypeError("in the profile opcmodel, a key signs the whole package")
        return NewSignature(_opcmodel.sign_own(package._open, private, digest), None, (), ())
    if profile != "standard":
        raise ValueError(f"there is no profile {profile}")
    name, part, unreachable, dangling = _opcmodel.sign_standard(
        package._open,
        private,
        _certificates(certificate),
        b"" if p12 is None else _read(p12),
        password,
        digest,
        accept_weak,
        everything,
        list(parts),
        list(relationships),
        comments,
        _seconds(time),
    )
    return NewSignature(name, part, tuple(unreachable), tuple(dangling))
