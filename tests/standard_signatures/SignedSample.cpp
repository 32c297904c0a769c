#include "standard_signatures/SignedSample.hpp"

#include "canonical/CanonicalXml.hpp"
#include "crypto/Digest.hpp"
#include "support/EventComparison.hpp"
#include "transform/RelationshipTransform.hpp"

#include <bedrock/crypto/SignatureValue.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

#include <openssl/rsa.h>

#include <stdexcept>

namespace opc::test {

namespace {

using namespace standard_signatures;

const std::string BASE = "http://schemas.openxmlformats.org/package/2006/relationships/";
const std::string OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::string MAIN_TYPE =
    "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml";
const std::string RELS_TYPE = "application/vnd.openxmlformats-package.relationships+xml";
const std::string SIGNATURES = "application/vnd.openxmlformats-package.digital-signature-";

std::string relationship(const std::string& id, const std::string& type, const std::string& target,
                         const std::string& more = {}) {
    return "<Relationship Id='" + id + "' Type='" + type + "' Target='" + target + "'" + more + "/>";
}

void replaceFirst(std::string& text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    if (place == std::string::npos)
        throw std::logic_error("there is no " + from + " in " + text);
    text.replace(place, from.size(), to);
}

XmlTree treeOf(const std::string& document) {
    const Bytes bytes = toBytes(document);
    SlowStream stream(bytes, 4096);
    return XmlTree::read(stream);
}

const XmlTreeNode& find(const XmlTree& tree, const std::function<bool(const XmlTreeNode&)>& isIt) {
    for (const XmlTreeNode* node = &tree.root(); node != nullptr; node = nextInSubtree(*node, tree.root()))
        if (node->kind == XmlTreeNode::Kind::Element && isIt(*node))
            return *node;
    throw std::logic_error("there is no such element");
}

std::string digestBy(const std::string& method, const std::string& octets) {
    return base64(digestOf(octets, findDigestMethod(method)));
}

CanonicalForm formOf(const std::string& uri) {
    CanonicalForm form;
    findCanonicalForm(uri, form);
    return form;
}

std::string digestElements(const std::string& method, const std::string& value) {
    return "<DigestMethod Algorithm='" + method + "'/><DigestValue>" + value + "</DigestValue>";
}

/// A DigestInfo without NULL, for SHA-256.
std::vector<unsigned char> signWithoutNull(const Identity& signer, const std::string& content) {
    std::vector<unsigned char> block{0x30, 0x2F, 0x30, 0x0B, 0x06, 0x09, 0x60, 0x86, 0x48,
                                     0x01, 0x65, 0x03, 0x04, 0x02, 0x01, 0x04, 0x20};
    const auto digest = digestOf(content, findDigestMethod("http://www.w3.org/2001/04/xmlenc#sha256"));
    block.insert(block.end(), digest.begin(), digest.end());
    const std::shared_ptr<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(signer.key.get(), nullptr),
                                                EVP_PKEY_CTX_free);
    std::vector<unsigned char> value(256);
    std::size_t size = value.size();
    if (EVP_PKEY_sign_init(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        EVP_PKEY_sign(context.get(), value.data(), &size, block.data(), block.size()) != 1)
        throw std::runtime_error("no value without NULL");
    return value;
}

std::string valueOf(const Identity& signer, const SignatureRecipe& recipe, const std::string& signedInfo) {
    if (recipe.omitsNull)
        return base64(signWithoutNull(signer, signedInfo));
    const auto& method = findSignatureMethod(recipe.method);
    return base64(bedrock::crypto::makeSignatureValue(signer.getPrivateKey(), method.scheme, method.algorithm,
                                                      signedInfo));
}

std::string xadesObject(const Identity& signer, const std::string& digest) {
    const std::vector<unsigned char> der = signer.certificate.getAsByteArray();
    return "<Object><xd:QualifyingProperties xmlns:xd='http://uri.etsi.org/01903/v1.3.2#' "
           "Target='#idPackageSignature'>"
           "<xd:SignedProperties "
           "Id='idSignedProperties'><xd:SignedSignatureProperties><xd:SigningTime>2026-11-26T10:00:00Z"
           "</xd:SigningTime><xd:SigningCertificate><xd:Cert><xd:CertDigest>" +
           digestElements(digest, digestBy(digest, std::string(der.begin(), der.end()))) +
           "</xd:CertDigest></xd:Cert></xd:SigningCertificate></xd:SignedSignatureProperties></"
           "xd:SignedProperties>"
           "</xd:QualifyingProperties></Object>";
}

} // namespace

std::string base64(const std::vector<unsigned char>& bytes) {
    return toUDEString(bedrock::crypto::utils::base64Encode(bytes));
}

SignatureRecipe::Change replacing(const std::string& from, const std::string& to) {
    return [from, to](std::string& text) { replaceFirst(text, from, to); };
}

SignedSample::SignedSample() {
    store.setContentTypes(
        contentTypes(USUAL_CONTENT_TYPES + "<Default Extension='sigs' ContentType='" + SIGNATURES +
                     "origin'/><Override PartName='/word/document.xml' ContentType='" + MAIN_TYPE +
                     "'/><Override PartName='/_xmlsignatures/sig1.xml' ContentType='" + SIGNATURES +
                     "xmlsignature+xml'/><Override PartName='/_xmlsignatures/sig2.xml' ContentType='" +
                     SIGNATURES + "xmlsignature+xml'/><Default Extension='cer' ContentType='" + SIGNATURES +
                     "certificate'/><Default Extension='png' ContentType='image/png'/><Override "
                     "PartName='/docProps/core.xml' "
                     "ContentType='application/vnd.openxmlformats-package.core-properties+xml'/>"));
    store.setPart(
        u"/_rels/.rels",
        relationships(relationship("rId1", OFFICE + "officeDocument", "word/document.xml") +
                      relationship("rId2", BASE + "metadata/core-properties", "docProps/core.xml") +
                      relationship("rId3", BASE + "digital-signature/origin", "_xmlsignatures/origin.sigs")));
    store.setPart(u"/word/_rels/document.xml.rels",
                  relationships(relationship("rId10", OFFICE + "styles", "styles.xml") +
                                relationship("rId2", OFFICE + "image", "/word/media/\xC3\xA4.png") +
                                relationship("rId1", OFFICE + "hyperlink", "http://e/?a&amp;b",
                                             " TargetMode='External'")));
    store.setPart(u"/word/document.xml", toBytes("<document>content</document>"));
    store.setPart(u"/word/styles.xml", toBytes("<styles/>"));
    store.setPart(u"/word/media/%C3%A4.png", {});
    store.setPart(
        u"/docProps/core.xml",
        toBytes("<coreProperties "
                "xmlns='http://schemas.openxmlformats.org/package/2006/metadata/core-properties'/>"));
    store.setPart(u"/_xmlsignatures/origin.sigs", {});
}

std::string SignedSample::referenceTo(const std::u16string& part, const std::string& contentType,
                                      const std::string& digest) const {
    const std::string method = digest.empty() ? SignatureRecipe().digest : digest;
    return "<Reference URI='" + toUDEString(part) + "?ContentType=" + contentType + "'>" +
           digestElements(method, digestBy(method, toText(store.partBytes(part)))) + "</Reference>";
}

std::string SignedSample::referenceTo(const std::u16string& part, const std::vector<std::string>& ids,
                                      const std::string& digest) const {
    const std::string method = digest.empty() ? SignatureRecipe().digest : digest;
    RelationshipSelection selection;
    std::string elements;
    for (const std::string& id : ids) {
        selection.ids.insert(id);
        elements += "<mdssi:RelationshipReference SourceId='" + id + "'/>";
    }
    const Bytes document = store.partBytes(part);
    SlowStream stream(document, 4096);
    const auto relationships = RelationshipsDocument::read(stream);
    return "<Reference URI='" + toUDEString(part) + "?ContentType=" + RELS_TYPE +
           "'><Transforms><Transform "
           "Algorithm='http://schemas.openxmlformats.org/package/2006/RelationshipTransform' "
           "xmlns:mdssi='http://schemas.openxmlformats.org/package/2006/digital-signature'>" +
           elements +
           "</Transform><Transform "
           "Algorithm='http://www.w3.org/TR/2001/REC-xml-c14n-20010315'/></Transforms>" +
           digestElements(method, digestBy(method, canonicalize(select(relationships, selection)))) +
           "</Reference>";
}

std::string SignedSample::canonicalReferenceTo(const std::u16string& part) const {
    const SignatureRecipe usual;
    return "<Reference URI='" + toUDEString(part) + "?ContentType=" + RELS_TYPE +
           "'><Transforms><Transform Algorithm='" + usual.canonicalization + "'/></Transforms>" +
           digestElements(
               usual.digest,
               digestBy(usual.digest, canonicalize(treeOf(toText(store.partBytes(part))).root()))) +
           "</Reference>";
}

void SignedSample::sign(const SignatureRecipe& recipe, const std::u16string& part) {
    const Identity& signer = recipe.signer == nullptr ? usualSigner() : *recipe.signer;
    const auto change = [](const SignatureRecipe::Change& by, std::string& text) {
        if (by)
            by(text);
    };
    std::string manifest =
        referenceTo(u"/word/document.xml", MAIN_TYPE, recipe.digest) +
        referenceTo(u"/word/styles.xml", "application/xml", recipe.digest) +
        referenceTo(u"/word/media/%C3%A4.png", "image/png", recipe.digest) +
        referenceTo(u"/_rels/.rels", std::vector<std::string>{"rId1"}, recipe.digest) +
        referenceTo(u"/word/_rels/document.xml.rels", {"rId2", "rId10", "rId1"}, recipe.digest);
    change(recipe.changeManifest, manifest);
    const std::string reference =
        "<Reference URI='#idPackageObject'>" + digestElements(recipe.digest, "@1") + "</Reference>";
    const std::string ofXades =
        recipe.hasXades ? "<Reference URI='#idSignedProperties'><Transforms><Transform Algorithm='" +
                              recipe.canonicalization + "'/></Transforms>" +
                              digestElements(recipe.digest, "@2") + "</Reference>"
                        : std::string();
    std::string ofOthers;
    for (const std::string& id : recipe.alsoSigned)
        ofOthers +=
            "<Reference URI='#" + id + "'>" + digestElements(recipe.digest, "@" + id) + "</Reference>";
    std::string document =
        "<?xml version='1.0'?>\r\n<Signature xmlns='http://www.w3.org/2000/09/xmldsig#' "
        "Id='idPackageSignature'>\r\n<SignedInfo>"
        "<CanonicalizationMethod Algorithm='" +
        recipe.canonicalization + "'/><SignatureMethod Algorithm='" + recipe.method + "'/>" + reference +
        ofXades + ofOthers + recipe.moreReferences +
        "</SignedInfo><SignatureValue>@3</SignatureValue><KeyInfo>" +
        (recipe.keyInfo.empty()
             ? "<X509Data><X509Certificate>" + base64(signer.certificate.getAsByteArray()) +
                   "</X509Certificate></X509Data>"
             : recipe.keyInfo) +
        "</KeyInfo><Object Id='idPackageObject'><Manifest>" + manifest + "</Manifest></Object>" +
        (recipe.hasXades ? xadesObject(signer, recipe.digest) : std::string()) + recipe.moreObjects +
        "</Signature>";
    change(recipe.changeDocument, document);
    const auto digestOfId = [&](const std::string& id, const CanonicalForm& form) {
        const XmlTree tree = treeOf(document);
        return digestBy(
            recipe.digest,
            canonicalize(find(tree, [&id](const XmlTreeNode& node) { return attributeOf(node, "Id") == id; }),
                         form));
    };
    replaceFirst(document, "@1", digestOfId("idPackageObject", {}));
    if (recipe.hasXades)
        replaceFirst(document, "@2", digestOfId("idSignedProperties", formOf(recipe.canonicalization)));
    for (const std::string& id : recipe.alsoSigned)
        replaceFirst(document, "@" + id, digestOfId(id, {}));
    change(recipe.changeSignedInfo, document);
    const XmlTree tree = treeOf(document);
    const XmlTreeNode& signedInfo =
        find(tree, [](const XmlTreeNode& node) { return node.name == "SignedInfo"; });
    replaceFirst(document, "@3",
                 valueOf(signer, recipe, canonicalize(signedInfo, formOf(recipe.canonicalization))));
    change(recipe.changeAtLast, document);
    store.setPart(part, toBytes(document));
    store.setPart(
        u"/_xmlsignatures/_rels/origin.sigs.rels",
        relationships(relationship("rId1", BASE + "digital-signature/signature", "sig1.xml") +
                      (part == SIGNATURE
                           ? std::string()
                           : relationship("rId2", BASE + "digital-signature/signature", "sig2.xml"))));
}

void SignedSample::replace(const std::u16string& part, const std::string& from, const std::string& to) {
    std::string text = toText(store.partBytes(part));
    replaceFirst(text, from, to);
    store.setPart(part, toBytes(text));
}

void SignedSample::replaceContentTypes(const std::string& from, const std::string& to) {
    std::string text = toText(store.contentTypes());
    replaceFirst(text, from, to);
    store.setContentTypes(toBytes(text));
}

PackageVerification SignedSample::verify(const VerificationPolicy& policy) {
    store.open(interfaces::OpenMode::ReadOnly);
    PackageVerification result = standard_signatures::verify(store, policy);
    store.close(true);
    return result;
}

VerificationPolicy SignedSample::trusting(const Identity& signer) {
    VerificationPolicy policy;
    policy.trust.emplace().roots.addCertificate(signer.certificate);
    return policy;
}

const Identity& SignedSample::usualSigner() {
    static const Identity signer = makeSigner(nullptr);
    return signer;
}

std::string reasonsOf(const PackageVerification& result) {
    std::string text;
    for (const Reason& problem : result.problems)
        text += "problem: " + problem.text + "\n";
    for (const VerifiedSignature& signature : result.signatures) {
        for (const Reason& reason : signature.cryptography.reasons)
            text += reason.text + "\n";
        for (const CheckedReference& reference : signature.cryptography.references)
            if (reference.wrong)
                text += reference.wrong->place.substr(0, reference.wrong->place.find('?')) + ": " +
                        reference.wrong->text + "\n";
        for (const Unsigned& gap : signature.coverage.gaps)
            text += "gap: " + gap.place + " " + gap.id + (gap.id.empty() ? "" : " ") + gap.text + "\n";
        if (signature.trust.status != TrustAnswer::Status::Trusted)
            text += "trust: " + signature.trust.reason + "\n";
    }
    return text;
}

} // namespace opc::test
