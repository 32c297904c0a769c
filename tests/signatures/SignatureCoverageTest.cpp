#include "SignatureDocuments.hpp"
#include "SignedPackage.hpp"

#include <opc/model/SignatureCoverage.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr char16_t SIGNATURE_PART[] = u"/_xmlsignatures/sig1.xml";
constexpr char16_t ORIGIN_PART[] = u"/_xmlsignatures/origin.sigs";

class Coverage : public SignedPackage {
protected:
    /// What the signature covers, in the order of the package: parts by name, relationships as SOURCE:ID.
    std::vector<std::u16string> coveredBy(const DigitalSignature& signature) const {
        const SignatureCoverage coverage(*manager, signature);
        std::vector<std::u16string> covered;
        const auto add = [&](const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                if (coverage.covers(relationship))
                    covered.push_back(relationship.getSourceURI().toString() + u":" + relationship.getID());
        };
        for (const Part& entry : package->getParts()) {
            if (coverage.covers(entry.getName()))
                covered.push_back(entry.getName().toString());
            add(entry);
        }
        add(*package);
        return covered;
    }

    /// Of the closed package.
    std::string signatureText(const char16_t* name = SIGNATURE_PART) const {
        return toText(store.partBytes(name));
    }

    /// Opens the closed package with another signature part.
    DigitalSignature withSignature(const std::string& text) {
        store.setPart(SIGNATURE_PART, toBytes(text));
        open();
        return manager->getSignature(u"sig1");
    }
};

TEST_F(Coverage, followsWhatWasSelected) {
    using Names = std::vector<std::u16string>;
    using Selectors = std::vector<RelationshipSelector>;
    constexpr auto BY_ID = RelationshipSelectorType::SourceId;
    constexpr auto BY_TYPE = RelationshipSelectorType::SourceType;
    const URI root(u"/"), partURI(u"/A.xml"); // names differ in case
    const std::tuple<std::vector<PartName>, Selectors, Names> cases[] = {
        {{PartName(u"/B.xml")}, {}, {u"/b.xml"}},
        {{}, {{root, BY_ID, u"rId1"}}, {u"/:rId1"}},
        {{}, {{root, BY_TYPE, u"urn:link"}}, {u"/:rId2"}},
        {{}, {{partURI, BY_ID, u"rId1"}}, {u"/a.xml:rId1"}},
        {{PartName(u"/a.xml")}, {{partURI, BY_TYPE, u"urn:next"}}, {u"/a.xml", u"/a.xml:rId1"}},
    };
    for (const auto& [parts, selectors, covered] : cases) {
        const DigitalSignature signature = manager->sign(parts, selectors, privateKey, publicKey, params);
        EXPECT_EQ(coveredBy(signature), covered) << "made";
        const std::u16string name = signature.getName();
        reopen();
        EXPECT_EQ(coveredBy(manager->getSignature(name)), covered) << "read";
    }
    const Names everything{u"/a.xml", u"/a.xml:rId1", u"/b.xml", u"/metadata/coreProperties.xml",
                           u"/:rId1", u"/:rId2"};
    EXPECT_EQ(coveredBy(signAll()), everything);
}

TEST_F(Coverage, readsTheDigestedObjectAlone) {
    signPart(u"/a.xml");
    signPart(u"/b.xml");
    close(false);
    const std::string other = signatureText(u"/_xmlsignatures/sig2.xml");
    const std::size_t begin = other.find("<Manifest>");
    const std::string manifest = other.substr(begin, other.find("</Manifest>") - begin);
    const std::string hidden = "<Object Id='idOther'><any xmlns='urn:any'><Object Id='idPackageObject'>" +
                               manifest + "</Manifest><SignatureProperties/></Object></any></Object>";
    const DigitalSignature signature = withSignature(inserted(signatureText(), "</Object>", hidden));
    EXPECT_EQ(verify(signature), 0);
    EXPECT_EQ(signature.getSignedPartNames().size(), 2U) << "the references as they were read";
    EXPECT_EQ(coveredBy(signature), std::vector<std::u16string>{u"/a.xml"});
}

TEST_F(Coverage, aPartThatIsDigestedAsRelationshipsIsNotCovered) {
    signPart(u"/a.xml");
    close(false);
    const std::string transform =
        R"(<Transforms><Transform Algorithm="http://schemas.openxmlformats.org/package/2005/06/)"
        R"(RelationshipTransform"><pds:RelationshipReference SourceId="rId1"/></Transform></Transforms>)";
    std::string text = signatureText();
    text.insert(text.find("<DigestMethod", text.find("<Manifest>")), transform);
    const DigitalSignature signature = withSignature(text);
    EXPECT_EQ(signature.getSignedPartNames().size(), 1U);
    EXPECT_TRUE(coveredBy(signature).empty());
}

TEST_F(Coverage, withoutADigestOfTheObjectNothingIsCovered) {
    signPart(u"/a.xml");
    close(false);
    const DigitalSignature signature =
        withSignature(replaced(signatureText(), "\"#idPackageObject\"", "\"/a.xml#idPackageObject\""));
    EXPECT_TRUE(coveredBy(signature).empty());
}

TEST_F(Coverage, theCountersignatureIsCoveredByNothing) {
    signPart(u"/a.xml");
    manager->countersignAllSignatures(privateKey, params);
    reopen();
    const std::u16string origin = ORIGIN_PART;
    EXPECT_EQ(coveredBy(manager->getCountersignature()),
              (std::vector<std::u16string>{origin, origin + u":DSRel1", SIGNATURE_PART, u"/:rId3"}));
}

} // namespace
