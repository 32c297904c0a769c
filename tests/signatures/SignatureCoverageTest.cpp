#include "SignedPackage.hpp"

#include <opc/model/SignatureCoverage.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

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
};

TEST_F(Coverage, followsWhatWasSelected) {
    using Names = std::vector<std::u16string>;
    using Selectors = std::vector<RelationshipSelector>;
    const std::tuple<std::vector<PartName>, Selectors, Names> cases[] = {
        // the names differ in case
        {{PartName(u"/B.xml")}, {}, {u"/b.xml"}},
        {{}, {byId(u"/", u"rId1")}, {u"/:rId1"}},
        {{}, {byType(u"/", u"urn:link")}, {u"/:rId2"}},
        {{}, {byId(u"/A.xml", u"rId1")}, {u"/a.xml:rId1"}},
        {{PartName(u"/a.xml")}, {byType(u"/A.xml", u"urn:next")}, {u"/a.xml", u"/a.xml:rId1"}},
    };
    for (const auto& [parts, selectors, covered] : cases) {
        const DigitalSignature signature = sign(parts, selectors);
        EXPECT_EQ(coveredBy(signature), covered) << "made";
        const std::u16string name = signature.getName();
        reopen();
        EXPECT_EQ(coveredBy(manager->getSignature(name)), covered) << "read";
    }
    const Names everything{u"/a.xml", u"/a.xml:rId1", u"/b.xml", u"/metadata/coreProperties.xml",
                           u"/:rId1", u"/:rId2"};
    EXPECT_EQ(coveredBy(signAll()), everything);
}

TEST_F(Coverage, theCountersignatureIsCoveredByNothing) {
    signPart(u"/a.xml");
    manager->countersignAllSignatures(privateKey, params);
    reopen();
    EXPECT_EQ(
        coveredBy(manager->getCountersignature()),
        (std::vector<std::u16string>{ORIGIN, std::u16string(ORIGIN) + u":DSRel1", SIGNATURE, u"/:rId3"}));
}

} // namespace
