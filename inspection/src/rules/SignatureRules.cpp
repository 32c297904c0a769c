#include "rules/RuleTable.hpp"

#include <iterator>

namespace opc::inspection {

namespace {

constexpr unsigned OPC_AND_SECURITY = OPC | SECURITY;

constexpr Rule SIGNATURE_RULES[] = {
    {"M6.1", "Signature origin", Severity::Error, OPC, "M6.1",
     "A package has at most one signature origin: a part of the origin's content type, to which one "
     "relationship of "
     "the package leads.",
     "A program added a signature without looking for the origin that was there.", "",
     "Readers take the first origin or the last, and so they see different signatures.",
     "Remove the signatures and sign again."},
    {"M6.3", "Signature part outside the origin", Severity::Error, OPC_AND_SECURITY, "M6.3",
     "Each signature part is the internal target of a relationship of the origin, and has the content type "
     "of "
     "signatures.",
     "A relationship was removed to hide a signature, or a part was added to look like one.", "",
     "Most readers follow the relationships and see no signature. Office for Mac once showed an empty "
     "signature part as "
     "a signature.",
     "Add the relationship, or remove the part."},
    {"M6.4", "Certificate part outside a signature", Severity::Warning, OPC, "M6.4, S6.2",
     "Each certificate part is the internal target of a certificate relationship of the signature that uses "
     "it.",
     "A signature was removed without its certificate.", "", "Readers ignore the part.", "Remove the part."},
    {"M6.5", "Signed reference that leads nowhere", Severity::Error, OPC_AND_SECURITY, "M6.5",
     "Each reference of the signed information leads to the one element of the same signature that has this "
     "Id.",
     "A signature was changed after it was made, often to pass something unsigned for signed.", "",
     "Strict readers refuse the signature. Others may fetch what the reference names, or check another "
     "element than "
     "the one that they show.",
     "Don't trust the signature; sign again."},
    {"M6.6", "Transform of the package object", Severity::Error, OPC, "M6.6",
     "The reference to the package object has no transforms but canonicalization.",
     "A signature was made by a general program for XML signatures, or was forged.", "",
     "Readers refuse the signature.", "Sign again."},
    {"M6.7", "Package object", Severity::Error, OPC_AND_SECURITY, "M6.7, M6.15",
     "A signature has exactly one package object: a child of the signature whose Id is idPackageObject.",
     "A signature of another document was put into the package, or the signed object was moved to hide it.",
     "", "A reader may take another object than the signed one for the list of what is signed.",
     "Don't trust the signature; sign again."},
    {"M6.8", "Content of the package object", Severity::Error, OPC, "M6.8",
     "The package object has one Manifest and one SignatureProperties, and nothing else.",
     "A program wrote the signature in a way of its own.", "", "Readers refuse the signature.",
     "Sign again."},
    {"M6.9", "Signed part that is missing", Severity::Error, OPC_AND_SECURITY, "M6.9, M6.22",
     "Each reference of the manifest leads to a part of the package.",
     "A part was removed or renamed after signing.", "", "Readers refuse the signature.",
     "Restore the part, or sign again."},
    {"M6.10", "Reference without a content type", Severity::Error, OPC, "M6.10",
     "The query of a manifest's reference states the content type of the part.",
     "A program wrote the signature in a way of its own.", "",
     "Without it, the content type of a signed part can be changed.", "Sign again."},
    {"M6.11", "Content type changed after signing", Severity::Error, OPC_AND_SECURITY, "M6.11",
     "The content type that a reference states is that of the part, to the letter.",
     "The content types were changed after signing: the digests don't cover them.", "",
     "Some readers accept the signature, among them LibreOffice, and then treat the part as something else "
     "than was "
     "signed.",
     "Restore the content type, or sign again."},
    {"M6.12", "Transform of a signed part", Severity::Error, OPC_AND_SECURITY, "M6.12",
     "References of the manifest have no transforms but canonicalization and the relationship transform.",
     "A forger used a transform that leaves out what was changed.", "",
     "Careful readers refuse the signature.", "Don't trust the signature; sign again."},
    {"M6.14", "Time of signing", Severity::Warning, OPC, "M6.14",
     "The package object has one property idSignatureTime about the signature, with one time.",
     "A program wrote the signature in a way of its own.", "",
     "Readers show no time, or refuse the signature.", "Sign again."},
    {"M6.16", "Package object not signed", Severity::Error, OPC_AND_SECURITY, "M6.16",
     "The signed information refers to the package object exactly once.",
     "The signature of another document was put into the package: it holds, and says nothing about the "
     "package.",
     "", "A reader that checks only the mathematics shows the package as signed.",
     "Don't trust the signature; sign again."},
    {"M6.19", "Transform of another object", Severity::Error, OPC, "M6.19",
     "References of the signed information have no transforms but canonicalization.",
     "A signature was made by a general program for XML signatures, or was forged.", "",
     "Careful readers refuse the signature; others run the transform, as XSLT.", "Sign again."},
    {"M6.21", "Key that isn't the certificate's", Severity::Warning, OPC_AND_SECURITY, "M6.21",
     "If a signature holds certificates, the key in it is that of one of them, and so is the certificate "
     "that its signed "
     "properties (XAdES) name.",
     "The certificate was exchanged: nothing in it is signed.", "",
     "A reader checks by the key and shows the certificate's owner as the signer.",
     "Don't trust the signature; sign again."},
    {"M6.23", "Format of the time", Severity::Error, OPC, "M6.23",
     "The format of the time of signing is one of six: YYYY, YYYY-MM, YYYY-MM-DD, and these with a time to "
     "the minute, the "
     "second or a fraction of it.",
     "A program wrote a format in its own words.", "", "Readers show no time.", "Sign again."},
    {"M6.24", "Time in another format", Severity::Warning, OPC, "M6.24",
     "The time of signing has the format that is stated beside it.",
     "A program states one format and writes another.", "", "Most readers don't compare the two.",
     "Sign again."},
    {"M6.25", "Relationships signed by their bytes", Severity::Info, OPC, "M6.25",
     "A reference to a relationships part without the relationship transform covers all relationships in it.",
     "The signer wanted it so.", "Signers of VSIX packages.",
     "The signature breaks when a program adds a relationship, even one for a second signature.", "Nothing."},
    {"M6.26", "Relationship transform without canonicalization", Severity::Error, OPC, "M6.13, M6.26",
     "Canonicalization follows the relationship transform at once.",
     "A program left out the step, as readers do it anyway.", "", "Strict readers refuse the signature.",
     "Sign again."},
    {"M6.27", "Signed relationship that is missing", Severity::Warning, OPC, "M6.27",
     "Each relationship that a signature names by its Id is there.",
     "A relationship was removed after signing.", "",
     "The digest of the relationships differs, and the signature is broken.",
     "Restore the relationship, or sign again."},
    {"M6.18", "Signed reference with a fragment", Severity::Error, OPC, "M6.18",
     "References of the manifest name whole parts: they have no fragment.",
     "A program wrote the signature in a way of its own.", "", "Readers refuse the signature.",
     "Sign again."},
    {"M6.30", "Broken signature", Severity::Error, OPC_AND_SECURITY, "M6.29, M6.30",
     "The digests and the value of a signature are those of what it covers. Of signatures in the "
     "standard's form, only the digests of plain bytes are compared here.",
     "Something was changed after signing.", "", "opctool verify refuses the signature.",
     "Restore what was changed, or sign again."},
    {"M6.32", "Markup compatibility in a signature", Severity::Error, OPC, "M6.32",
     "The package object has no elements and attributes of markup compatibility.",
     "A program wrote the signature in a way of its own.", "",
     "Two readers could see two different lists of what is signed.", "Sign again."},
    {"M6.34", "Canonicalization of the signed information", Severity::Error, OPC, "M6.34",
     "The signed information is canonicalized by Canonical XML 1.0, with or without comments.",
     "A signature was made by a general program for XML signatures.", "", "Readers refuse the signature.",
     "Sign again."},
    {"M6.35", "Two transforms of one relationships part", Severity::Error, OPC, "M6.35",
     "A signature has at most one relationship transform for each relationships part.",
     "A program wrote a reference for each signed relationship.", "", "Strict readers refuse the signature.",
     "Sign again."},
    {"S6.1", "Content of the signature origin", Severity::Info, OPC, "S6.1", "The signature origin is empty.",
     "A program wrote a placeholder.", "", "Readers don't look into it.", "Empty the part."},
    {"S6.3", "XML signed by its bytes", Severity::Info, OPC, "S6.3",
     "XML parts are canonicalized before signing.",
     "Signers leave the step out, as it makes no difference to a part that nobody writes again.",
     "Nearly all programs that sign.", "The signature breaks when a program writes the part again.",
     "Nothing."},
    {"S6.5", "Signed element that is no object", Severity::Info, OPC, "S6.5",
     "The signed information refers to objects of the signature, and to the signed properties of XAdES.",
     "The signer signs another element, and doesn't say of which type it is.", "", "Readers accept it.",
     "Nothing."},
    {"SEC-71", "Not signed", Severity::Warning, SECURITY, "",
     "In a signed package, signatures name all parts and relationships but those for properties and "
     "thumbnails.",
     "Something was added after signing; or the signer left it out.", "",
     "Signatures stay valid when parts and relationships are added: readers show the addition as signed.",
     "Look at what isn't named; sign again."},
    {"SEC-72", "Signature that can't be used", Severity::Error, OPC_AND_SECURITY, "M6.20, M1.20",
     "The signature origin and each signature part can be found and read.",
     "A signature was removed in part, or the part was damaged to hide that the package was signed.", "",
     "Readers show no signature, or refuse the package.",
     "Sign again, or remove what is left of the signature."},
    {"SEC-73", "Form of a signature", Severity::Info, SECURITY, "",
     "Signatures have the standard's form, which office programs write, or that of opcmodel. The two have "
     "different "
     "relationship types.",
     "opctool sign --profile opcmodel writes the form of opcmodel.", "",
     "Office programs don't see signatures in opcmodel's form. opctool verify reads both.", "Nothing."},
    {"SEC-74", "Weak algorithm or key", Severity::Warning, SECURITY, "M6.17",
     "Signatures and digests aren't made by MD5, SHA-1, RIPEMD, DSA or a keyed digest, and RSA keys have at "
     "least 2,048 "
     "bits. The certificate was valid at the time that the signature claims.",
     "The signature is old; Office 2007 and 2010 signed with SHA-1.", "", "Readers accept it or warn.",
     "Sign again with SHA-256 and a larger key."},
    {"P1-3", "Relationship around signatures", Severity::Warning, OFFICE, "ECMA-376 Part 1",
     "The signature origin is the target of the package alone, and signature parts have relationships to "
     "certificates alone.",
     "A part was attached to a signature, which no signature covers.", "",
     "Readers don't follow these relationships.", "Remove the relationship."},
};

} // namespace

RuleRows signatureRules() {
    return {SIGNATURE_RULES, std::size(SIGNATURE_RULES)};
}

} // namespace opc::inspection
