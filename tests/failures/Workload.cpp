#include "Workload.hpp"

#include "support/PackageContent.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <stdexcept>

namespace opc::test {

using namespace opc::model;

namespace {

const bedrock::crypto::RsaKeyPair& keys() {
    static const bedrock::crypto::RsaKeyPair made = bedrock::crypto::generateRsaKeyPair(1024);
    return made;
}

const SignatureParams& params() {
    static const SignatureParams fixed(DigestMethod::SHA256, SignatureMethod::RSA1024);
    return fixed;
}

void require(bool holds, const char* what) {
    if (!holds)
        throw std::logic_error(what);
}

/// The content from its start: a failed read has left the stream at any position.
std::string readFromStart(const Part& part) {
    InputStream& stream = part.getInputStream();
    stream.close();
    stream.open();
    return readAll(part);
}

std::string describeRelationships(const RelationshipSource& source) {
    std::string text;
    for (const Relationship& relationship : source.getRelationships())
        text += "  " + toUDEString(relationship.getID()) + ' ' + toUDEString(relationship.getType()) + ' ' +
                toUDEString(relationship.getTarget()) + '\n';
    return text;
}

template <typename Add>
std::string describeParts(const Package& package, const Add& add) {
    std::string text = describeRelationships(package);
    for (const Part& part : package.getParts(ExcludeMode::ExcludeNone))
        text += toUDEString(part.getName().toString()) + ' ' + toUDEString(part.getContentType().toString()) +
                '\n' + describeRelationships(part) + add(part);
    return text;
}

/// A title that Xerces must read and write.
constexpr char16_t LEFT_TO_XERCES[] = u"\U0001F600";

void setTitle(Package& package, const char16_t* title) {
    CoreProperties properties;
    properties.setTitle(title);
    PackageHelper::createOrUpdateCoreProperties(package, properties);
}

void requireTitle(const Package& package, const char16_t* title) {
    require(PackageHelper::getCoreProperties(package).getTitle() == std::u16string(title), "title");
}

} // namespace

const std::vector<Workload::Step>& Workload::steps() {
    static const std::vector<Step> all{
        {"open", true, [](Workload& w) { w.package.open(interfaces::OpenMode::ReadWrite); }},
        {"read", true,
         [](Workload& w) {
             require(readFromStart(w.package.getPart(PartName(u"/a.xml"))) == "<a>content</a>", "content");
         }},
        {"create", true,
         [](Workload& w) {
             w.package.createPart(PartName(u"/content/new.bin"), ContentType(u"a/new"), StandardPartInfo());
         }},
        {"write", true,
         [](Workload& w) { writeAll(w.package.getPart(PartName(u"/content/new.bin")), "new"); }},
        {"relate part", true,
         [](Workload& w) {
             w.package.getPart(PartName(u"/content/new.bin"))
                 .createInternalRelationship(u"urn:new", URI(u"/a.xml"), u"new");
         }},
        {"relate package", true,
         [](Workload& w) { w.package.createExternalRelationship(u"urn:new", u"http://e/new", u"new"); }},
        {"set properties", false, [](Workload& w) { setTitle(w.package, LEFT_TO_XERCES); }},
        {"get properties", true, [](Workload& w) { requireTitle(w.package, LEFT_TO_XERCES); }},
        {"sign", false,
         [](Workload& w) {
             w.signature = w.signatures.sign(
                 {PartName(u"/a.xml"), PartName(PackageHelper::getCorePropertiesURI())},
                 {RelationshipSelector(URI(u"/a.xml"), RelationshipSelectorType::SourceType, u"urn:next")},
                 keys().getPrivateKey(), keys().getPublicKey(), params());
         }},
        {"verify", true,
         [](Workload& w) {
             require(w.signatures.verifySignature(*w.signature, keys().getPublicKey()).isProperlyCodesigned(),
                     "signature");
         }},
        {"countersign", false,
         [](Workload& w) { w.signatures.countersignAllSignatures(keys().getPrivateKey(), params()); }},
        {"verify countersignature", true,
         [](Workload& w) {
             require(w.signatures.verifyCountersignature(keys().getPublicKey()).isProperlyCodesigned(),
                     "countersignature");
         }},
        {"save", true, [](Workload& w) { w.package.close(false); }},
        {"open again", true, [](Workload& w) { w.package.open(interfaces::OpenMode::ReadWrite); }},
        {"load signatures", true,
         [](Workload& w) { require(w.signatures.getSignatures().size() == 2, "signatures"); }},
        {"verify loaded signature", true,
         [](Workload& w) {
             require(w.signatures.verifySignature(w.signatures.getSignature(u"sig1"), keys().getPublicKey())
                         .isProperlyCodesigned(),
                     "loaded signature");
         }},
        {"remove countersignature", false, [](Workload& w) { w.signatures.removeCountersignature(); }},
        {"remove signature", false, [](Workload& w) { w.signatures.removeSignature(*w.signature); }},
        {"set plain properties", false, [](Workload& w) { setTitle(w.package, u"plain"); }},
        {"get plain properties", true, [](Workload& w) { requireTitle(w.package, u"plain"); }},
        {"delete relationship", false,
         [](Workload& w) { w.package.getPart(PartName(u"/a.xml")).deleteRelationship(u"next"); }},
        {"delete part", true,
         [](Workload& w) { w.package.deletePart(PartName(u"/content/second.document")); }},
        {"save again", true, [](Workload& w) { w.package.close(false); }},
    };
    return all;
}

void Workload::fill(physical::MemoryPackage& store) {
    test::fill(store, {u"/a.xml", u"/content/second.document"});
    store.setContentTypes(
        contentTypes(USUAL_CONTENT_TYPES + R"(<Default Extension="document" ContentType="a/document"/>)"));
    store.setPart(u"/a.xml", toBytes("<a>content</a>"));
    store.setPart(u"/_rels/.rels",
                  relationships(R"(<Relationship Id="main" Type="urn:main" Target="a.xml"/>)"));
    const auto leadTo = [](const std::string& target) {
        return relationships(R"(<Relationship Id="next" Type="urn:next" Target=")" + target + R"("/>)");
    };
    store.setPart(u"/_rels/a.xml.rels", leadTo("content/second.document"));
    store.setPart(u"/content/_rels/second.document.rels", leadTo("/a.xml"));
}

std::string describe(const Package& package) {
    return describeParts(package, [](const Part&) { return std::string(); });
}

std::string describeWithContent(const Package& package) {
    return describeParts(package, readFromStart);
}

std::string contentOf(const physical::MemoryPackage& store) {
    std::string text = toText(store.contentTypes());
    for (const std::u16string& name : store.partNames())
        text += '\n' + toUDEString(name) + '\n' + toText(store.partBytes(name));
    return text;
}

} // namespace opc::test
