#include "SignatureDocuments.hpp"
#include "SignedPackage.hpp"

#include <functional>
#include <random>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::interfaces::OpenMode;
using opc::physical::MemoryPackage;

constexpr char16_t SIGNATURE[] = u"/_xmlsignatures/sig1.xml";

/// What a change leads to: the code of the status or of `InvalidSignature`; or that the package, or the
/// signature's number, can't be read; or that no signature is found any more.
constexpr int HOLDS = 0;
constexpr int REFUSED = -1000;
constexpr int UNSIGNED = -1001;

const std::vector<std::size_t> NONE;

/// The places of a document behind its declaration that stand in attribute values or between tags.
std::vector<std::size_t> placesOfValues(const std::string& document) {
    std::vector<std::size_t> places;
    bool inTag = false;
    char quote = 0;
    for (std::size_t i = document.find("?>") + 2; i < document.size(); ++i) {
        const char c = document[i];
        if (quote != 0 && c == quote)
            quote = 0;
        else if (quote == 0 && inTag && (c == '"' || c == '\''))
            quote = c;
        else if (quote != 0 || (!inTag && c != '<'))
            places.push_back(i);
        else if (c == '<' || c == '>')
            inTag = c == '<';
    }
    return places;
}

bool isWithin(const std::string& text, std::size_t place, const std::string& begin, const std::string& end) {
    const std::size_t first = text.find(begin);
    return first != std::string::npos && place >= first && place < text.find(end, first);
}

class Tampering : public SignedPackage {
protected:
    Tampering() {
        writeAll(part(u"/b.xml"), "<b>other</b>");
        part(u"/b.xml").createExternalRelationship(u"urn:next", u"http://n/", u"rId2");
        const auto byType = [](const char16_t* source, const char16_t* type) {
            return RelationshipSelector(URI(source), RelationshipSelectorType::SourceType, type);
        };
        manager->sign({PartName(u"/a.xml"), PartName(u"/b.xml"), PartName(u"/metadata/coreProperties.xml")},
                      {byType(u"/", u"urn:main"), byType(u"/", u"urn:link"), byType(u"/a.xml", u"urn:next"),
                       byType(u"/b.xml", u"urn:next")},
                      privateKey, publicKey, params);
        package->close(false);
    }

    int outcome() {
        int code = REFUSED;
        try {
            package->open(OpenMode::ReadOnly);
            code = manager->isPackageSigned() ? verify(*manager->getSignatures().begin()) : UNSIGNED;
        } catch (const InvalidSignature& e) {
            code = e.getErrorCode().value();
        } catch (const opc::Exception&) {
        } catch (const std::invalid_argument&) {
        } catch (const std::out_of_range&) {
        }
        if (package->isOpen())
            package->close(true);
        return code;
    }

    int outcomeOf(const std::function<void(MemoryPackage&)>& change) {
        const std::vector<std::u16string> names = store.partNames();
        std::vector<Bytes> before;
        for (const std::u16string& name : names)
            before.push_back(store.partBytes(name));
        const Bytes types = store.contentTypes();
        change(store);
        const int code = outcome();
        for (const std::u16string& name : store.partNames())
            store.removePart(name);
        for (std::size_t i = 0; i < names.size(); ++i)
            store.setPart(names[i], before[i]);
        store.setContentTypes(types);
        return code;
    }

    /// Turns one bit, by a fixed series, in each of these places, and gives those where `isExpected` says no.
    std::vector<std::size_t> turnBits(const char16_t* name, const std::vector<std::size_t>& places,
                                      const std::function<bool(int)>& isExpected) {
        std::mt19937 random(7);
        std::vector<std::size_t> unexpected;
        const Bytes before = store.partBytes(name);
        for (const std::size_t place : places) {
            Bytes changed = before;
            changed[place] = static_cast<unsigned char>(changed[place] ^ (1U << (random() % 7)));
            store.setPart(name, changed);
            if (!isExpected(outcome()))
                unexpected.push_back(place);
        }
        store.setPart(name, before);
        return unexpected;
    }
};

bool isFound(int code) {
    return code != HOLDS;
}

TEST_F(Tampering, everyByteOfSignedPartsCounts) {
    ASSERT_EQ(outcome(), HOLDS);
    for (const char16_t* name : {u"/a.xml", u"/b.xml", u"/metadata/coreProperties.xml"}) {
        const std::string text = toText(store.partBytes(name));
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (!isWithin(text, i, "old</cp", "</cp:keywords>"))
                places.push_back(i);
        EXPECT_EQ(turnBits(name, places, [](int code) { return code == 101; }), NONE);
    }
}

/// But for the relationship that leads to the signatures, which is none of those that were signed.
TEST_F(Tampering, everyValueOfSignedRelationshipsCounts) {
    for (const char16_t* name : {u"/_rels/.rels", u"/_rels/a.xml.rels", u"/_rels/b.xml.rels"}) {
        const std::string text = toText(store.partBytes(name));
        std::vector<std::size_t> places;
        for (const std::size_t place : placesOfValues(text))
            if (!isWithin(text, place, "\"rId3\"", "/>"))
                places.push_back(place);
        EXPECT_EQ(turnBits(name, places, isFound), NONE);
    }
}

TEST_F(Tampering, everyValueOfTheSignaturePartCounts) {
    const std::string text = toText(store.partBytes(SIGNATURE));
    std::vector<std::size_t> covered;
    std::vector<std::size_t> keys;
    for (const std::size_t place : placesOfValues(text)) {
        if (isWithin(text, place, "<KeyInfo>", "</KeyInfo>"))
            keys.push_back(place);
        else if (!isWithin(text, place, "\"Signature1", "\" "))
            covered.push_back(place);
    }
    EXPECT_EQ(turnBits(SIGNATURE, covered, isFound), NONE);
    EXPECT_EQ(turnBits(SIGNATURE, keys, [](int code) { return code == HOLDS || code == 102 || code == 103; }),
              std::vector<std::size_t>())
        << "a key in the signature isn't looked at by who brings another, but must be a key of its size";
    EXPECT_EQ(outcome(), HOLDS);
}

struct Change {
    const char* what;
    std::function<void(MemoryPackage&)> make;
};

std::function<void(MemoryPackage&)> edit(const char16_t* name, const std::string& what,
                                         const std::string& with) {
    return [=](MemoryPackage& store) {
        store.setPart(name, toBytes(replaced(toText(store.partBytes(name)), what, with)));
    };
}

/// 101: what is covered has changed. 102: something covered is missing.
TEST_F(Tampering, changesOfWhatIsSignedAreFoundByTheirCode) {
    const struct {
        int code;
        std::function<void(MemoryPackage&)> make;
    } changes[] = {
        {101, edit(u"/a.xml", "content", "Content")},
        {101, edit(u"/metadata/coreProperties.xml", ">t<", ">T<")},
        {101, edit(u"/_rels/.rels", "http://e/", "http://f/")},
        {101, edit(u"/_rels/.rels", R"(TargetMode="External")", "")},
        {101, edit(u"/_rels/a.xml.rels", "rId1", "rId7")},
        {101, edit(u"/_rels/.rels", "<Relationship ",
                   R"(<Relationship Id="x" Type="urn:link" Target="b.xml"/><Relationship )")},
        {102, edit(u"/_rels/.rels", "urn:link", "urn:else")},
        {102,
         [](MemoryPackage& s) {
             s.removePart(u"/b.xml");
             s.removePart(u"/_rels/b.xml.rels");
         }},
    };
    for (const auto& change : changes)
        EXPECT_EQ(outcomeOf(change.make), change.code) << &change - changes;
}

TEST_F(Tampering, changesOfFormWithinWhatIsSignedAreFound) {
    const std::pair<const char*, const char*> changes[] = {
        {"<CanonicalizationMethod", " <CanonicalizationMethod"},
        {"</SignedInfo>", "<!--x--></SignedInfo>"},
        {"<SignedInfo ", "<SignedInfo Id=\"i\" "},
        {"<Manifest>", "<Manifest>\n"},
        {"<Manifest>", "<Manifest Id=\"m\">"},
        {"<SignatureProperties>", "<SignatureProperties><!--x-->"},
        {"<pds:RelationshipGroupReference SourceType=\"urn:link\"/>", ""},
    };
    for (const auto& [what, with] : changes)
        EXPECT_TRUE(isFound(outcomeOf(edit(SIGNATURE, what, with)))) << what << " -> " << with;
}

/// What no signature of this format protects: who must rely on one of these checks it himself.
TEST_F(Tampering, whatIsNotProtected) {
    const Change changes[] = {
        {"a content type",
         [](MemoryPackage& s) {
             s.setContentTypes(toBytes(replaced(toText(s.contentTypes()), "application/xml", "text/other")));
         }},
        {"the first keywords element", edit(u"/metadata/coreProperties.xml", ">old<", ">new<")},
        {"a keywords element that was taken out",
         edit(u"/metadata/coreProperties.xml", "<cp:keywords>old</cp:keywords>", "")},
        {"a part that was added", [](MemoryPackage& s) { s.setPart(u"/new.xml", {}); }},
        {"a relationship of a type that isn't signed",
         edit(u"/_rels/.rels", "<Relationship ",
              R"(<Relationship Id="x" Type="urn:else" Target="b.xml"/><Relationship )")},
        {"which source has which of the signed relationships",
         [](MemoryPackage& s) {
             const Bytes ofA = s.partBytes(u"/_rels/a.xml.rels");
             s.setPart(u"/_rels/a.xml.rels", s.partBytes(u"/_rels/b.xml.rels"));
             s.setPart(u"/_rels/b.xml.rels", ofA);
         }},
        {"a relationship with the ID of the countersignature's, beside a part of its name",
         [](MemoryPackage& s) {
             s.setPart(u"/_xmlsignatures/sigcountersig.xml", {});
             edit(u"/_rels/.rels", "<Relationship ",
                  R"(<Relationship Id="DSRelcountersig" Type="urn:link" Target="b.xml"/><Relationship )")(s);
         }},
        {"the key in the signature, by another key", edit(SIGNATURE, ">AQAB<", ">AQAD<")},
        {"no key in the signature",
         [](MemoryPackage& s) {
             std::string text = toText(s.partBytes(SIGNATURE));
             const std::size_t begin = text.find("<KeyInfo>");
             text.erase(begin, text.find("</KeyInfo>") + 10 - begin);
             s.setPart(SIGNATURE, toBytes(text));
         }},
        {"the identifier of the signature", edit(SIGNATURE, R"(Id="Signature1")", R"(Id="Signature5")")},
    };
    for (const Change& change : changes)
        EXPECT_EQ(outcomeOf(change.make), HOLDS) << change.what;
}

/// The same XML, written otherwise: what is digested is written anew from what was read.
TEST_F(Tampering, otherSpellingsOfTheSameDocumentHold) {
    const std::string pds = R"(xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature")";
    const std::pair<std::string, std::string> spellings[] = {
        {R"(URI="#idPackageObject")", "URI='#idPackageObject'"},
        {R"(URI="#idPackageObject")", "URI=\"&#x23;idPackageObject\""},
        {"<SignedInfo ", "<SignedInfo \n "},
        {"</Manifest>", "</Manifest >"},
        {"\"/><DigestValue>", "\"></DigestMethod><DigestValue>"},
        {R"(<Object Id="idPackageObject" )" + pds, "<Object " + pds + R"( Id="idPackageObject")"},
        {"</SignedInfo>", "</SignedInfo>\r\n<!-- not signed -->"},
        {"</SignatureValue>", "\n</SignatureValue>"},
        {"<SignatureProperties>", "<SignatureProperties  >"},
    };
    for (const auto& [what, with] : spellings)
        EXPECT_EQ(outcomeOf(edit(SIGNATURE, what, with)), HOLDS) << what << " -> " << with;

    const std::string document = toText(store.partBytes(SIGNATURE));
    std::string inUtf16 = "\xFF\xFE";
    for (const char c : document.substr(document.find("?>") + 2))
        inUtf16 += {c, '\0'};
    store.setPart(SIGNATURE, toBytes(inUtf16));
    EXPECT_EQ(outcome(), HOLDS);
}

} // namespace
