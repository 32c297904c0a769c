#include "standard_signatures/SignedSample.hpp"
#include "support/Outcome.hpp"
#include "support/RawZip.hpp"
#include "support/Texts.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <gtest/gtest.h>
#include <openssl/ec.h>

#include <functional>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;
using bedrock::crypto::DigestAlgorithm;

Signer signerOf(const Identity& identity) {
    return {bedrock::crypto::readSigningKey(identity.getPrivateKey()), identity.certificate, {}};
}

Identity identityOf(const std::string& key) {
    return makeSigner(nullptr, [&key](CertificateRecipe& recipe) {
        if (key[0] == 'P')
            recipe.key = {EVP_EC_gen(key.c_str()), EVP_PKEY_free};
        else if (key[0] == 'S')
            recipe.key = makePssKey();
        else
            recipe.rsaBits = std::stoul(key);
    });
}

/// Does something with the open package of a sample, and saves it.
void change(SignedSample& sample, const std::function<void(model::Package&)>& action) {
    model::Package package(sample.store);
    package.open(interfaces::OpenMode::ReadWrite);
    action(package);
    package.close(false);
}

NewSignature sign(SignedSample& sample, const Signer& signer = signerOf(SignedSample::usualSigner()),
                  const SigningOptions& options = {}) {
    NewSignature signature;
    change(sample, [&](model::Package& package) {
        signature = standard_signatures::sign(package, sample.store, signer, options);
    });
    return signature;
}

/// Drops the origin that the sample has.
void removeOrigin(SignedSample& sample) {
    std::string text = toText(sample.store.partBytes(u"/_rels/.rels"));
    const std::size_t place = text.find("<Relationship Id='rId3'");
    text.erase(place, text.find("/>", place) + 2 - place);
    sample.store.setPart(u"/_rels/.rels", toBytes(text));
    change(sample, [](model::Package& package) {
        package.deletePart(model::PartName(u"/_xmlsignatures/origin.sigs"));
    });
}

TEST(StandardSigning, MakesSignaturesThatHoldWithEachKindOfKey) {
    const struct {
        std::string key;
        DigestAlgorithm digest;
        std::string method;
    } cases[] = {
        {"2048", DigestAlgorithm::SHA256, "RSA with SHA-256"},
        {"3072", DigestAlgorithm::SHA384, "RSA with SHA-384"},
        {"S", DigestAlgorithm::SHA256, "RSA-PSS with SHA-256"},
        {"P-256", DigestAlgorithm::SHA256, "ECDSA with SHA-256"},
        {"P-384", DigestAlgorithm::SHA384, "ECDSA with SHA-384"},
        {"P-521", DigestAlgorithm::SHA512, "ECDSA with SHA-512"},
    };
    for (const auto& [key, digest, method] : cases) {
        const Identity identity = identityOf(key);
        PlainSample sample;
        SigningOptions options;
        options.digest = digest;
        options.comments = "\xC3\xA4 <&> why";
        const NewSignature made = sign(sample, signerOf(identity), options);
        EXPECT_EQ(made.name, "sig1");
        EXPECT_TRUE(made.coverage.isComplete()) << key;
        EXPECT_EQ(made.coverage.byCustom.size(), 2U);
        EXPECT_TRUE(made.unreachable.empty());
        const PackageVerification result = sample.verify(SignedSample::trusting(identity));
        EXPECT_TRUE(result.isYes()) << key;
        const VerifiedSignature& signature = result.signatures.at(0);
        EXPECT_EQ(signature.cryptography.method, method);
        EXPECT_EQ(signature.cryptography.references.size(), 8U); // three objects, three parts, two sources
        EXPECT_EQ(signature.coverage.signedRelationships, made.coverage.signedRelationships);
        EXPECT_EQ(signature.part, made.part);

        sample.replace(u"/word/document.xml", "content", "another");
        EXPECT_FALSE(sample.verify(SignedSample::trusting(identity)).isYes());
    }
}

TEST(StandardSigning, SignsWhatItIsToldTo) {
    PlainSample whole;
    SigningOptions options;
    options.signsAll = true;
    sign(whole, signerOf(SignedSample::usualSigner()), options);
    EXPECT_TRUE(whole.verify().isYes());
    EXPECT_TRUE(whole.verify().signatures[0].coverage.byCustom.empty());

    PlainSample some;
    options.parts = {"/word/media/%C3%A4.png", "/WORD/styles.xml", "/word/styles.xml"};
    options.relationships = {{"/word/document.xml", "rId10"}, {"/", "rId1"}, {"/word/document.xml", "rId1"}};
    EXPECT_FALSE(sign(some, signerOf(SignedSample::usualSigner()), options).coverage.isComplete());
    const VerifiedSignature signature = some.verify().signatures.at(0);
    EXPECT_EQ(signature.cryptography.status, CryptographyAnswer::Status::Valid);
    EXPECT_EQ(signature.coverage.signedParts, 2U);
    EXPECT_EQ(signature.coverage.signedRelationships, 3U);
    EXPECT_EQ(signature.coverage.gapCount, 2U); // the document, and its picture's relationship
}

/// What a document of another format names by its path is content, and so is what that names.
TEST(StandardSigning, SignsWhatIsNamed) {
    const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/";
    for (const bool isNamed : {false, true}) {
        PlainSample sample;
        sample.replace(u"/_rels/.rels", office + "relationships/officeDocument",
                       "http://schemas.openxps.org/oxps/v1.0/fixedrepresentation");
        sample.replace(u"/_rels/.rels", "</Relationships>",
                       "<Relationship Id='app' Target='docProps/app.xml' Type='" + office +
                           "relationships/extended-properties'/></Relationships>");
        sample.replaceContentTypes("</Types>",
                                   "<Override PartName='/docProps/app.xml' ContentType='application/"
                                   "vnd.openxmlformats-officedocument.extended-properties+xml'/></Types>");
        sample.store.setPart(u"/docProps/app.xml",
                             toBytes("<Properties xmlns='" + office + "extended-properties'/>"));
        sample.replace(u"/docProps/core.xml", "/>",
                       "><title xmlns='http://purl.org/dc/elements/1.1/'>app.xml</title></coreProperties>");
        if (isNamed)
            sample.replace(u"/word/styles.xml", "<styles/>", "<styles a='../docProps/core.xml'/>");
        EXPECT_TRUE(sign(sample).coverage.isComplete());
        const PackageVerification result = sample.verify();
        EXPECT_TRUE(result.isYes());
        EXPECT_EQ(result.signatures.at(0).coverage.signedParts, isNamed ? 5U : 3U);
    }
}

/// What the content names before it is signed could show the signature.
TEST(StandardSigning, TakesANameThatNothingWaitsFor) {
    const auto waiting = [](const std::string& target) {
        return "<Relationship Id='w' Type='u:t' Target='/_xmlsignatures/" + target + "/></Relationships>";
    };
    const struct {
        std::u16string part;
        std::string before, after, name; ///< empty: one that nobody knows before
        std::string origin = "origin.sigs";
    } cases[] = {
        {u"/word/document.xml", "content", "sig1.xml", "sig1"},
        {u"/_rels/.rels", "/officeDocument'", "/start'", ""},
        {u"/word/_rels/document.xml.rels", "</Relationships>", waiting("SIG1.xml'"), "sig2"},
        {u"/word/_rels/document.xml.rels", "</Relationships>", waiting("sig1.xml' TargetMode='External'"),
         "sig2"},
        {u"/word/_rels/document.xml.rels", "</Relationships>", waiting("origin.sigs'"), "sig1",
         "origin1.sigs"},
    };
    for (const auto& one : cases) {
        PlainSample sample;
        removeOrigin(sample);
        sample.replace(u"/word/styles.xml", "<styles/>", "<styles>sig1.xml sig2.xml</styles>");
        sample.replace(one.part, one.before, one.after);
        SigningOptions options;
        options.time = std::chrono::system_clock::now();
        const std::string name = sign(sample, signerOf(SignedSample::usualSigner()), options).name;
        sign(sample, signerOf(SignedSample::usualSigner()), options); // nothing tells it from the first one
        EXPECT_EQ(one.name.empty() ? name.substr(0, 3) : name, one.name.empty() ? "sig" : one.name);
        const PackageVerification result = sample.verify();
        EXPECT_TRUE(result.isYes()) << one.after << reasonsOf(result);
        EXPECT_EQ(result.signatures.size(), 2U);
        EXPECT_NE(toText(sample.store.partBytes(u"/_rels/.rels")).find(one.origin), std::string::npos);
    }
}

/// The model writes the extension of a default content type in lower case.
TEST(StandardSigning, SignsPartsWithCapitalsInTheirExtension) {
    PlainSample sample;
    change(sample, [](model::Package& package) {
        package.createPart(model::PartName(u"/word/media/b.PNG"), model::ContentType(u"image/png"),
                           model::StandardPartInfo());
    });
    sign(sample, signerOf(SignedSample::usualSigner()), {});
    EXPECT_TRUE(sample.verify().isYes());
}

/// Whoever signs all lets nobody add what custom leaves out, to a package without core properties neither.
TEST(StandardSigning, LetsNothingBeAddedToAll) {
    const std::string package = "http://schemas.openxmlformats.org/package/2006/relationships/";
    const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const std::string strict = "http://purl.oclc.org/ooxml/officeDocument/relationships/";
    for (const std::string& type :
         {package + "metadata/core-properties", package + "metadata/thumbnail", office + "custom-properties",
          office + "extended-properties", strict + "customProperties", strict + "metadata/thumbnail"}) {
        PlainSample sample;
        change(sample, [](model::Package& opened) {
            opened.deletePart(model::PartName(u"/docProps/core.xml"));
            opened.deleteRelationship(u"rId2");
        });
        SigningOptions options;
        options.signsAll = true;
        EXPECT_TRUE(sign(sample, signerOf(SignedSample::usualSigner()), options).coverage.isComplete());
        EXPECT_TRUE(sample.verify().isYes());
        EXPECT_TRUE(sign(sample).coverage.isComplete()); // which breaks nothing
        sample.replace(u"/_rels/.rels", "</Relationships>",
                       "<Relationship Id='x' Type='" + type + "' Target='word/styles.xml'/></Relationships>");
        EXPECT_EQ(sample.verify().signatures.at(0).cryptography.status, CryptographyAnswer::Status::Broken)
            << type;
    }
}

/// Programs choose between two such targets by an order that isn't signed.
TEST(StandardSigning, RefusesWhatOnlyAnOrderTellsApart) {
    const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const std::u16string package = u"/_rels/.rels";
    const std::u16string document = u"/word/_rels/document.xml.rels";
    const auto store = [](SignedSample& sample, const std::u16string& name, const std::string& id) {
        sample.store.setPart(name,
                             toBytes("<ds:datastoreItem ds:itemID='" + id +
                                     "' xmlns:ds='http://schemas.openxmlformats.org/officeDocument/2006/"
                                     "customXml'/>"));
    };
    const std::string model = "http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel";
    const std::string ui = "http://schemas.microsoft.com/office/2006/relationships/ui/extensibility";
    const struct {
        std::u16string source;
        std::string first, second; ///< types of two relationships
        std::string sourceType;    ///< of the document; empty: as it is
        std::string secondStore;   ///< its ID; the first one has {A}
        bool isRefused;
        std::string mode = {};
    } cases[] = {
        {document, office + "image", office + "image", "", "{B}", false},
        {document, office + "theme", office + "theme", "", "{B}", true},
        {document, office + "theme", "http://purl.oclc.org/ooxml/officeDocument/relationships/theme", "",
         "{B}", true},
        {document, office + "theme", office + "theme", "", "{B}", true, " TargetMode='External'"},
        {document, office + "slideLayout", office + "slideLayout", "presentationml.slide+xml", "{B}", true},
        {document, office + "slideLayout", office + "slideLayout", "presentationml.slideMaster+xml", "{B}",
         false},
        {document, office + "slideMaster", office + "slideMaster", "presentationml.slideLayout+xml", "{B}",
         true},
        {package, model, model, "", "{B}", true},
        {document, model, model, "", "{B}", false},
        {package, ui, ui, "", "{B}", true},
        {package, ui, replaced(ui, "2006", "2007"), "", "{B}", false}, // for different programs
        {document, office + "image", office + "image", "", "{a}", true},
    };
    for (const auto& [source, first, second, sourceType, secondStore, isRefused, mode] : cases) {
        PlainSample sample;
        for (const auto& [id, type] : {std::pair("a", first), {"b", second}})
            sample.replace(source, "</Relationships>",
                           "<Relationship Id='" + std::string(id) + "' Target='styles.xml' Type='" + type +
                               "'" + mode + "/></Relationships>");
        if (!sourceType.empty())
            sample.replaceContentTypes("wordprocessingml.document.main+xml", sourceType);
        store(sample, u"/customXml/itemProps1.xml", "{A}");
        store(sample, u"/customXml/itemProps2.xml", secondStore);
        for (const char* const number : {"1", "2"})
            sample.replaceContentTypes("</Types>",
                                       "<Override PartName='/customXml/itemProps" + std::string(number) +
                                           ".xml' ContentType='application/vnd.openxmlformats-officedocument."
                                           "customXmlProperties+xml'/></Types>");
        bool refused = false;
        try {
            sign(sample);
        } catch (const SigningRefused& refusal) {
            refused = (std::string(refusal.what()) + refusal.details()).find("order can't be signed") !=
                      std::string::npos;
        }
        EXPECT_EQ(refused, isRefused) << second << sourceType << secondStore;
    }
    const struct {
        std::string target, type;
        bool isRefused;
    } models[] = {
        {"b.txt", "u:b", false},
        {"b.MODEL", "u:b", true}, // whatever the types are
        {"b.txt", "http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel", true},
    };
    for (const auto& [target, type, isRefused] : models) {
        PlainSample sample;
        sample.replace(package, "</Relationships>",
                       "<Relationship Id='a' Target='a.model' "
                       "Type='http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel'/>"
                       "<Relationship Id='b' Target='" +
                           target + "' Type='" + type + "'/></Relationships>");
        if (isRefused)
            EXPECT_THROW(sign(sample), SigningRefused) << target << type;
        else
            EXPECT_NO_THROW(sign(sample)) << target << type;
    }
}

/// Programs that read spreadsheets find parts by their content types, and differ on where they look.
TEST(StandardSigning, RefusesContentTypesByWhichProgramsFindOtherParts) {
    const std::string sheet = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
    const std::string word =
        "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml";
    const std::string book = sheet + "sheet.main+xml";
    const std::string rels = "application/vnd.openxmlformats-package.relationships+xml";
    using Entry = std::pair<std::string, std::string>; // a part or an extension, and its content type
    const struct {
        std::vector<std::string> parts;
        std::vector<Entry> entries;
        bool isRefused;
    } cases[] = {
        {{"/1.a", "/2.a"},
         {{"/1.a", sheet + "sharedStrings+xml"}, {"/2.a", sheet + "SharedStrings+xml;a=b"}},
         true},
        {{"/1.a", "/2.a"}, {{"/1.a", sheet + "styles+xml"}, {"/2.a", sheet + "styles+xml"}}, true},
        {{"/1.a", "/2.a"}, {{"/1.a", sheet + "styles+xml"}, {"/2.a", sheet + "sharedStrings+xml"}}, false},
        {{"/1.a", "/2.a"}, {{"/1.a", sheet + "worksheet+xml"}, {"/2.a", sheet + "worksheet+xml"}}, false},
        {{"/1.a", "/2.a"},
         {{"/1.a", book}, {"/2.a", "application/vnd.ms-excel.sheet.macroEnabled.main+xml"}},
         true},
        {{"/1.a"}, {{"/1.a", word}}, false}, // a chunk in the document
        {{"/1.a"}, {{"a", sheet + "styles+xml"}}, true},
        {{"/1.a"}, {{"a", sheet + "sharedStrings+xml"}}, true},
        {{"/1.a"}, {{"a", book}}, true},
        {{"/1.a"},
         {{"a", "application/vnd.openxmlformats-officedocument.wordprocessingml.settings+xml"}},
         true},
        {{"/1.a"}, {{"a", word}}, false},
        {{"/1.a"}, {{"a", "application/vnd.ms-package.xps-fixedpage+xml"}}, false},
        {{}, {{"a", "application/vnd.openxmlformats-officedocument.theme+xml"}}, false},
        {{"/xl/workbook.a"}, {{"a", book}}, true},
        {{"/xl/workbook.xml"}, {{"/xl/workbook.xml", book}}, false},
        {{}, {{"a", book}}, true},
        {{}, {{"/1.a", sheet + "styles+xml"}}, true},
        {{}, {{"/1.a", "a/b"}, {"b", "a/b"}}, false},
        {{"/1.a"}, {{"/1.a", book}, {"/_rels/.rels", rels}}, false},
        {{"/1.a"}, {{"/1.a", book}, {"/_rels/.rels", rels}, {"/word/_rels/document.xml.rels", rels}}, false},
        {{"/1.a", "/book", "/_rels/book.rels"},
         {{"/1.a", book}, {"/book", "a/b"}, {"/_rels/.rels", rels}},
         true},
        {{"/1.a", "/book", "/_rels/book.rels"}, {{"/1.a", book}, {"/book", "a/b"}}, false},
        {{"/1.a"}, {{"/1.a", book}, {"/_rels/book.xml.rels", rels}}, true},
        {{}, {{"/_rels/.rels", rels}, {"/_rels/book.xml.rels", rels}}, false},
    };
    for (const auto& [parts, entries, isRefused] : cases) {
        PlainSample sample;
        removeOrigin(sample);
        std::string text = "<!-- -->";
        for (const std::string& name : parts)
            sample.store.setPart(toString(name, true),
                                 toBytes(name.find("_rels") != std::string::npos
                                             ? "<Relationships "
                                               "xmlns='http://schemas.openxmlformats.org/package/2006/"
                                               "relationships'/>"
                                             : "<a/>"));
        for (const auto& [name, type] : entries)
            text += (name[0] == '/' ? "<Override PartName='" : "<Default Extension='") + name +
                    "' ContentType='" + type + "'/>";
        sample.replaceContentTypes("</Types>", text + "</Types>");
        bool refused = false;
        try {
            sign(sample);
        } catch (const SigningRefused&) {
            refused = true;
        }
        EXPECT_EQ(refused, isRefused) << text;
    }
}

/// Programs find data stores by what leads to them, and take an ID at one or another element.
TEST(StandardSigning, RefusesTwinStoresOfWhateverKind) {
    const std::string id = "ds:itemID='{A}' xmlns:ds='u:a'/>";
    const struct {
        std::string first, second;
        bool isRefused;
        std::string descriptionOfSecond = "2";
    } cases[] = {
        {"<a " + id, "<a ds:itemID='{B}' xmlns:ds='u:a'/>", false},
        {"<a " + id, "<a " + id, true},
        {"<a " + id, "<a><b " + id + "</a>", true},
        {"<a itemID='{B}'><b " + id + "</a>", "<a itemID='{C}'><b " + id + "</a>", true},
        {"<a itemID='{B}' " + id, "<a itemID='{C}' " + id, true},
        {"<a itemID='{A}' " + id, "<a itemID='{B}'/>", false},
        {"<a " + id, "<a/>", true, "1"},
        {"<a " + id, "<!--" + std::string(70000, 'x') + "--><a/>", true}, // nobody looks what stands there
        {"<a " + id, "<a>", true},
    };
    for (const auto& [first, second, isRefused, descriptionOfSecond] : cases) {
        PlainSample sample;
        for (const auto& [number, content, description] :
             {std::tuple<std::string, std::string, std::string>("1", first, "1"),
              {"2", second, descriptionOfSecond}}) {
            const std::u16string n(number.begin(), number.end());
            sample.store.setPart(u"/customXml/item" + n + u".xml", toBytes("<data/>"));
            sample.store.setPart(u"/customXml/props" + n + u".xml", toBytes(content));
            sample.store.setPart(
                u"/customXml/_rels/item" + n + u".xml.rels",
                relationships(
                    "<Relationship Id='a' Target='props" + description +
                    ".xml' Type='http://purl.oclc.org/ooxml/officeDocument/relationships/customXmlProps'/>"));
        }
        if (isRefused)
            EXPECT_THROW(sign(sample), SigningRefused) << first << second;
        else
            EXPECT_NO_THROW(sign(sample)) << first << second;
    }
}

/// A content control that doesn't find what it looks for in the store with its ID shows what the first store has that fits.
TEST(StandardSigning, RefusesControlsThatTakeAnyStore) {
    const std::string store = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/customXml";
    const auto leading = [](const std::string& id, const std::string& type, const std::string& target) {
        return "<Relationship Id='" + id + "' Type='" + type + "' Target='" + target + "'/>";
    };
    const auto describing = [](const std::string& more) {
        return "<ds:datastoreItem "
               "xmlns:ds='http://schemas.openxmlformats.org/officeDocument/2006/customXml' " +
               more;
    };
    const std::string plain = describing("ds:itemID='{@}'/>");
    const std::string props = leading("p", store + "Props", "props@.xml");
    const auto bound = [](const std::string& more) { return "<w:dataBinding " + more + "/>"; };
    const std::string noID = bound("w:xpath='/a'");
    const auto withPath = [&](const std::string& path) {
        return bound("w:storeItemID='{1}' w:xpath='" + path + "'");
    };
    const auto withID = [&](const std::string& id) {
        return bound("w:storeItemID='" + id + "' w:xpath='/a'");
    };
    const std::string comment = "<!--" + std::string(60000, 'x') + "-->";
    const std::string core = "{6C3C8BC8-F283-45AE-878A-BAB7291924A1}";
    const struct {
        std::string control; ///< an element in the document
        bool isRefused;
        std::vector<std::string> stores = {"<a/>", "<a/>"};
        std::string description = {};  ///< of each, with its number for @; empty: a good one
        std::string relationship = {}; ///< to it
        std::string picture = {};      ///< what the part with a picture has
    } cases[] = {
        {withID("{1}"), false},
        {withID("{2}"), false},
        {withID("{1}"), true, {"<a/>", "<a/>", "<a/>"}}, // if the first one hasn't what it looks for
        {withID("{1}"), false, {"<b/>", "<a/>", "<b/>"}},
        {withID("{1}"), true, {"<b/>", "<a/>", "<x:a xmlns:x=\"u:x\"/>"}},
        {withID("{1}"), true, {"<b/>", "<a/>", "a"}},
        {withID("{3}"), true},
        {withID(""), true},
        {withID(core), true},
        {withID(core), false, {"<a/>", "<b/>"}},
        {bound("w:storeItemID='" + core + "' w:xpath='/c:coreProperties[1]/c:title[1]'"), false},
        {bound("w:xpath='/coreProperties'"), true, {"<coreProperties/>", "<a/>"}},
        {noID, true},
        {noID, false, {"<a/>", "<b/>"}},
        {noID, false, {"<a/>"}},
        {noID, false, {"<a/>", comment + "<b/>"}},
        {noID, true, {"<a/>", comment + comment + "<b/>"}},            // nobody reads that far
        {noID, true, std::vector<std::string>(300, comment + "<b/>")}, // nor so many
        {bound("x:storeItemID='{1}' xmlns:x='u:x' w:xpath='/a'"), true},
        {bound("x:storeItemID='{3}' xmlns:x='u:x' w:storeItemID='{1}' w:xpath='/a'"), true},
        {bound("x:xpath='/a' xmlns:x='u:x' w:xpath='/b'"), true},
        {"<x:dataBinding xmlns:x='urn:later' w:xpath='/b'/><x:dataBinding xmlns:x='urn:later' w:xpath='/a'/>",
         true},
        {withID("{1}") + "<!DOCTYPE w>", true}, // can't be read to its end
        {withID("{1}") + std::string((std::size_t{96} << 20U) - 200, ' '),
         true}, // nor may this be, with the others
        {"<a/>", true, {"<a/>", "<a/>"}, {}, {}, "<?xml version='1.0' encoding='windows-1252'?><a/>"},
        {"<a/>", true, {"<a/>", "<a/>"}, {}, {}, "\xFF\xFE \n<\0!"},
        {"<a/>", true, {"<a/>", "<a/>"}, {}, {}, "\x4C\x6F\xA7\x94"},
        {"<a/>", true, {"<a/>", "<a/>"}, {}, {}, std::string(5000, ' ') + "<!DOCTYPE a>"},
        {"<a/>", false, {"<a/>", "<a/>"}, {}, {}, "\x89PNG<a/>"},
        {"<a/>", false, {"<a/>", "<a/>"}, {}, {}, std::string(100, '\0')},
        {withPath("/p:a[12]/b/@p:c"), false, {"<b/>", "<a/>", "<b/>"}},
        // whatever the root is
        {withPath("//a"), true, {"<b/>", "<a/>", "<b/>"}},
        {withPath("/*/a"), true, {"<b/>", "<a/>", "<b/>"}},
        {withPath("/a/../../b"), true, {"<c/>", "<a/>", "<b/>"}},
        {withPath("/./a"), true, {"<c/>", "<a/>", "<b/>"}},
        {withPath("/a|/b"), true, {"<c/>", "<a/>", "<b/>"}},
        {withPath("/a[1]-/b[1]"), true, {"<c/>", "<a/>", "<b/>"}},
        {withPath("/a[/b]"), true, {"<c/>", "<a/>", "<b/>"}},
        {withPath("a"), true, {"<c/>", "<a/>", "<b/>"}},
        // a store of which not all programs tell the ID
        {noID, true, {"<a/>", "<b/>"}, "<x a='@'/>"},
        {noID, true, {"<a/>", "<b/>"}, describing("itemID='{@}'/>")},
        {noID, true, {"<a/>", "<b/>"}, "<x>" + plain + "</x>"},
        {noID, true, {"<a/>", "<b/>"}, describing("ds:itemID='{@}'>")},
        {noID,
         true,
         {"<a/>", "<b/>"},
         describing("ds:itemID='{@}'>") + std::string(70000, ' ') + "</ds:datastoreItem>"},
        {noID, true, {"<a/>", "<b/>"}, {}, "<!--@-->"},
        {noID, true, {"<a/>", "<b/>"}, {}, leading("p", "u:x/customXmlProps", "props@.xml")},
        {noID, true, {"<a/>", "<b/>"}, {}, leading("p", store + "Props", "Props@.xml")},
        {noID, true, {"<a/>", "<b/>"}, {}, leading("p", store + "Props", "prop%73@.xml")},
    };
    for (const auto& [control, isRefused, stores, description, relationship, picture] : cases) {
        PlainSample sample;
        for (std::size_t i = 0; i < stores.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            const std::u16string n(number.begin(), number.end());
            sample.replace(u"/word/_rels/document.xml.rels", "</Relationships>",
                           leading("s" + number, store, "/customXml/item" + number + ".xml") +
                               "</Relationships>");
            sample.store.setPart(u"/customXml/item" + n + u".xml", toBytes(stores[i]));
            sample.store.setPart(
                u"/customXml/_rels/item" + n + u".xml.rels",
                relationships(replaced(relationship.empty() ? props : relationship, "@", number)));
            sample.store.setPart(u"/customXml/props" + n + u".xml",
                                 toBytes(replaced(description.empty() ? plain : description, "@", number)));
        }
        sample.store.setPart(
            u"/word/document.xml",
            toBytes("<w:document xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main'>" +
                    control + "</w:document>"));
        sample.store.setPart(u"/word/media/%C3%A4.png", toBytes(picture));
        const std::string label = control.substr(0, 100) + stores[0].substr(0, 100) + description;
        if (isRefused)
            EXPECT_THROW(sign(sample), SigningRefused) << label << relationship;
        else
            EXPECT_NO_THROW(sign(sample)) << label;
        if (isRefused) // another program signs it
            sample.sign();
        EXPECT_EQ(reasonsOf(sample.verify()).find("can take any data store") != std::string::npos, isRefused)
            << label << relationship;
    }
}

TEST(StandardSigning, KeepsTheSignaturesThatAreThere) {
    PlainSample sample;
    removeOrigin(sample);
    const Signer signer = signerOf(SignedSample::usualSigner());
    EXPECT_EQ(sign(sample, signer).part, "/_xmlsignatures/sig1.xml");
    EXPECT_EQ(sign(sample, signer).part, "/_xmlsignatures/sig2.xml");
    EXPECT_TRUE(sample.verify().isYes());
    EXPECT_EQ(sample.verify().signatures.size(), 2U);

    const auto remove = [&sample](const std::string& part) {
        change(sample, [&](model::Package& package) { removeSignature(package, sample.store, part); });
    };
    remove("/_xmlsignatures/sig1.xml");
    EXPECT_TRUE(sample.verify().isYes());
    EXPECT_EQ(sign(sample, signer).name, "sig1");
    remove("/_XmlSignatures/sig2.xml");
    remove("/_xmlsignatures/sig1.xml");
    change(sample, [](const model::Package& package) {
        EXPECT_EQ(package.getParts().size(), 4U);
        EXPECT_FALSE(package.hasRelationship(u"rId3"));
    });
}

/// A package has one origin at most [M6.1].
TEST(StandardSigning, MakesAnOriginInPlaceOfOneThatIsMissing) {
    PlainSample sample;
    change(sample, [](model::Package& package) {
        package.deletePart(model::PartName(u"/_xmlsignatures/origin.sigs"));
    });
    sign(sample);
    EXPECT_TRUE(sample.verify().isYes());
    const std::string relationships = toText(sample.store.partBytes(u"/_rels/.rels"));
    EXPECT_EQ(relationships.find("digital-signature/origin"),
              relationships.rfind("digital-signature/origin"));
}

/// What others need stays, and what nobody needs any more goes.
TEST(StandardSigning, RemovesSeveralAtOnce) {
    PlainSample sample;
    const Signer signer = signerOf(SignedSample::usualSigner());
    for (int i = 0; i < 3; ++i)
        sign(sample, signer);
    change(sample, [](model::Package& package) { // one certificate for two of them
        const model::PartName certificate(u"/_xmlsignatures/c.cer");
        package.createPart(
            certificate,
            model::ContentType(u"application/vnd.openxmlformats-package.digital-signature-certificate"),
            model::StandardPartInfo());
        for (const char16_t* const name : {u"/_xmlsignatures/sig1.xml", u"/_xmlsignatures/sig2.xml"})
            package.getPart(model::PartName(name))
                .createInternalRelationship(u"http://schemas.openxmlformats.org/package/2006/relationships/"
                                            u"digital-signature/certificate",
                                            certificate.getURI());
    });
    const auto remove = [&sample](const std::vector<std::string>& numbers) {
        std::vector<std::string> parts;
        for (const std::string& number : numbers)
            parts.push_back("/_xmlsignatures/sig" + number + ".xml");
        change(sample, [&](model::Package& package) { removeSignatures(package, sample.store, parts); });
        std::string left;
        change(sample, [&](const model::Package& package) {
            left = std::to_string(package.getParts().size()) + " parts, " +
                   std::to_string(listSignatures(sample.store).size()) + " signatures";
        });
        return left;
    };
    EXPECT_EQ(remove({"3"}), "8 parts, 2 signatures");
    EXPECT_EQ(remove({"1"}), "7 parts, 1 signatures");
    const std::vector<std::string> unknown{"2", "9"};
    EXPECT_EQ(outcomeOf([&] { remove(unknown); }),
              "opc::standard_signatures::SigningRefused: There is no signature /_xmlsignatures/sig9.xml");
    change(sample, [](model::Package& package) { // as the other profile has it
        package.createInternalRelationship(u"urn:other", model::URI(u"/_xmlsignatures/origin.sigs"));
    });
    EXPECT_EQ(remove({"2"}), "5 parts, 0 signatures");

    change(sample, [](model::Package& package) { // which an attacker can say
        package.getPart(model::PartName(u"/_xmlsignatures/origin.sigs"))
            .createInternalRelationship(u"http://schemas.openxmlformats.org/package/2006/relationships/"
                                        u"digital-signature/signature",
                                        model::URI(u"/word/document.xml"));
    });
    change(sample, [&](model::Package& package) {
        removeSignatures(package, sample.store, {"/word/document.xml"});
        EXPECT_TRUE(package.hasPart(model::PartName(u"/word/document.xml")));
    });
}

TEST(StandardSigning, SaysLittleAboutWhoSignsWithoutACertificate) {
    for (const char* const key : {"2048", "P-384"}) {
        const Identity identity = identityOf(key);
        PlainSample sample;
        sign(sample, {bedrock::crypto::readSigningKey(identity.getPrivateKey()), {}, {}});
        const PackageVerification result = sample.verify();
        EXPECT_EQ(result.signatures.at(0).cryptography.status, CryptographyAnswer::Status::Valid);
        EXPECT_EQ(result.signatures[0].trust.status, TrustAnswer::Status::Unknown);
        EXPECT_FALSE(result.isYes());
    }
}

TEST(StandardSigning, NamesWhatNoRelationshipReaches) {
    PlainSample sample;
    sample.replace(u"/word/_rels/document.xml.rels", "<Relationship Id='rId10'", "<!--");
    sample.replace(u"/word/_rels/document.xml.rels", "Target='styles.xml'/>", "-->");
    EXPECT_EQ(sign(sample).unreachable, std::vector<std::string>{"/word/styles.xml"});
}

TEST(StandardSigning, RefusesWhatWouldDeceiveOrBreak) {
    using Prepare = std::function<void(SignedSample&, Signer&, SigningOptions&)>;
    const auto rawReferenceTo = [](SignedSample& sample, const std::u16string& part) {
        SignatureRecipe recipe;
        recipe.changeManifest = [&sample, part](std::string& manifest) {
            manifest += sample.referenceTo(part, "application/vnd.openxmlformats-package.relationships+xml");
        };
        sample.sign();
        sample.sign(recipe);
    };
    const std::string refused = "opc::standard_signatures::SigningRefused: ";
    const std::pair<std::string, Prepare> cases[] = {
        {"An RSA key of 1024 bits is too weak",
         [](SignedSample&, Signer& signer, SigningOptions&) { signer = signerOf(identityOf("1024")); }},
        {"The certificate isn't that of the private key",
         [](SignedSample&, Signer& signer, SigningOptions&) {
             signer.certificate = identityOf("P-256").certificate;
         }},
        {"The digest isn't SHA-256, SHA-384 or SHA-512",
         [](SignedSample&, Signer&, SigningOptions& options) { options.digest = DigestAlgorithm::SHA1; }},
        {"There is no private key", [](SignedSample&, Signer& signer, SigningOptions&) { signer.key = {}; }},
        {"There is no part /word/none.xml",
         [](SignedSample&, Signer&, SigningOptions& options) { options.parts = {"/word/none.xml"}; }},
        {"There is no relationship rId9 of /",
         [](SignedSample&, Signer&, SigningOptions& options) {
             options.relationships = {{"/", "rId9"}};
         }},
        {"The signature /_xmlsignatures/sig1.xml signs /_xmlsignatures/_rels/origin.sigs.rels in a way "
         "that "
         "allows no change of the signatures",
         [&](SignedSample& sample, Signer&, SigningOptions&) {
             rawReferenceTo(sample, u"/_xmlsignatures/_rels/origin.sigs.rels");
         }},
        {"The signature can't be written: ",
         [](SignedSample&, Signer&, SigningOptions& options) { options.comments = "\x01"; }},
    };
    for (const auto& [message, prepare] : cases) {
        PlainSample sample;
        Signer signer = signerOf(SignedSample::usualSigner());
        SigningOptions options;
        prepare(sample, signer, options);
        model::Package package(sample.store);
        package.open(interfaces::OpenMode::ReadWrite);
        const std::string outcome =
            outcomeOf([&] { standard_signatures::sign(package, sample.store, signer, options); });
        EXPECT_EQ(outcome.substr(0, refused.size() + message.size()), refused + message);
    }
}

/// What the model reads although it is odd must be signed as it lies there, or not at all.
TEST(StandardSigning, SignsNothingThatOthersReadInAnotherWay) {
    const std::u16string document = u"/word/_rels/document.xml.rels";
    const std::string refused = "opc::standard_signatures::SigningRefused: ";
    const auto inDocument = [&](const std::string& from, const std::string& to) {
        return [=](SignedSample& it) { it.replace(document, from, to); };
    };
    const auto adding = [&](const std::string& more) {
        return inDocument("</Relationships>", more + "</Relationships>");
    };
    const struct {
        const char* what;
        std::function<void(SignedSample&)> prepare;
        bool isSigned;
    } cases[] = {
        {"a letter that a URI can't have", inDocument("%C3%A4.png", "\xC3\xA4.png"), true},
        {"a space in a target", inDocument("'styles.xml'", "' styles.xml'"), false},
        {"a prefix",
         inDocument("<Relationship Id='rId10'",
                    "<p:Relationship xmlns:p='http://schemas.openxmlformats.org/package/2006/relationships' "
                    "Id='rId10'"),
         false},
        {"no target", adding("<Relationship Id='x' Type='u:a' Target=''/>"), true},
        {"an attribute", inDocument("Id='rId10'", "Id='rId10' xml:base='/a/'"), false},
        {"an ID twice", adding("<Relationship Id='rId10' Type='u:a' Target='x.xml'/>"), false},
        {"an element", adding("<a xmlns='u:a'/>"), false},
        {"ignorable content",
         inDocument("<Relationships",
                    "<Relationships xmlns:a='u:a' "
                    "xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006' "
                    "mc:Ignorable='a'"),
         false},
        {"text", adding("text"), false},
        {"a part in a part",
         [](SignedSample& it) { it.store.setPart(u"/word/styles.xml/a.png", toBytes("png")); }, false},
        {"two origins",
         [](SignedSample& it) {
             it.replace(
                 u"/_rels/.rels", "</Relationships>",
                 "<Relationship Id='x' Target='word/styles.xml' Type='http://schemas.openxmlformats.org/"
                 "package/2006/relationships/digital-signature/origin'/></Relationships>");
         },
         false},
        {"nothing that can be read", [&](SignedSample& it) { it.store.setPart(document, toBytes("<")); },
         false},
        {"a part without content type",
         [](SignedSample& it) { it.store.setPart(u"/word/a.zip", toBytes("zip")); }, false},
        {"a content type twice",
         [](SignedSample& it) {
             it.replaceContentTypes("</Types>",
                                    "<Default Extension='XML' ContentType='text/plain'/></Types>");
         },
         false},
        {"relationships of nothing",
         [](SignedSample& it) {
             it.store.setPart(u"/word/_rels/ghost.xml.rels",
                              relationships("<Relationship Id='x' Type='u:a' Target='x.xml'/>"));
         },
         false},
        {"two styles",
         adding("<Relationship Id='x' Target='x.xml' Type='http://purl.oclc.org/ooxml/officeDocument/"
                "relationships/styles'/>"),
         false},
        {"another format", [](SignedSample& it) { it.store.setPart(u"/META-INF/manifest.xml", {}); }, false},
    };
    for (const auto& [what, prepare, isSigned] : cases) {
        PlainSample sample;
        prepare(sample);
        physical::LenientPackage lenient(sample.store);
        model::Package package(lenient);
        const std::string outcome = outcomeOf([&] {
            package.open(interfaces::OpenMode::ReadWrite);
            standard_signatures::sign(package, sample.store, signerOf(SignedSample::usualSigner()));
            package.close(false);
        });
        if (isSigned) {
            const PackageVerification result = sample.verify();
            EXPECT_TRUE(result.isYes()) << what << ": " << outcome << "\n" << reasonsOf(result);
        } else {
            EXPECT_EQ(outcome.substr(0, refused.size()), refused) << what;
        }
    }
}

TEST(StandardSigning, RefusesItemsThatOtherProgramsMayNotFind) {
    physical::ZipPackage store(makeZip(
        {stored("[Content_Types].xml",
                "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'><Default "
                "Extension='xml' ContentType='application/xml'/></Types>"),
         stored("a\\b.xml", "<b/>")}));
    model::Package package(store);
    package.open(interfaces::OpenMode::ReadWrite);
    EXPECT_EQ(
        outcomeOf([&] { standard_signatures::sign(package, store, signerOf(SignedSample::usualSigner())); }),
        "opc::standard_signatures::SigningRefused: Other programs may take a\\b.xml for something "
        "else: its name has a backslash");
}

/// Whoever signs first, in whichever profile.
TEST(StandardSigning, KeepsSignaturesOfTheOtherProfile) {
    const auto& keys = keysOf(2048);
    const auto withManager = [](SignedSample& sample, const auto& action) {
        model::Package package(sample.store);
        model::DigitalSignatureManager manager(package);
        package.open(interfaces::OpenMode::ReadWrite);
        action(package, manager);
        package.close(false);
    };
    const auto signOwn = [&](model::Package& package, model::DigitalSignatureManager& manager) {
        std::vector<model::PartName> parts;
        for (const model::Part& part : package.getParts(model::ExcludeMode::ExcludeManaged))
            parts.push_back(part.getName());
        manager.sign(parts, {}, keys.getPrivateKey(), model::SignatureParams());
    };
    const auto expectHolding = [&](model::Package&, model::DigitalSignatureManager& manager) {
        const auto verdict = manager.judge(model::SignaturePolicy::byPublicKey(keys.getPublicKey()));
        ASSERT_EQ(verdict.getSignatures().size(), 1U);
        EXPECT_TRUE(verdict.getSignatures().front().holds);
    };
    for (const bool ownIsFirst : {false, true}) {
        PlainSample sample;
        if (ownIsFirst)
            withManager(sample, signOwn);
        for (int i = 0; i < 3; ++i)
            sign(sample);
        if (!ownIsFirst)
            withManager(sample, signOwn);
        withManager(sample, expectHolding);
        const PackageVerification result = sample.verify();
        ASSERT_EQ(result.signatures.size(), 3U);
        for (const VerifiedSignature& one : result.signatures)
            EXPECT_EQ(one.cryptography.status, CryptographyAnswer::Status::Valid) << reasonsOf(result);
    }
}

} // namespace
