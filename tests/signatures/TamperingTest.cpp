#include "SignedPackage.hpp"
#include "support/Cases.hpp"

#include <functional>
#include <map>
#include <random>

namespace {

using namespace opc::model;
using namespace opc::test;

/// The result of a change: the code of the status or of `InvalidSignature`; or that the package, or the signature's
/// number, can't be read; or that no signature is found any more.
constexpr int HOLDS = 0;
constexpr int REFUSED = -1000;
constexpr int UNSIGNED = -1001;

const std::vector<std::size_t> NONE;

/// The places of a document after its declaration that are in attribute values or between tags.
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
        sign({PartName(u"/a.xml"), PartName(u"/b.xml"), PartName(CORE_PROPERTIES)},
             {byType(u"/", u"urn:main"), byType(u"/", u"urn:link"), byType(u"/a.xml", u"urn:next"),
              byType(u"/b.xml", u"urn:next")});
        package->close(false);
        for (const std::u16string& name : store.partNames())
            before[name] = store.partBytes(name);
    }

    int outcome() {
        int code = REFUSED;
        try {
            package->open(OpenMode::ReadOnly);
            code = manager->isPackageSigned() ? verify(*manager->getSignatures().begin()) : UNSIGNED;
        } catch (const InvalidSignature& e) {
            code = e.getErrorCode().value();
        } catch (const opc::Exception&) {
        }
        if (package->isOpen())
            package->close(true);
        return code;
    }

    /// The outcome of a change, which is then undone.
    int outcomeOf(const std::function<void()>& change) {
        const Bytes types = store.contentTypes();
        change();
        const int code = outcome();
        for (const std::u16string& name : store.partNames())
            store.removePart(name);
        for (const auto& [name, bytes] : before)
            store.setPart(name, bytes);
        store.setContentTypes(types);
        return code;
    }

    void edit(const char16_t* name, const std::string& what, const std::string& with) {
        store.setPart(name, toBytes(replaced(text(name), what, with)));
    }

    /// Flips one bit, by a fixed series, in each of these places, and returns the places where `isExpected` is false.
    std::vector<std::size_t> turnBits(const char16_t* name, const std::vector<std::size_t>& places,
                                      const std::function<bool(int)>& isExpected) {
        std::mt19937 random(7);
        std::vector<std::size_t> unexpected;
        for (const std::size_t place : places) {
            Bytes changed = before.at(name);
            changed[place] = static_cast<unsigned char>(changed[place] ^ (1U << (random() % 7)));
            store.setPart(name, changed);
            if (!isExpected(outcome()))
                unexpected.push_back(place);
        }
        store.setPart(name, before.at(name));
        return unexpected;
    }

    std::map<std::u16string, Bytes> before;
};

bool isFound(int code) {
    return code != HOLDS;
}

TEST_F(Tampering, everyByteOfSignedPartsCounts) {
    ASSERT_EQ(outcome(), HOLDS);
    for (const char16_t* name : {u"/a.xml", u"/b.xml", CORE_PROPERTIES}) {
        const std::string document = text(name);
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < document.size(); ++i)
            if (!isWithin(document, i, "old</cp", "</cp:keywords>"))
                places.push_back(i);
        EXPECT_EQ(turnBits(name, places, [](int code) { return code == 101; }), NONE);
    }
}

/// Except for the relationship to the signatures, which wasn't signed.
TEST_F(Tampering, everyValueOfSignedRelationshipsCounts) {
    for (const char16_t* name : {u"/_rels/.rels", u"/_rels/a.xml.rels", u"/_rels/b.xml.rels"}) {
        const std::string document = text(name);
        std::vector<std::size_t> places;
        for (const std::size_t place : placesOfValues(document))
            if (!isWithin(document, place, "\"rId3\"", "/>"))
                places.push_back(place);
        EXPECT_EQ(turnBits(name, places, isFound), NONE);
    }
}

TEST_F(Tampering, everyValueOfTheSignaturePartCounts) {
    const std::string document = text();
    std::vector<std::size_t> covered;
    std::vector<std::size_t> keys;
    for (const std::size_t place : placesOfValues(document)) {
        if (isWithin(document, place, "<KeyInfo>", "</KeyInfo>"))
            keys.push_back(place);
        else if (!isWithin(document, place, "\"Signature1", "\" "))
            covered.push_back(place);
    }
    EXPECT_EQ(turnBits(SIGNATURE, covered, isFound), NONE);
    EXPECT_EQ(turnBits(SIGNATURE, keys, [](int code) { return code == HOLDS || code == 102 || code == 103; }),
              NONE)
        << "a key in the signature isn't looked at by who brings another, but must be a key of its size";
    EXPECT_EQ(outcome(), HOLDS);
}

TEST_F(Tampering, countsByWhatIsChanged) {
    const auto check = [this](const std::string& expected, const std::u16string& name,
                              const std::string& what, const std::string& with) {
        const int code = outcomeOf([&] { edit(name.c_str(), what, with); });
        EXPECT_TRUE(expected == "found" ? isFound(code) : std::to_string(code) == expected) << code;
    };
    forEachCase("signatures/changed.txt", check);
}

TEST_F(Tampering, ofSeveralPartsIsFoundByItsCode) {
    EXPECT_EQ(outcomeOf([this] {
                  store.setPart(u"/_xmlsignatures/sigcountersig.xml", {});
                  edit(u"/_rels/.rels", "</R",
                       R"(<Relationship Id="DSRelcountersig" Type="urn:link" Target="b.xml"/></R)");
              }),
              101);
    EXPECT_EQ(outcomeOf([this] {
                  store.removePart(u"/b.xml");
                  store.removePart(u"/_rels/b.xml.rels");
              }),
              102);
}

/// What else no signature of this format protects.
TEST_F(Tampering, whatIsNotProtected) {
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"a content type",
         [this] {
             store.setContentTypes(
                 toBytes(replaced(toText(store.contentTypes()), "application/xml", "text/other")));
         }},
        {"a part that was added", [this] { store.setPart(u"/new.xml", {}); }},
        {"which source has which of the signed relationships",
         [this] {
             store.setPart(u"/_rels/a.xml.rels", before.at(u"/_rels/b.xml.rels"));
             store.setPart(u"/_rels/b.xml.rels", before.at(u"/_rels/a.xml.rels"));
         }},
        {"no key in the signature", [this] { edit(SIGNATURE, piece(text(), "<KeyInfo>", "<Object"), ""); }},
    };
    for (const auto& [what, change] : changes)
        EXPECT_EQ(outcomeOf(change), HOLDS) << what;
}

TEST_F(Tampering, anotherEncodingOfTheSameDocumentHolds) {
    const std::string document = text();
    std::string inUtf16 = "\xFF\xFE";
    for (const char c : document.substr(document.find("?>") + 2))
        inUtf16 += {c, '\0'};
    EXPECT_EQ(outcomeOf([&] { store.setPart(SIGNATURE, toBytes(inUtf16)); }), HOLDS);
}

} // namespace
