#include "signatures/digests/RelationshipsText.hpp"
#include "relationships/RelationshipManager.hpp"
#include "support/PackageContent.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <algorithm>

#include <xercesc/dom/DOM.hpp>

namespace {

using namespace opc::model;

/// Each for itself; copies of one relationship belong to one group.
SignedRelationships select(const std::vector<Relationship>& relationships) {
    std::vector<SignedRelationships::Group> selected;
    std::vector<SignedRelationships::Group> groups;
    for (const Relationship& relationship : relationships) {
        auto known = std::find_if(groups.begin(), groups.end(), [&](const SignedRelationships::Group& group) {
            return group->relationships.front() == relationship;
        });
        if (known == groups.end())
            known =
                groups.insert(groups.end(), std::make_shared<SelectedGroup>(SelectedGroup{{relationship}}));
        selected.push_back(*known);
    }
    return SignedRelationships(selected);
}

std::string readText(const std::vector<Relationship>& relationships, std::uint64_t blockSize) {
    RelationshipsText text(select(relationships));
    std::string result;
    std::vector<unsigned char> block(static_cast<std::size_t>(blockSize));
    while (!text.isDone()) {
        const auto got = text.read(block.data(), block.size());
        result.append(block.data(), block.data() + got);
    }
    return result;
}

/// The same document, built as a whole with every entry in it.
std::string writeWhole(std::vector<Relationship> relationships) {
    std::sort(relationships.begin(), relationships.end(),
              [](const Relationship& left, const Relationship& right) {
                  return left.getID() != right.getID() ? left.getID() < right.getID()
                                                       : left.getTarget() < right.getTarget();
              });
    const XercesGuard guard;
    const auto document = XercesHelper::createDocument();
    auto* root = XercesHelper::appendElement(document.get(), XercesString(u"Relationships"));
    for (const Relationship& relationship : relationships) {
        auto* element = XercesHelper::appendElement(root, XercesString(u"Relationship"));
        XercesHelper::setElementAttribute(element, XercesString(u"Id"), relationship.getID());
        XercesHelper::setElementAttribute(element, XercesString(u"Type"), relationship.getType());
        XercesHelper::setElementAttribute(element, XercesString(u"Target"), relationship.getTarget());
        if (relationship.getTargetMode() == TargetMode::External)
            XercesHelper::setElementAttribute(element, XercesString(u"TargetMode"), u"External");
    }
    std::vector<unsigned char> bytes;
    opc::ByteArrayOutAdaptor stream(bytes);
    const auto writer = XercesHelper::createWriter();
    XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    return opc::test::toText(bytes);
}

TEST(RelationshipsText, isTheDocumentBuiltWhole) {
    RelationshipManager one(URI(u"/a.xml"));
    RelationshipManager two(URI(u"/b.xml"));
    RelationshipManager three(URI(u"/c.xml"));
    const Relationship a = one.addInternalRelationship(u"rId10", u"t:t", URI(u"x.xml"));
    const Relationship b = one.addExternalRelationship(u"rId2", u"t:<&>\"'", u"a<b>\"c' d&é\u4E2D");
    const Relationship c = two.addInternalRelationship(u"rId10", u"t:t", URI(u"a.xml"));
    const Relationship d = two.addExternalRelationship(u"z", u"t:t", u"<Relationship Id=\"\"/>&>'");
    const Relationship likeA = three.addInternalRelationship(u"rId10", u"t:t", URI(u"x.xml"));
    const std::vector<std::vector<Relationship>> cases = {
        {},           {a},    {b, a}, {a, a, a}, {a, b, a, c, b, d, d, a},
        {d, c, b, a}, {b, b}, {a, c}, {d, c, a}, {a, likeA, a},
    };
    for (const auto& relationships : cases)
        for (const std::uint64_t blockSize : {1U, 7U, 4096U})
            EXPECT_EQ(readText(relationships, blockSize), writeWhole(relationships));
}

TEST(RelationshipsText, isTheDocumentBuiltWholeForASelectorOfEachOfManyRelationships) {
    RelationshipManager source(URI(u"/a.xml"));
    RelationshipManager other(URI(u"/b.xml"));
    std::vector<Relationship> all;
    std::vector<Relationship> selected;
    for (int i = 0; i < 300; ++i) {
        const std::u16string id = u"r" + opc::toString(std::to_string(i), true);
        all.push_back(source.addInternalRelationship(id, u"t:t", URI(u"x.xml")));
        selected.push_back(other.addInternalRelationship(id, u"t:t", URI(u"x.xml")));
    }
    for (int i = 0; i < 300; ++i)
        selected.insert(selected.end(), all.begin(), all.end());
    EXPECT_EQ(readText(selected, 4096), writeWhole(selected));
}

TEST(RelationshipsText, hasOneOrderForEntriesWithEqualKeys) {
    RelationshipManager one(URI(u"/a.xml"));
    RelationshipManager two(URI(u"/b.xml"));
    const Relationship first = one.addInternalRelationship(u"rId1", u"t:1", URI(u"x.xml"));
    const Relationship second = two.addInternalRelationship(u"rId1", u"t:2", URI(u"x.xml"));
    EXPECT_EQ(readText({first, second, first}, 99), readText({second, first, first}, 99));
    const Relationship external = two.addExternalRelationship(u"rId2", u"t:1", u"x.xml");
    const Relationship internal = one.addInternalRelationship(u"rId2", u"t:1", URI(u"x.xml"));
    const std::string both = readText({internal, external}, 99);
    EXPECT_EQ(both, readText({external, internal}, 99));
    EXPECT_EQ(both.find("TargetMode"), both.rfind("TargetMode")) << both;
    EXPECT_NE(both.find("TargetMode"), std::string::npos) << both;
}

TEST(RelationshipsText, isNeverLongerThanItIsMeasured) {
    RelationshipManager source(URI(u"/a.xml"));
    const std::u16string odd = u"<>&\"'\u00E9\u4E2D\U0001F600 %20";
    const Relationship relationship = source.addExternalRelationship(u"r", u"t:" + odd, odd);
    const std::size_t document = readText({}, 99).size();
    EXPECT_LE(readText({relationship}, 99).size(), document + 2 + RelationshipsText::measure(relationship));
}

TEST(SignedRelationships, haveALimitForTheirListAlone) {
    RelationshipManager source(URI(u"/a.xml"));
    const Relationship relationship = source.addInternalRelationship(u"r", u"t:t", URI(u"x.xml"));
    const auto group = std::make_shared<SelectedGroup>();
    group->relationships.assign(1000, relationship);
    const SignedRelationships selected(std::vector<SignedRelationships::Group>(10001, group));
    EXPECT_RAISES(opc::Exception,
                  "No more than 10000000 selected relationships of a signature can be listed.",
                  selected.toVector());
}

TEST(RelationshipsText, startsAnewWhenItIsOpenedAgain) {
    RelationshipManager one(URI(u"/a.xml"));
    RelationshipsText text(select({one.addInternalRelationship(u"rId1", u"t:1", URI(u"x.xml"))}));
    unsigned char block[4096];
    const auto first = text.read(block, sizeof block);
    EXPECT_TRUE(text.isDone());
    text.close();
    text.open();
    EXPECT_EQ(text.read(block, sizeof block), first);
}

} // namespace
