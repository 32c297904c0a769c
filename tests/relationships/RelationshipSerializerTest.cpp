#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipsComposer.hpp"
#include "support/Cases.hpp"
#include "support/Outcome.hpp"
#include "support/PackageContent.hpp"
#include "support/Throws.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>

#include <malloc.h>

namespace {

using namespace opc::model;
using namespace opc::test;

class RelationshipsDocument : public testing::Test {
protected:
    RelationshipsDocument() : manager(URI(u"/a/b.xml")) {}

    void read(const Bytes& document) {
        opc::ByteArrayInAdaptor stream(document);
        manager.read(stream, serializer);
    }

    std::string write() {
        Bytes document;
        opc::ByteArrayOutAdaptor stream(document);
        serializer.write(manager, stream);
        return toText(document);
    }

    RelationshipSerializer serializer;
    RelationshipManager manager;
};

TEST_F(RelationshipsDocument, checksEachElementInItsOrder) {
    forEachCase("relationships/refused.txt",
                [this](const std::string& message, const std::string& attributes) {
                    const Bytes document = relationships(R"(<Relationship Id="r" )" + attributes + "/>");
                    EXPECT_RAISES(InvalidPartContent, message, read(document));
                    EXPECT_TRUE(manager.isDirty());
                });
    // The elements before the bad one have been read.
    EXPECT_THROW(
        read(relationships(
            R"(<Relationship Id="ok" Type="t:t" Target="x"/><Relationship Id="r" Type="t:t" Target=""/>)")),
        InvalidPartContent);
    EXPECT_TRUE(manager.hasRelationship(u"ok"));
}

// Relationships of several sources share one piece of memory, which each of them keeps alive.
TEST_F(RelationshipsDocument, relationshipsOutliveTheirSourcesAndEachOther) {
    std::vector<Relationship> kept;
    {
        RelationshipSerializer ofMany;
        for (int source = 0; source < 200; ++source) {
            const std::string number = std::to_string(source);
            std::string elements;
            for (int i = source == 100 ? 20000 : source % 3; i >= 0; --i)
                elements.append(R"(<Relationship Id="r)" + std::to_string(i) + R"(" Type="type)" + number +
                                R"(" Target="target)" + number + R"("/>)");
            RelationshipManager one(URI(opc::toString("/part" + number, true)));
            const Bytes document = relationships(elements);
            opc::ByteArrayInAdaptor stream(document);
            one.read(stream, ofMany);
            kept.push_back(one.getRelationship(u"r0"));
            if (source % 2 == 0)
                one.deleteRelationship(u"r0");
        }
    }
    for (std::size_t source = 0; source < kept.size(); ++source) {
        const std::u16string number = opc::toString(std::to_string(source), true);
        EXPECT_EQ(kept[source].getID(), u"r0");
        EXPECT_EQ(kept[source].getType(), u"type" + number);
        EXPECT_EQ(kept[source].getTarget(), u"target" + number);
        EXPECT_TRUE(kept[source].getSourceURI() == u"/part" + number);
        kept[source] = kept.front();
    }
}

TEST_F(RelationshipsDocument, theSchemaRefusesTheRest) {
    for (const char* elements :
         {R"(<Relationship Id="r" Type="t:t" Target="x" TargetMode="external"/>)", "<Other/>"})
        EXPECT_THROW(read(relationships(elements)), InvalidPartContent) << elements;
    EXPECT_THROW(read({}), InvalidPartContent);
    read(relationships("")); // and the parser can read the next document
    EXPECT_TRUE(manager.isEmpty());
    EXPECT_FALSE(manager.isDirty());
}

TEST_F(RelationshipsDocument, readsWhatCreationWouldRefuse) {
    read(relationships(
        R"(<Relationship Id="r2" Type="t:t" Target="http://h/x"/>)"
        R"(<Relationship Id="r1" Type="t:t" Target="/a/b.xml" TargetMode="Internal">text</Relationship>)"
        R"(<Relationship Id="r10" Type="t:t" Target="dir\é" TargetMode="External"/>)"));
    EXPECT_EQ(manager.getRelationship(u"r2").getTargetURI().toString(), u"http://h/x");
    EXPECT_EQ(manager.getRelationship(u"r1").getTargetMode(), TargetMode::Internal);
    EXPECT_EQ(manager.getRelationship(u"r10").getTarget(), u"dir\\é");
    EXPECT_FALSE(manager.isDirty());
}

TEST_F(RelationshipsDocument, elementsThatAreNotReadAreCounted) {
    const auto check = [this](const std::string& document, const std::string& count,
                              const std::string& unreadCount) {
        read(toBytes(document));
        EXPECT_EQ(std::to_string(manager.getRelationships({}).size()), count);
        EXPECT_EQ(std::to_string(manager.countUnread()), unreadCount);
    };
    forEachCase("relationships/unread.txt", check);
}

TEST_F(RelationshipsDocument, isWrittenInTheOrderOfIDs) {
    manager.addInternalRelationship(u"rId2", u"t:2", URI(u"x.xml"));
    manager.addExternalRelationship(u"rId10", u"t:10", u"a&b\"<é");
    const std::string document = write();
    EXPECT_EQ(document, readCase("relationships/written.txt"));
    read(toBytes(document));
    EXPECT_EQ(write(), document) << "what was written reads back";
}

TEST_F(RelationshipsDocument, isWrittenAsXercesWritesIt) {
    std::string document;
    const auto expectSame = [&](bool isPlain, const std::u16string& about) {
        EXPECT_EQ(composePlainRelationships(manager, document), isPlain) << opc::toUDEString(about);
        std::string byXerces;
        const std::string failure = outcomeOf([&] { byXerces = serializer.serialize(manager); });
        std::string asEver;
        EXPECT_EQ(outcomeOf([&] { asEver = write(); }), failure) << opc::toUDEString(about);
        EXPECT_EQ(asEver, byXerces);
    };
    expectSame(true, u"an empty root");
    manager.addInternalRelationship(u"r", u"t:t", URI(u""));
    manager.addExternalRelationship(u"R_-.9", u"", u"");
    expectSame(true, u"empty values");
    for (unsigned value = 0; value <= 0xFFFF; value += value < 0x180 ? 1 : 0x7F) {
        const auto unit = static_cast<char16_t>(value);
        for (const std::u16string& text : {std::u16string(1, unit), u"a" + std::u16string(2, unit) + u"b"}) {
            manager.clear();
            manager.addExternalRelationship(u"r1", u"t:t", text);
            manager.addExternalRelationship(u"r2", u"t:" + text, u"plain");
            expectSame(unit >= u' ' && unit <= u'~', text);
        }
    }
}

TEST_F(RelationshipsDocument, charactersThatXMLCanNotHoldAreRefusedInWriting) {
    manager.addExternalRelationship(u"r", u"t:t", u"a\u0001");
    EXPECT_THROW(write(), InvalidPartContent);
    manager.deleteRelationship(u"r");
    manager.addExternalRelationship(u"r", u"t:t", u"b");
    const std::string document = write();
    read(toBytes(document)); // the writer can write the next document, with its namespace
    EXPECT_EQ(write(), document);
}

TEST_F(RelationshipsDocument, manyAreReadWithoutGrowing) {
    const Bytes document = relationships("<?for the parser?>");
    read(document);
    read(document);
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i)
        read(document);
    EXPECT_LT(mallinfo2().uordblks, before + (1U << 20)) << "documents stay in the parser's pool";
}

} // namespace
