#include "signing/NewDocument.hpp"

#include "canonical/CanonicalXml.hpp"
#include "crypto/Digest.hpp"
#include "document/Vocabulary.hpp"
#include "signing/SignatureObjects.hpp"
#include "signing/SignatureText.hpp"

#include <bedrock/crypto/SignatureValue.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>

#include <stdexcept>

namespace opc::standard_signatures {

namespace {

const std::string START =
    R"(<Signature xmlns=")" + std::string(vocabulary::SIGNATURE) + R"(" Id="idPackageSignature">)";
constexpr const char* END = "</Signature>";

/// Everything is digested as a reader of the whole document will find it: in its place below the root.
XmlTree readUnderRoot(const std::string& elements) {
    const std::string document = START + elements + END;
    const std::vector<unsigned char> bytes(document.begin(), document.end());
    ByteArrayInAdaptor stream(bytes);
    try {
        return XmlTree::read(stream);
    } catch (const model::InvalidXMLDocument& failure) {
        throw SigningRefused(std::string("The signature can't be written: ") + failure.details());
    }
}

const XmlTreeNode& find(const XmlTree& tree, const std::string& id) {
    const XmlTreeNode& root = tree.root();
    for (const XmlTreeNode* node = &root; node != nullptr; node = nextInSubtree(*node, root))
        if (node->kind == XmlTreeNode::Kind::Element && attributeOf(*node, "Id") == id)
            return *node;
    throw std::logic_error("no element has the Id " + id);
}

std::string composeReference(const XmlTreeNode& element, const std::string& id, const DigestMethod& digest) {
    const bool isObject = element.is(vocabulary::SIGNATURE, "Object");
    return "<Reference Type=\"" +
           (isObject ? std::string(vocabulary::SIGNATURE) + "Object"
                     : std::string("http://uri.etsi.org/01903#SignedProperties")) +
           "\" URI=\"#" + id + "\">" +
           (isObject
                ? std::string()
                : "<Transforms><Transform Algorithm=\"" + std::string(CANONICAL_XML) + "\"/></Transforms>") +
           composeDigest(digest, digestOf(canonicalize(element), digest)) + "</Reference>";
}

std::string composeSignedInfo(const SignatureMethod& method, const DigestMethod& digest,
                              const std::string& objects, const std::vector<std::string>& ids) {
    const XmlTree tree = readUnderRoot(objects);
    std::string references;
    for (const std::string& id : ids)
        references += composeReference(find(tree, id), id, digest);
    return "<SignedInfo><CanonicalizationMethod Algorithm=\"" + std::string(CANONICAL_XML) +
           "\"/><SignatureMethod Algorithm=\"" + std::string(method.uri) + "\"/>" + references +
           "</SignedInfo>";
}

} // namespace

std::string composeSignedDocument(const Signer& signer, const SignatureMethod& method,
                                  const DigestMethod& digest, const std::string& objects,
                                  const std::vector<std::string>& ids) {
    const std::string signedInfo = composeSignedInfo(method, digest, objects, ids);
    const XmlTree tree = readUnderRoot(signedInfo);
    const std::vector<unsigned char> value =
        bedrock::crypto::makeSignatureValue(signer.key.getPrivateKey(), method.scheme, method.algorithm,
                                            canonicalize(*firstChildElement(tree.root())));
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n" + START + signedInfo +
           "<SignatureValue>" + base64Of(value) + "</SignatureValue>" + composeKeyInfo(signer) + objects +
           END;
}

} // namespace opc::standard_signatures
