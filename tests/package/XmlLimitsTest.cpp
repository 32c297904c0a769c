#include "support/PackageTest.hpp"

#include <functional>

/// @file
/// The limits on the XML of a package: at its limits a package is opened and saved; one below, it is refused.

namespace {

using namespace opc::model;
using namespace opc::test;

struct Documents {
    Bytes types, ofPackage, ofPart, properties;
};

/// Documents of a package, of 5, 3, 2 and 3 elements; in the plain form, or one that the parser reads.
Documents makeDocuments(bool isPlain) {
    const std::string aside = isPlain ? "" : "<?a?>";
    const std::string core = "http://schemas.openxmlformats.org/package/2006/metadata/core-properties";
    return {contentTypes(USUAL_CONTENT_TYPES + aside + "<Override PartName='/a.xml' ContentType='a/b'/>" +
                         "<Override PartName='/x.xml' ContentType='a/b'/>"),
            relationships(aside +
                          "<Relationship Id='r' Type='urn:t' Target='a.xml'/><Relationship Id='c' Type='" +
                          opc::toASCIIString(PackageHelper::getCorePropertiesRelationshipType()) +
                          "' Target='c.xml'/>"),
            relationships(aside + "<Relationship Id='r' Type='urn:t' Target='c.xml'/>"),
            toBytes("<cp:coreProperties xmlns:cp='" + core + "'>" + aside +
                    "<cp:keywords>x<cp:value>y</cp:value></cp:keywords></cp:coreProperties>")};
}

/// Opens the package, reads its core properties, changes everything and saves it.
void use(const Documents& documents, const XmlLimits& limits, bool saves) {
    MemoryPackage store;
    store.setContentTypes(documents.types);
    store.setPart(u"/a.xml", {});
    store.setPart(u"/c.xml", documents.properties);
    store.setPart(u"/_rels/.rels", documents.ofPackage);
    store.setPart(u"/_rels/a.xml.rels", documents.ofPart);
    Package package(store, limits);
    package.open(OpenMode::ReadWrite);
    CoreProperties properties = PackageHelper::getCoreProperties(package);
    if (!saves)
        return;
    properties.setTitle(std::u16string(500, u't'));
    PackageHelper::createOrUpdateCoreProperties(package, properties);
}

TEST(LimitsOfXml, arePassedByNoDocument) {
    const std::string ofTypes = "opc::model::InvalidContentTypeStream: ";
    const std::string ofPackage = "opc::model::InvalidRelationshipContent: In /_rels/.rels: ";
    const std::string ofPart = "opc::model::InvalidRelationshipContent: In /_rels/a.xml.rels: ";
    const std::string ofProperties = "opc::model::InvalidPartContent: ";
    struct Case {
        XmlLimits::Size XmlLimits::*kind;
        const char* name;
        std::uint64_t elements;
        std::size_t bytes;
        std::string place;
    };
    for (const bool isPlain : {true, false}) {
        const Documents documents = makeDocuments(isPlain);
        const Case cases[] = {
            {&XmlLimits::contentTypes, "contentTypes", 5, documents.types.size(), ofTypes},
            {&XmlLimits::relationships, "relationships", 3, documents.ofPackage.size(), ofPackage},
            {&XmlLimits::coreProperties, "coreProperties", 3, documents.properties.size(), ofProperties},
            {&XmlLimits::package, "package", 13,
             documents.types.size() + documents.ofPackage.size() + documents.ofPart.size() +
                 documents.properties.size(),
             ofProperties},
        };
        for (const auto& [kind, name, elements, bytes, place] : cases) {
            const auto outcome = [&, limited = kind](std::uint64_t someBytes, std::uint64_t someElements) {
                XmlLimits limits;
                limits.*limited = {someBytes, someElements};
                return outcomeOf([&] { use(documents, limits, false); });
            };
            const auto refusal = [&, kindName = name, where = place](std::uint64_t limit,
                                                                     const std::string& unit) {
                return where +
                       (std::string(kindName) == "package"
                            ? "The XML documents of a package can not have more than "
                            : "XML content can not have more than ") +
                       std::to_string(limit) + " " + unit + " (limit " + kindName + "." + unit + ")";
            };
            EXPECT_EQ(outcome(bytes, elements), "") << name << isPlain;
            EXPECT_EQ(outcome(bytes - 1, elements), refusal(bytes - 1, "bytes")) << isPlain;
            if (kind == &XmlLimits::package)
                continue; // another document's share comes last
            EXPECT_EQ(outcome(bytes, elements - 1), refusal(elements - 1, "elements")) << isPlain;
        }
        Documents longTag = documents;
        longTag.types =
            contentTypes(USUAL_CONTENT_TYPES + (isPlain ? "" : "<?a?>") +
                         "<Default Extension='x' ContentType='a/" + std::string(5 << 20, 'b') + "'/>");
        EXPECT_EQ(outcomeOf([&] { use(longTag, {}, false); }),
                  ofTypes + "XML content can not have tags or comments of more than 4 MiB");
        XmlLimits limits;
        limits.coreProperties.bytes = documents.properties.size() + 200;
        EXPECT_EQ(outcomeOf([&] { use(documents, limits, true); }),
                  ofProperties + "XML content can not have more than " +
                      std::to_string(limits.coreProperties.bytes) + " bytes (limit coreProperties.bytes)")
            << "what couldn't be read again isn't written";
    }
}

// Deleted documents free their share, and documents without room aren't written.
TEST(LimitsOfXml, countWhatIsWritten) {
    XmlLimits limits;
    limits.relationships.elements = 4;
    limits.package.elements = 10;
    MemoryPackage store;
    Package package(store, limits);
    package.open(OpenMode::CreateOnly);
    const auto relate = [](RelationshipSource& source, const char16_t* id) {
        source.createExternalRelationship(u"urn:t", u"x", id);
    };
    Part part = package.createPart(PartName(u"/a.xml"), ContentType(u"a/b"), StandardPartInfo());
    for (const char16_t* id : {u"a", u"b", u"c"}) {
        relate(package, id);
        relate(part, id);
    }
    const auto save = [&] { return outcomeOf([&] { package.close(false); }); };
    EXPECT_EQ(save(),
              "opc::model::InvalidPartContent: The XML documents of a package can not have more than 10 "
              "elements (limit package.elements)");
    package.close(true);

    limits.package.elements = 11;
    Package larger(store, limits);
    larger.open(OpenMode::CreateOnly);
    Part other = larger.createPart(PartName(u"/a.xml"), ContentType(u"a/b"), StandardPartInfo());
    for (const char16_t* id : {u"a", u"b", u"c"}) {
        relate(larger, id);
        relate(other, id);
    }
    larger.close(false);
    larger.open(OpenMode::ReadWrite);
    larger.deleteRelationship(u"a");
    relate(larger, u"d");
    larger.close(false);
    larger.open(OpenMode::ReadWrite);
    relate(larger, u"a");
    EXPECT_EQ(outcomeOf([&] { larger.close(false); }),
              "opc::model::InvalidPartContent: XML content can not have more than 4 elements (limit "
              "relationships.elements)");
    larger.deleteRelationship(u"a");
    larger.close(false);
}

// A tag of 4 MiB can hold three values of a quarter of that, in written form.
TEST(LimitsOfXml, areHeldByWhatIsCreated) {
    struct Case {
        const char* refusal;
        std::function<void(Package&, const std::u16string&)> create;
    };
    const Case cases[] = {
        {"InvalidPartName: A part name shall not be longer than 1 MiB.",
         [](Package& package, const std::u16string& text) {
             package.createPart(PartName(u"/" + text.substr(1)), ContentType(u"a/b"), StandardPartInfo());
         }},
        {"InvalidContentType: Could not successfully parse content type string",
         [](Package& package, const std::u16string& text) {
             package.createPart(PartName(u"/x"), ContentType(u"a/" + text.substr(2)), StandardPartInfo());
         }},
        {"InvalidRelationshipTarget: Relationship target is not a valid xsd::anyURI",
         [](Package& package, const std::u16string& text) {
             package.createInternalRelationship(u"t", URI(text));
         }},
        {"InvalidRelationshipTarget: External relationship target is not a valid xsd::anyURI. See "
         "http://www.w3.org/TR/leiri/.",
         [](Package& package, const std::u16string& text) {
             package.createExternalRelationship(u"t", text.substr(12) + u"&&"); // escapes count
         }},
        {"InvalidRelationshipType: Relationship type is not a valid xsd::anyURI",
         [](Package& package, const std::u16string& text) {
             package.createExternalRelationship(text, u"x");
         }},
        {"InvalidRelationshipID: Relationship ID is not a valid xsd::ID",
         [](Package& package, const std::u16string& text) {
             package.createExternalRelationship(u"t", u"x", text);
         }},
    };
    const std::u16string longest(1 << 20, u'a');
    MemoryPackage store;
    Package package(store);
    package.open(OpenMode::CreateOnly);
    for (const auto& [refusal, create] : cases) {
        EXPECT_EQ(outcomeOf([&, make = create] { make(package, longest + u'a'); }),
                  std::string("opc::model::") + refusal);
        create(package, longest);
    }
    package.createExternalRelationship(longest, longest, u"b" + longest.substr(1));
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getRelationships().size(), 5U);
    EXPECT_EQ(package.getParts().size(), 2U);
}

/// A document in UTF-16, which is shorter than in UTF-8, with one relationship whose target has this length.
Bytes relationshipsInUTF16(std::size_t length) {
    Bytes bytes{0xFF, 0xFE};
    std::u16string text =
        u"<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
        u"<Relationship Id='r' Type='t' TargetMode='External' Target='";
    text += std::u16string(length, u'\u4E00') + u"'/></Relationships>";
    for (const char16_t unit : text)
        bytes.insert(bytes.end(), {static_cast<unsigned char>(unit), static_cast<unsigned char>(unit >> 8)});
    return bytes;
}

// Relationships that couldn't be read again don't replace those that can.
TEST(LimitsOfXml, stopWritingWhatGrowsBeyondThem) {
    const auto relateAlike = [](Package& package) {
        for (unsigned i = 0; i < 1001; ++i) { // colliding IDs
            std::u16string id;
            for (unsigned bit = 0; bit < 10; ++bit)
                id += (i >> bit & 1) != 0 ? u"Az" : u"BT";
            package.createExternalRelationship(u"t", u"x", id);
        }
    };
    struct Case {
        Bytes before;
        std::function<void(Package&)> change;
        const char* refusal;
    };
    const Case cases[] = {
        {relationshipsInUTF16(1500000),
         [](Package& package) { package.createExternalRelationship(u"t", u"x"); },
         "XML content can not have tags or comments of more than 4 MiB"},
        {relationships(""), relateAlike, "XML content can not have more than 1000 colliding IDs"},
    };
    for (const auto& [before, change, refusal] : cases) {
        MemoryPackage store;
        fill(store, {});
        store.setPart(u"/_rels/.rels", before);
        Package package(store);
        package.open(OpenMode::ReadWrite);
        change(package);
        EXPECT_EQ(outcomeOf([&] { package.close(false); }),
                  std::string("opc::model::InvalidPartContent: ") + refusal);
        package.close(true);
        EXPECT_EQ(store.partBytes(u"/_rels/.rels"), before);
    }
}

} // namespace
