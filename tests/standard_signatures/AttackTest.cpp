#include "standard_signatures/SignedSample.hpp"
#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/Texts.hpp"

#include <opc/core/Text.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

using Attack = std::function<void(SignedSample&)>;

const std::string BASE = "http://schemas.openxmlformats.org/package/2006/relationships/";
const std::string OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::u16string PACKAGE = u"/_rels/.rels";
const std::u16string DOCUMENT = u"/word/_rels/document.xml.rels";
const std::u16string STYLES = u"/word/styles.xml";

Attack adding(const std::u16string& document, const std::string& type, const std::string& target,
              const std::string& more = {}) {
    return [=](SignedSample& it) {
        it.replace(document, "</Relationships>",
                   "<Relationship Id='evil' Type='" + type + "' Target='" + target + "'" + more +
                       "/></Relationships>");
    };
}

Attack replacingIn(const std::u16string& part, const std::string& from, const std::string& to) {
    return [=](SignedSample& it) { it.replace(part, from, to); };
}

Attack replacingTypes(const std::string& from, const std::string& to) {
    return [=](SignedSample& it) { it.replaceContentTypes(from, to); };
}

Attack renaming(const std::u16string& from, const std::u16string& to) {
    return [=](SignedSample& it) {
        const Bytes content = it.store.partBytes(from);
        it.store.removePart(from);
        it.store.setPart(to, content);
    };
}

Attack addingPart(const std::u16string& name, const std::string& content = "<evil/>") {
    return [=](SignedSample& it) { it.store.setPart(name, toBytes(content)); };
}

Attack both(const Attack& first, const Attack& second) {
    return [=](SignedSample& it) {
        first(it);
        second(it);
    };
}

struct Case {
    std::string reason;
    Attack attack;
};

template <std::size_t Size>
void expectNoYes(const Case (&cases)[Size]) {
    for (const auto& [reason, attack] : cases) {
        SignedSample sample;
        sample.sign();
        attack(sample);
        const PackageVerification result = sample.verify();
        EXPECT_FALSE(result.isYes()) << reason;
        EXPECT_NE(reasonsOf(result).find(reason), std::string::npos) << reason << "\nin\n"
                                                                     << reasonsOf(result);
    }
}

/// What other programs may take for the name of a signed part, or may no longer find.
TEST(StandardAttacks, PlayWithNames) {
    const std::string missing = "/word/styles.xml: The part isn't in the package";
    const Case cases[] = {
        {missing, renaming(STYLES, u"/word/%73tyles.xml")},
        {missing, renaming(STYLES, u"/word%2Fstyles.xml")},
        {"/word/_rels/document.xml.rels: The part isn't in the package",
         renaming(DOCUMENT, u"/word/_rels%2Fdocument.xml.rels")},
        {"There is more than one part with this name", addingPart(u"/word/media/ä.png")},
        {"gap: /word/\xC5\xBFtyles.xml its content isn't signed", addingPart(u"/word/\u017Ftyles.xml")},
        {"gap: /word/media/a\xCC\x88.png its content isn't signed", addingPart(u"/word/media/a\u0308.png")},
        {"gap: /word/styles.xml.", addingPart(u"/word/styles.xml.")},
        {"gap: /word/document.xml/[0].piece", addingPart(u"/word/document.xml/[0].piece")},
        {"gap: /word/media/%c3%a4.png it was signed with its name written in another way",
         renaming(u"/word/media/%C3%A4.png", u"/word/media/%c3%a4.png")},
        {"gap: /word/document.xml its name begins with that of the part /word", addingPart(u"/word")},
        {"gap: /_rels/.rels/a.xml its name begins with that of the part /_rels/.rels",
         addingPart(u"/_rels/.rels/a.xml")},
        {"gap: /[Content_Types].xml/a.xml its name begins", addingPart(u"/[Content_Types].xml/a.xml")},
        {"gap: /META-INF/manifest.xml programs take the package for one of another format",
         addingPart(u"/META-INF/manifest.xml")},
        {"gap: /word/_rels/ghost.xml.rels it has the name of relationships of what isn't a part",
         addingPart(u"/word/_rels/ghost.xml.rels", toText(relationships("")))},
        {"gap: /_rels/_rels/.rels.rels it has the name of relationships of what isn't a part",
         addingPart(u"/_rels/_rels/.rels.rels", toText(relationships("")))},
        {"gap: /word/ghost.xml evil the relationship isn't signed",
         addingPart(u"/word/_rels/ghost.xml.rels",
                    toText(relationships("<Relationship Id='evil' Type='" + OFFICE +
                                         "styles' Target='styles.xml'/>")))},
    };
    expectNoYes(cases);
}

/// What other programs may take for the content type of a signed part.
TEST(StandardAttacks, PlayWithContentTypes) {
    const std::string main = "PartName='/word/document.xml'";
    const std::string noPart = "isn't the name or extension of a part";
    const auto adding = [](const std::string& entry) {
        return replacingTypes("</Types>", entry + "</Types>");
    };
    const auto overriding = [&](const std::string& name) {
        return adding("<Override PartName='" + name + "' ContentType='text/html'/>");
    };
    const auto defaulting = [&](const std::string& extension) {
        return adding("<Default Extension='" + extension + "' ContentType='text/html'/>");
    };
    const Case cases[] = {
        {"Two content types are given for /word/document.xml", overriding("/Word/document.xml")},
        {noPart, overriding("/word/%64ocument.xml")},
        {noPart, replacingTypes(main, "PartName='/word/%64ocument.xml'")},
        {noPart, overriding("word/document.xml")},
        {noPart, overriding("/word/./document.xml")},
        {noPart, overriding("/word//document.xml")},
        {noPart, overriding("/word\\document.xml")},
        {noPart, overriding(" /word/document.xml")},
        {noPart, overriding("/word/document.xml ")},
        {noPart, overriding("/word%2Fdocument.xml")},
        {noPart, overriding("/word/document.xml?a")},
        {noPart, overriding("/word/document.xml#a")},
        {noPart, overriding("/word/document.xml|a")},
        {noPart, overriding("/word/document.xml:a")},
        {noPart, overriding("/word/document.xml%00a")},
        {noPart, overriding("/word/document.xml\u00A0")},
        {noPart, overriding("/word/document.xml.")},
        // by letter case alone another one than that of the part
        {"/word/document.xml: Its content type is unknown",
         replacingTypes(main, "PartName='/word/Document.xml'")},
        {noPart, both(addingPart(u"/word/a(1).xml"), overriding("/word/a%281%29.xml"))},
        {"gap: /word/_rels/document.xml.rels it has no content type", replacingTypes("\"rels\"", "\"RELS\"")},
        {noPart, defaulting(".xml")},
        {noPart, defaulting("%78ml")},
        {noPart, defaulting("xml ")},
        {noPart, defaulting("xml?")},
        {noPart, defaulting("xml\u200D")},
        {noPart, defaulting("")},
        {noPart, defaulting("png%21")},
        {"Two content types are given for png", defaulting("PNG")},
        {"The element Override doesn't belong into the content types",
         adding("<Override xmlns='u:a' PartName='/word/styles.xml' ContentType='text/html'/>")},
        {"The element Override doesn't belong into the content types",
         replacingTypes("<Default Extension='png' ContentType='image/png'/>",
                        "<Default Extension='png' ContentType='image/png'><Override "
                        "PartName='/word/styles.xml' ContentType='text/html'/></Default>")},
        {"An entry of the content types has other attributes than it must",
         replacingTypes(main, main + " xmlns:x='u:x' x:PartName='/word/other.xml'")},
        {"/word/document.xml: Its content type is",
         replacingTypes("document.main+xml'", "document.main+xml;a=b'")},
        {"/word/document.xml: Its content type is",
         replacingTypes("document.main+xml'", "document.main+XML'")},
        {"/word/document.xml: Its content type is",
         replacingTypes("document.main+xml'", "document.main+xml '")},
        {"/word/_rels/document.xml.rels: Its content type is application/xml",
         adding("<Override PartName='/word/_rels/document.xml.rels' ContentType='application/xml'/>")},
        {"gap: /_xmlsignatures/_rels/origin.sigs.rels it hasn't the content type of relationships",
         overriding("/_xmlsignatures/_rels/origin.sigs.rels")},
        {"A comment in the content types has markup", adding("<!--<Override/>-->")},
        {"The content types have text", adding("text")},
        {"The content types have text, or very much white space", adding(std::string(2U << 20, ' '))},
        {"The element Override of the content types has a prefix",
         adding("<a:Override xmlns:a='http://schemas.openxmlformats.org/package/2006/content-types' "
                "PartName='/a' ContentType='text/html'/>")},
        {"The content types have an instruction to programs", adding("<?a b?>")},
        {"The document says that it is in UTF-16", replacingTypes("UTF-8", "UTF-16")},
    };
    expectNoYes(cases);
}

/// What brings content into a document past its signed relationships, or hides it behind what needn't be signed.
TEST(StandardAttacks, PlayWithRelationships) {
    const std::string unsignedPart = "gap: /word/evil.xml its content isn't signed";
    const Attack part = addingPart(u"/word/evil.xml");
    const std::u16string ofSignature = u"/_xmlsignatures/_rels/sig1.xml.rels";
    const Attack certificates = addingPart(ofSignature, toText(relationships("")));
    const auto fromDocument = [](const std::string& from, const std::string& to) {
        return replacingIn(DOCUMENT, from, to);
    };
    const Case cases[] = {
        // nothing but a thumbnail leads to a part of the content
        {unsignedPart, both(part, adding(PACKAGE, BASE + "metadata/thumbnail", "word/evil.xml"))},
        {unsignedPart, both(part, adding(PACKAGE, BASE + "metadata/core-properties", "word/evil.xml"))},
        {unsignedPart, both(part, adding(PACKAGE, OFFICE + "extended-properties", "word/evil.xml"))},
        {unsignedPart, both(part, adding(PACKAGE, OFFICE + "custom-properties", "word/evil.xml"))},
        {unsignedPart, both(part, adding(PACKAGE, BASE + "digital-signature/origin", "word/evil.xml"))},
        {unsignedPart,
         both(part, both(certificates,
                         adding(ofSignature, BASE + "digital-signature/certificate", "../word/evil.xml")))},
        {unsignedPart, both(part, adding(u"/_xmlsignatures/_rels/origin.sigs.rels",
                                         BASE + "digital-signature/signature", "../word/evil.xml"))},
        {"gap: /_xmlsignatures/origin.sigs evil the relationship isn't signed",
         adding(u"/_xmlsignatures/_rels/origin.sigs.rels", BASE + "digital-signature/signature",
                "//e/s.xml")},
        {"gap: /_xmlsignatures/origin.sigs evil the relationship isn't signed",
         adding(u"/_xmlsignatures/_rels/origin.sigs.rels", BASE + "digital-signature/signature", "none.xml")},
        {"gap: /_xmlsignatures/sig1.xml evil the relationship isn't signed",
         both(certificates, adding(ofSignature, OFFICE + "styles", "../word/styles.xml"))},
        {"gap: / evil the relationship isn't signed, and leads out of the package",
         adding(PACKAGE, BASE + "metadata/thumbnail", "http://e/", " TargetMode='External'")},
        {"gap: / evil the relationship isn't signed",
         adding(PACKAGE, BASE + "metadata/Thumbnail", "docProps/core.xml")},
        {"/_rels/.rels: The Type", adding(PACKAGE, BASE + "metadata/thumbnail ", "docProps/core.xml")},
        {"/_rels/.rels: The Id \" rId1 \"", // some take it for that of the main document
         replacingIn(PACKAGE, "<Relationship ",
                     "<Relationship Id=' rId1 ' Target='docProps/core.xml' Type='" + BASE +
                         "metadata/thumbnail'/><Relationship ")},
        {"/_rels/.rels: A comment in it has markup",
         replacingIn(PACKAGE, "</Relationships>", "<!--<Relationship/>--></Relationships>")},
        {"/_rels/.rels: There is text in it", replacingIn(PACKAGE, "</Relationships>", "x</Relationships>")},
        {"gap: / rId3 more than one relationship leads to an origin",
         adding(PACKAGE, BASE + "digital-signature/origin", "_xmlsignatures/origin.sigs")},
        {"gap: / more than one relationship leads to a main document",
         adding(PACKAGE, "http://purl.oclc.org/ooxml/officeDocument/relationships/officeDocument",
                "word/document.xml")},
        {"gap: / more than one relationship leads to a main document",
         adding(PACKAGE, OFFICE + "officeDocument/", "word/document.xml")},
        {"gap: /word/document.xml rId10 there is another one of its kind", // and what is signed keeps no order
         adding(DOCUMENT, OFFICE + "styles", "other.xml")},
        {"gap: / evil the relationship isn't signed",
         adding(PACKAGE, OFFICE + "custom-properties", "none.xml")},
        {"gap: / evil the relationship isn't signed",
         adding(PACKAGE, BASE + "metadata/thumbnail", "word/document.xml")},
        {"gap: / rId2 the relationship isn't signed",
         adding(PACKAGE, BASE + "metadata/core-properties", "docProps/core.xml")},
        {"A relationship has the attribute Id",
         fromDocument("Id='rId10'", "Id='rId10' xmlns:x='u:x' x:Id='rId2'")},
        {"A relationship has the attribute base", fromDocument("Id='rId10'", "Id='rId10' xml:base='/evil/'")},
        {"A relationship has the attribute TargetMode", fromDocument("'External'", "'external'")},
        {"The root element has an attribute",
         fromDocument("<Relationships", "<Relationships xml:base='/evil/'")},
        {"The element Relationship doesn't belong there",
         fromDocument("Target='styles.xml'/>", "Target='styles.xml'><Relationship Id='evil' Type='u:a' "
                                               "Target='b'/></Relationship>")},
        {"It has changed since it was signed", fromDocument("'styles.xml'", "'st%79les.xml'")},
        {"It has changed since it was signed", fromDocument("'styles.xml'", "'./styles.xml'")},
        {"The Target \"styles.xml\n\"", fromDocument("'styles.xml'", "'styles.xml&#xA;'")},
        {"A character is written as its number", fromDocument("'styles.xml'", "'styles&#x2e;xml'")},
        {"It has changed since it was signed", fromDocument("/image'", "/Image'")},
        {"/word/_rels/document.xml.rels: The document is neither in UTF-8 nor in UTF-16",
         [](SignedSample& it) {
             it.replace(DOCUMENT, "UTF-8", "ISO-8859-1");
             it.replace(DOCUMENT, "\xC3\xA4", "\xE4");
         }},
    };
    expectNoYes(cases);
}

/// What custom leaves unsigned must be what it is said to be, so that it can carry nothing else.
TEST(StandardAttacks, HideInWhatNeedNotBeSigned) {
    const std::string png = "\x89PNG\r\n\x1A\n";
    const std::string thumbnail = BASE + "metadata/thumbnail";
    const std::string core = BASE + "metadata/core-properties";
    const std::string coreType = "application/vnd.openxmlformats-package.core-properties+xml";
    const auto with = [](const std::string& type, const std::string& name, const std::string& contentType,
                         const std::string& content) {
        return both(
            replacingTypes("</Types>",
                           "<Override PartName='" + name + "' ContentType='" + contentType + "'/></Types>"),
            both(addingPart(std::u16string(name.begin(), name.end()), content), adding(PACKAGE, type, name)));
    };
    const auto image = [&](const std::string& name, const std::string& contentType,
                           const std::string& content) {
        return with(thumbnail, name, contentType, content);
    };
    const auto signature = [&](const std::string& name) {
        const auto copy = [=](SignedSample& it) {
            it.store.setPart(std::u16string(name.begin(), name.end()),
                             it.store.partBytes(SignedSample::SIGNATURE));
        };
        return both(
            both(copy, replacingTypes("/_xmlsignatures/sig2.xml", name)),
            adding(u"/_xmlsignatures/_rels/origin.sigs.rels", BASE + "digital-signature/signature", name));
    };
    const std::string form = " its content isn't signed, and hasn't the form of what needn't be";
    const std::string unsignedCore = "gap: /docProps/core.xml its content isn't signed";
    const auto outside = [&](const std::string& target) { return adding(PACKAGE, thumbnail, target); };
    const Case cases[] = {
        {"gap: /mimetype its content isn't signed", image("/mimetype", "image/png", png)},
        {"gap: /content.xml its content isn't signed", with(core, "/content.xml", coreType, "<a/>")},
        {"gap: /META-INF/a.png its content isn't signed", image("/META-INF/a.png", "image/png", png)},
        {"gap: /word/header9.xml its content isn't signed", image("/word/header9.xml", "image/png", png)},
        {"gap: /a.png its content isn't signed", image("/a.png", "image/../text", png)},
        {"gap: /a.svg its content isn't signed", image("/a.svg", "image/svg+xml", "<svg/>")},
        {"gap: /a.png its content isn't signed", image("/a.png", "image/jpeg", "\xFF\xD8\xFF")},
        {"gap: /word/media/1.png its content isn't signed", image("/word/media/1.png", "image/png", png)},
        {"gap: /word/x/core.xml its content isn't signed", with(core, "/word/x/core.xml", coreType, "<a/>")},
        {"gap: /customUI/a.xml its content isn't signed", with(core, "/customUI/a.xml", coreType, "<a/>")},
        {"gap: /AppxManifest.xml its content isn't signed",
         with(core, "/AppxManifest.xml", coreType, "<a/>")},
        {"gap: /a~1.png its content isn't signed", image("/a~1.png", "image/png", png)},
        {"gap: /mimetype its content isn't signed", signature("/mimetype")},
        {"gap: /customUI/customUI.xml its content isn't signed", signature("/customUI/customUI.xml")},
        {"gap: /_xmlsignatures/index.html its content isn't signed", signature("/_xmlsignatures/index.html")},
        {"gap: /a.png" + form, image("/a.png", "image/png", "")},
        {"gap: /a.png" + form, image("/a.png", "image/png", "\x89PNG evil")},
        {"gap: /a.png its content isn't signed", // one of two
         both(image("/a.png", "image/png", png),
              both(addingPart(u"/b.png", png), replacingIn(PACKAGE, "<Relationship ",
                                                           "<Relationship Id='b' Target='/b.png' Type='" +
                                                               thumbnail + "'/><Relationship ")))},
        {unsignedCore, with(core, "/second.xml", coreType, "<a/>")},
        {"gap: /docProps/core.xml" + form, replacingIn(u"/docProps/core.xml", "metadata", "data")},
        {"gap: /docProps/core.xml" + form,
         replacingIn(u"/docProps/core.xml", "core-properties'", "core-properties' a=b")},
        {"gap: /docProps/core.xml" + form, // some programs show it as a page
         replacingIn(u"/docProps/core.xml", "/>", "><FixedPage xmlns='u:page'/></coreProperties>")},
        {"gap: /docProps/core.xml" + form, // without looking at namespaces
         replacingIn(u"/docProps/core.xml", "/>",
                     "><PageContent xmlns='http://purl.org/dc/elements/1.1/'/></coreProperties>")},
        {"gap: /docProps/app.xml its content isn't signed, and says where the links of the document lead",
         with(OFFICE + "extended-properties", "/docProps/app.xml",
              "application/vnd.openxmlformats-officedocument.extended-properties+xml",
              "<Properties xmlns='http://schemas.openxmlformats.org/officeDocument/2006/extended-properties'>"
              "<HyperlinkBase>http://e/</HyperlinkBase></Properties>")},
        {"gap: /docProps/app.xml its content isn't signed, and says where the links of the document lead",
         with(OFFICE + "extended-properties", "/docProps/app.xml",
              "application/vnd.openxmlformats-officedocument.extended-properties+xml",
              "<Properties xmlns='http://schemas.openxmlformats.org/officeDocument/2006/extended-properties'>"
              "<HyperlinksChanged>tr<Pages/>ue</HyperlinksChanged></Properties>")},
        {"gap: /word/signatures/1.xml its content isn't signed", signature("/word/signatures/1.xml")},
        {"gap: /word/x/y/a.psdsxs its content isn't signed", signature("/word/x/y/a.psdsxs")},
        {"gap: /xl/workbook.xml its content isn't signed", signature("/xl/workbook.xml")},
        {"gap: /docProps/word/media/1.png its content isn't signed",
         image("/docProps/word/media/1.png", "image/png", png)},
        {"gap: /_xmlsignatures/origin.sigs" + form, addingPart(u"/_xmlsignatures/origin.sigs")},
        {"gap: /_xmlsignatures/a.cer" + form, // one DER value, and no certificate
         both(both(addingPart(u"/_xmlsignatures/a.cer", "\x30\x81\x80" + std::string(128, 'a')),
                   replacingTypes("</Types>", "<Override PartName='/_xmlsignatures/a.cer' ContentType='"
                                              "application/vnd.openxmlformats-package.digital-signature-"
                                              "certificate'/></Types>")),
              both(addingPart(u"/_xmlsignatures/_rels/sig1.xml.rels", toText(relationships(""))),
                   adding(u"/_xmlsignatures/_rels/sig1.xml.rels", BASE + "digital-signature/certificate",
                          "a.cer")))},
        {"gap: / evil the relationship isn't signed", outside("http://e/x.png")},
        {"gap: / evil the relationship isn't signed", outside("//e/x.png")},
        {"gap: / evil the relationship isn't signed", outside("\\\\e\\x.png")},
        {"gap: / evil the relationship isn't signed", outside("/%5Ce/x.png")},
        {"gap: / evil the relationship isn't signed", outside("file:x.png")},
    };
    expectNoYes(cases);

    SignedSample withProperties;
    SignatureRecipe recipe;
    recipe.changeManifest = [&](std::string& manifest) {
        manifest += withProperties.referenceTo(u"/docProps/core.xml", coreType);
    };
    withProperties.sign(recipe);
    EXPECT_NE(reasonsOf(withProperties.verify()).find("gap: / rId2 the relationship isn't signed"),
              std::string::npos); // whoever signs them signs all

    const struct {
        std::string name, contentType, content;
    } thumbnails[] = {
        {"/docProps/a.png", "image/png", png},
        {"/a.JPG", "image/jpeg", "\xFF\xD8\xFF\xE0"},
        {"/a.gif", "image/gif", "GIF89a"},
        {"/a.bmp", "Image/BMP", "BM"},
        {"/a.tif", "image/tiff", std::string("II*\0", 4)},
        {"/a.emf", "image/x-emf", std::string("\1\0\0\0l", 5)},
        {"/a.wmf", "image/x-wmf", std::string("\1\0\x09\0", 4)},
    };
    for (const auto& [name, contentType, content] : thumbnails) {
        SignedSample sample;
        sample.sign();
        image(name, contentType, content)(sample);
        EXPECT_TRUE(sample.verify().isYes()) << name << reasonsOf(sample.verify());
    }
    for (const char* const name : {"/signature1.xml", "/Security/a.psdsxs", "/a/DigSig/1.xml",
                                   "/package/services/digital-signature/xml-signature/a.psdsxs"}) {
        SignedSample sample;
        sample.sign();
        signature(name)(sample);
        EXPECT_TRUE(sample.verify().isYes()) << name << reasonsOf(sample.verify());
    }
}

const std::string XPS = "http://schemas.microsoft.com/xps/2005/06/fixedrepresentation";

/// The documents of other formats find parts by their names, which some programs read in an odd way.
TEST(StandardAttacks, ShowWhatNeedNotBeSignedByItsName) {
    const auto link = [](const std::string& target) { return "<a b='" + target + "'/>"; };
    const auto wide = [](const std::string& text, bool isBigEndian) {
        std::string bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : text)
            bytes += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
        return bytes;
    };
    const struct {
        std::string content; ///< of the signed document
        bool isYes = false;
        std::string main = XPS; ///< the type of the relationship to it
    } cases[] = {
        {link("/docProps/core.xml")},
        {link("/docProps/core.xml"), true, OFFICE + "officeDocument"},
        {link("/docProps/core.xm"), true},
        {link("/_xmlsignatures/origin.sigs"), true}, // which is empty
        {link("/_xmlsignatures/sig1.xml")},
        {link("../DOCPROPS\\CORE.xml#a")},
        {link("c%6Fre.xml")},
        {link("%63or%65%2e%78%6D%6c")},
        {link("c%256Fre.xml")},
        {link("c&#111;re.xml")},
        {link("c&#x6F;re.xml")},
        {link("c&#111re.xml")},
        {link("c&#x6F;r&#x65;.xml")},
        {link("c&#x00000000000000000000000006F;re.xml")},
        {link("c&#x+6f;re.xml")},
        {link("c&#x 6f;re.xml")},
        {link("c&#x0x6f;re.xml")},
        {link("c&#x10000006f;re.xml")},
        {link("c&#-4294967185;re.xml")},
        {link("c&#37;6Fre.xml")},
        {link("c%&#54;Fre.xml")},
        {link("&%&c&#x6F;re.xml")},
        {link("&#x163;ore.xml"), true},
        {link("c&#x6F;;re.xml"), true},
        {link("%ac%ore.xml"), true},
        {link("co&#9;r\te.xml")},
        {"<a>core.xml</a>"},
        {"<a>c<!-- b -->ore.<?c d?>xml</a>"},
        {"<a><![CDATA[co]]>re<![CDATA[.xml]]></a>"},
        {wide(link("core.xml"), true)},
        {wide(link("c&#x6F;re%2Exml"), false)},
        {"<!DOCTYPE a><a:b c=core.xml"}, // for programs that aren't strict
        {std::string(65532, ' ') + "core.xml"},
        {std::string(65534, ' ') + "%63ore.xml"},
    };
    for (const auto& [content, isYes, main] : cases) {
        SignedSample sample;
        sample.replace(PACKAGE, OFFICE + "officeDocument", main);
        sample.store.setPart(u"/word/document.xml", toBytes(content));
        sample.sign();
        const PackageVerification result = sample.verify();
        EXPECT_EQ(result.isYes(), isYes) << content << reasonsOf(result);
        EXPECT_EQ(reasonsOf(result).find(".xml its content isn't signed") == std::string::npos, isYes)
            << content;
    }
}

/// A document of an office program can be one of another format, too.
TEST(StandardAttacks, BeOfTwoFormats) {
    const auto entering = [](const std::string& type) { return adding(PACKAGE, type, "word/document.xml"); };
    const struct {
        Attack change;
        bool isContent; ///< the part that is named
    } cases[] = {
        {entering("http://schemas.microsoft.com/office/2006/relationships/ui/extensibility"), false},
        {entering(XPS), true},
        {entering("http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel"), true},
        {entering("u:unknown"), true},
        {addingPart(u"/Extension.vsixmanifest"), true},
        {addingPart(u"/a.nuspec"), true},
        {addingPart(u"/AppxManifest.xml"), true},
        {addingPart(u"/word/AppxManifest.xml"), false},
        // some programs take it for an internal one
        {adding(PACKAGE, OFFICE + "theme", "docProps/core.xml", " TargetMode='External'"), true},
        {adding(PACKAGE, OFFICE + "theme", "file:docProps/core.xml", " TargetMode='External'"), false},
        {adding(PACKAGE, OFFICE + "theme", "x:/../docProps/core.xml", " TargetMode='External'"), true},
        {adding(PACKAGE, OFFICE + "theme", "x:/%2e./docProps/core.xml", " TargetMode='External'"), true},
        // some don't cut it
        {adding(PACKAGE, OFFICE + "theme", "?/../docProps/core.xml"), true},
        {adding(PACKAGE, OFFICE + "theme", "word/document.xml#/../../docProps/CORE%2exml"), true},
        {adding(PACKAGE, OFFICE + "theme", "x:/../docProps/core.xml"), true},
        {adding(PACKAGE, OFFICE + "theme", "docProps/%2563ore.xml"), true},
        {adding(PACKAGE, OFFICE + "theme", "word/document.xml#core"), false},
    };
    for (const auto& [change, isContent] : cases) {
        SignedSample sample;
        sample.replace(u"/word/document.xml", "content", "core.xml");
        sample.sign();
        change(sample);
        const std::string reasons = reasonsOf(sample.verify());
        const bool isGap =
            reasons.find("gap: /docProps/core.xml its content isn't signed") != std::string::npos;
        EXPECT_EQ(isGap, isContent) << reasons;
    }
}

/// The signature of another package, or parts of one, and elements that change their places, all without the key.
TEST(StandardAttacks, MoveWhatIsSigned) {
    const auto changing = [](const SignatureRecipe::Change& change) {
        return [change](SignedSample& it) {
            std::string text = toText(it.store.partBytes(SignedSample::SIGNATURE));
            change(text);
            it.store.setPart(SignedSample::SIGNATURE, toBytes(text));
        };
    };
    /// Takes an element out of the signature and puts `wrapped` into it elsewhere, with the element for its @.
    const auto moving = [&](const std::string& from, const std::string& to, const std::string& left,
                            const std::string& place, const std::string& wrapped) {
        return changing([=](std::string& text) {
            const std::size_t begin = text.find(from);
            const std::size_t end = text.find(to, begin) + to.size();
            const std::string element = text.substr(begin, end - begin);
            text.replace(begin, end - begin, left);
            replacing(place, replaced(wrapped, "@", element) + place)(text);
        });
    };
    const std::string object = "<Object Id='idPackageObject'>";
    const std::string objectEnd = "</Manifest></Object>";
    const std::string evilObject = "<Object><Manifest/></Object>";
    const std::string nothing = "The reference #idPackageObject leads to nothing that may be signed";
    const std::string properties = "<xd:SignedProperties Id=";
    const std::string propertiesEnd = "</xd:SignedProperties>";
    const std::string noProperties = "The reference #idSignedProperties leads to nothing that may be signed";
    const auto another = [] {
        SignedSample other;
        other.replace(u"/word/document.xml", "content", "another content");
        other.sign();
        return toText(other.store.partBytes(SignedSample::SIGNATURE));
    }();
    const auto ofAnother = [&](const std::string& from, const std::string& to) {
        const std::size_t begin = another.find(from);
        const std::string taken = another.substr(begin, another.find(to, begin) - begin);
        return changing([=](std::string& text) {
            const std::size_t start = text.find(from);
            text.replace(start, text.find(to, start) - start, taken);
        });
    };
    const Case cases[] = {
        {"/word/document.xml: It has changed since it was signed",
         [&](SignedSample& it) { it.store.setPart(SignedSample::SIGNATURE, toBytes(another)); }},
        {"#idPackageObject: It has changed since it was signed", ofAnother("<Manifest>", "</Manifest>")},
        {"#idPackageObject: It has changed since it was signed", ofAnother("<SignedInfo>", "<KeyInfo>")},
        {"The signature value wasn't made with this key", ofAnother("<SignedInfo>", "<SignatureValue>")},
        {"The signature value wasn't made with this key", ofAnother("<SignatureValue>", "<KeyInfo>")},
        {nothing, moving(object, objectEnd, evilObject, "</KeyInfo>", "@")},
        {nothing, moving(object, objectEnd, evilObject, "</Signature>", "<Object>@</Object>")},
        {nothing,
         moving(object, objectEnd, evilObject, "</Signature>", "<Object><Signature>@</Signature></Object>")},
        {nothing, moving(object, objectEnd, evilObject, "</xd:QualifyingProperties>",
                         "<xd:SignedProperties>@</xd:SignedProperties>")},
        {nothing, changing(replacing("Id='idPackageObject'", "ID='idPackageObject'"))},
        {nothing, changing(replacing("Id='idPackageObject'", "xmlns:x='u:x' x:Id='idPackageObject'"))},
        {"The element Object doesn't belong into Signature",
         changing(replacing(object, "<Object xmlns='u:x' Id='idPackageObject'>"))},
        {"Two elements have the Id idPackageObject",
         changing(replacing("<KeyInfo>", "<KeyInfo Id='idPackageObject'>"))},
        {"The element KeyInfo doesn't belong into Signature",
         moving(object, objectEnd, "", "<KeyInfo>", "@")},
        {"The element SignedInfo doesn't belong into Signature",
         moving("<SignedInfo>", "</SignedInfo>", "<SignedInfo/>", "<KeyInfo>", "@")},
        {noProperties, moving(properties, propertiesEnd, "<xd:SignedProperties/>", "</KeyInfo>",
                              "<a xmlns:xd='http://uri.etsi.org/01903/v1.3.2#'>@</a>")},
        {noProperties,
         moving(properties, propertiesEnd, "<xd:SignedProperties/>", "</xd:QualifyingProperties>",
                "<xd:UnsignedProperties>@</xd:UnsignedProperties>")},
        {noProperties, moving("<xd:QualifyingProperties", "</xd:QualifyingProperties>", "", "</Signature>",
                              "<Object><a>@</a></Object>")},
        {"#idSignedProperties: It has changed since it was signed",
         changing(replacing("</xd:SignedProperties>", "<?a b?></xd:SignedProperties>"))},
        {"#idPackageObject: It has changed since it was signed",
         changing(replacing("<Manifest>", "<Manifest><?a b?>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         changing(replacing("</Signature>", "<Object Id='idValidSigLnImg'>AAAA</Object></Signature>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         changing(replacing("</Signature>", "<Object><Manifest/></Object></Signature>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         changing(replacing("</KeyInfo>", "<a xmlns='u:slide'/></KeyInfo>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         changing(replacing("</KeyInfo>", "<PageContent/></KeyInfo>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         changing(replacing("</xd:QualifyingProperties>",
                            "<xd:UnsignedProperties><a xmlns='u:slide'/></xd:UnsignedProperties>"
                            "</xd:QualifyingProperties>"))},
        {"gap: /_xmlsignatures/sig1.xml it has content that it doesn't sign",
         [](SignedSample& it) { // a piece of the object is signed, and not all of it
             SignatureRecipe recipe;
             recipe.moreObjects = "<Object><SignatureProperties Id='one'/><SignatureProperties/></Object>";
             recipe.alsoSigned = {"one"};
             it.sign(recipe);
         }},
        {"The reference doesn't lead to an element of the signature",
         changing(replacing("'#idPackageObject'", "'#id%50ackageObject'"))},
        {"The document is neither in UTF-8 nor in UTF-16",
         changing(replacing("<?xml version='1.0'?>", "<?xml version='1.0' encoding='UTF-7'?>"))},
        {"problem: It has the content type of a signature",
         [](SignedSample& it) {
             it.replace(u"/_xmlsignatures/_rels/origin.sigs.rels", "digital-signature/signature'",
                        "digital-signature/Signature'");
         }},
    };
    expectNoYes(cases);
}

/// Values that some checks of signatures took for right.
TEST(StandardAttacks, InventSignatureValues) {
    const std::string wrong = "The signature value wasn't made with this key";
    const Identity ofCurve = makeSigner(nullptr, [](CertificateRecipe& recipe) { recipe.rsaBits = 0; });
    const auto bytes = [](std::size_t count, unsigned char value) {
        return std::vector<unsigned char>(count, value);
    };
    const auto lastIsOne = [&](std::vector<unsigned char> value) {
        value.back() = 1;
        return value;
    };
    const struct {
        const Identity* signer;
        std::vector<unsigned char> value;
    } cases[] = {
        {&ofCurve, {}},
        {&ofCurve, bytes(64, 0)},
        {&ofCurve, bytes(64, 0xFF)},
        {&ofCurve, bytes(63, 1)},
        {&ofCurve, bytes(2, 1)},
        {&ofCurve, {0x30, 6, 2, 1, 1, 2, 1, 1}},
        {nullptr, {}},
        {nullptr, lastIsOne(bytes(256, 0))},
        {nullptr, bytes(256, 0)},
        {nullptr, bytes(256, 0xFF)},
        {nullptr, bytes(257, 0)},
    };
    for (const auto& [signer, value] : cases) {
        SignatureRecipe recipe;
        recipe.signer = signer;
        if (signer != nullptr)
            recipe.method = "http://www.w3.org/2001/04/xmldsig-more#ecdsa-sha256";
        recipe.changeAtLast = [&value = value](std::string& text) {
            const std::size_t begin = text.find("<SignatureValue>") + 16;
            text.replace(begin, text.find("</SignatureValue>") - begin, base64(value));
        };
        SignedSample sample;
        sample.sign(recipe);
        VerificationPolicy policy;
        policy.acceptMissingNull = true;
        policy.trust.emplace().roots.addCertificate(
            (signer == nullptr ? SignedSample::usualSigner() : *signer).certificate);
        const PackageVerification result = sample.verify(policy);
        EXPECT_FALSE(result.isYes());
        EXPECT_NE(reasonsOf(result).find(wrong), std::string::npos) << reasonsOf(result);
    }
}

RawItem& itemOf(std::vector<RawItem>& items, const std::string& name) {
    return *std::find_if(items.begin(), items.end(), [&](const RawItem& one) { return one.name == name; });
}

RawArchive archiveOf(const SignedSample& sample) {
    RawArchive archive;
    archive.items = {stored("[Content_Types].xml", toText(sample.store.contentTypes()))};
    for (const std::u16string& name : sample.store.partNames())
        archive.items.push_back(stored(toUDEString(name).substr(1), toText(sample.store.partBytes(name))));
    return archive;
}

/// What is said of an archive, strictly or leniently.
std::string judge(const RawArchive& archive, bool isLenient) {
    const TemporaryFolder folder;
    writeFile(folder / "a.docx", makeArchive(archive));
    physical::ZipOptions options;
    options.lenient = isLenient;
    physical::ZipPackage store(folder / "a.docx", options);
    try {
        store.open(interfaces::OpenMode::ReadOnly);
    } catch (const std::exception& failure) {
        return failure.what();
    }
    const PackageVerification result = verify(store, SignedSample::trusting());
    store.close(true);
    return result.isYes() ? "yes" : reasonsOf(result);
}

/// Archives in which programs find different items.
TEST(StandardAttacks, PlayWithArchives) {
    const std::string document = "word/document.xml";
    const std::string core = "docProps/core.xml"; // isn't signed, by custom
    const std::string otherPath("\x75\x70\x0A\0\1CRC_evil.", 14);
    const RawItem evil = stored(document, "<document>evil</document>");
    const auto naming = [](RawItem item, const std::string& name) {
        item.name = name;
        return item;
    };
    const struct {
        const char* what;
        std::function<void(RawArchive&)> change;
    } cases[] = {
        {"a second item in front", [&](RawArchive& it) { it.items.insert(it.items.begin(), evil); }},
        {"a second item behind", [&](RawArchive& it) { it.items.push_back(evil); }},
        {"the same in another case",
         [&](RawArchive& it) { it.items.push_back(naming(evil, "WORD/Document.xml")); }},
        {"with a slash in front",
         [&](RawArchive& it) { it.items.push_back(naming(evil, "/word/document.xml")); }},
        {"with a backslash", [&](RawArchive& it) { it.items.push_back(naming(evil, "word\\document.xml")); }},
        {"with dots", [&](RawArchive& it) { it.items.push_back(naming(evil, "word/./document.xml")); }},
        {"encoded", [&](RawArchive& it) { it.items.push_back(naming(evil, "word/%64ocument.xml")); }},
        {"with a NUL",
         [&](RawArchive& it) {
             it.items.push_back(naming(evil, std::string("word/document.xml\0.png", 22)));
         }},
        {"in pieces",
         [&](RawArchive& it) { it.items.push_back(naming(evil, "word/document.xml/[0].last.piece")); }},
        {"the content types twice",
         [&](RawArchive& it) {
             it.items.push_back(naming(itemOf(it.items, "[Content_Types].xml"), "[content_types].XML"));
         }},
        {"the content types in pieces",
         [&](RawArchive& it) {
             it.items.push_back(
                 naming(itemOf(it.items, "[Content_Types].xml"), "[Content_Types].xml/[0].last.piece"));
         }},
        {"a renamed item", [&](RawArchive& it) { itemOf(it.items, document).name = "word/%64ocument.xml"; }},
        {"relationships behind backslashes",
         [&](RawArchive& it) {
             itemOf(it.items, "word/_rels/document.xml.rels").name = "word\\_rels\\document.xml.rels";
         }},
        {"relationships in another letter case",
         [&](RawArchive& it) {
             itemOf(it.items, "word/_rels/document.xml.rels").name = "word/_RELS/document.xml.rels";
         }},
        {"relationships in a piece",
         [&](RawArchive& it) { itemOf(it.items, "word/_rels/document.xml.rels").name += "/[0].last.piece"; }},
        {"a part in another letter case",
         [&](RawArchive& it) { itemOf(it.items, "word/styles.xml").name = "word/Styles.xml"; }},
        {"content types in another letter case",
         [&](RawArchive& it) { itemOf(it.items, "[Content_Types].xml").name = "[content_types].xml"; }},
        {"another name in the local header",
         [&](RawArchive& it) {
             itemOf(it.items, "word/styles.xml").changeLocal = [](RawItem& local) {
                 local.name = "word/stylez.xml";
             };
         }},
        {"another size in the local header",
         [&](RawArchive& it) {
             itemOf(it.items, document).changeLocal = [](RawItem& local) { local.size = 3; };
         }},
        {"a wrong checksum", [&](RawArchive& it) { itemOf(it.items, document).crc ^= 1U; }},
        {"said to be encrypted", [&](RawArchive& it) { itemOf(it.items, document).flags |= 1U; }},
        {"an item that the directory hides",
         [&](RawArchive& it) {
             it.items.push_back(evil);
             it.items.back().listed = false;
         }},
        {"a whole archive in front", [&](RawArchive& it) { it.inFront = toText(makeZip({evil})); }},
        {"a whole archive behind", [&](RawArchive& it) { it.behind = toText(makeZip({evil})); }},
        {"a folder with content",
         [&](RawArchive& it) { it.items.push_back(naming(evil, "word/styles.xml/")); }},
        {"a folder below a part",
         [&](RawArchive& it) { it.items.push_back(stored("word/styles.xml/x/", "")); }},
        {"a folder below a part in another letter case",
         [&](RawArchive& it) { it.items.push_back(stored("WORD/Styles.xml/x/y/", "")); }},
        {"a folder below the content types",
         [&](RawArchive& it) { it.items.push_back(stored("[Content_Types].xml/x/", "")); }},
        {"a second name", [&](RawArchive& it) { itemOf(it.items, core).localExtra = otherPath; }},
        {"a link", [&](RawArchive& it) { itemOf(it.items, document).attributes = 0120777U << 16U; }},
        {"a record in the comment", [&](RawArchive& it) { it.comment = "PK\1\2"; }},
        {"another format in front", [&](RawArchive& it) { it.items[0].inFront = "{\\rtf1 evil}"; }},
        {"what saving in place leaves behind",
         [&](RawArchive& it) { it.items.push_back(stored("[trash]/0000.dat", "")); }},
        {"properties that end elsewhere", [&](RawArchive& it) { itemOf(it.items, core).crc ^= 1U; }},
    };
    SignedSample sample;
    sample.sign();
    RawArchive whole = archiveOf(sample);
    EXPECT_EQ(judge(whole, false), "yes");
    for (const auto& [what, change] : cases)
        for (const bool isLenient : {false, true}) {
            RawArchive archive = whole;
            change(archive);
            EXPECT_NE(judge(archive, isLenient), "yes") << what;
        }
}

/// Programs that read fixed pages join the pieces of a part, and others don't find it.
TEST(StandardAttacks, TakeAPartToPieces) {
    const struct {
        std::string main; ///< the type of the relationship to the document
        bool isYes;
        std::string another = {}; ///< of a further one
    } cases[] = {
        {OFFICE + "officeDocument", false},
        {"http://schemas.microsoft.com/visio/2010/relationships/document", false},
        {"u:something", false},
        {"http://schemas.microsoft.com/xps/2005/06/fixedrepresentation", true},
        {"http://schemas.openxps.org/oxps/v1.0/fixedrepresentation", true},
        {XPS, false, OFFICE + "officeDocument"},
        {XPS, false, "http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel"},
        {XPS, true, BASE + "metadata/thumbnail"},
    };
    for (const auto& [main, isYes, another] : cases) {
        SignedSample sample;
        sample.replace(PACKAGE, OFFICE + "officeDocument", main);
        SignatureRecipe recipe;
        if (!another.empty()) {
            adding(PACKAGE, another, "word/document.xml")(sample);
            recipe.changeManifest = [&sample](std::string& manifest) {
                manifest.replace(manifest.find("<Reference URI='/_rels/.rels"),
                                 manifest.find("<Reference URI='/word/_rels") -
                                     manifest.find("<Reference URI='/_rels/.rels"),
                                 sample.referenceTo(PACKAGE, std::vector<std::string>{"rId1", "evil"}));
            };
        }
        sample.sign(recipe);
        RawArchive archive = archiveOf(sample);
        EXPECT_EQ(judge(archive, false), "yes");
        itemOf(archive.items, "word/styles.xml").name += "/[0].last.piece";
        EXPECT_EQ(judge(archive, false) == "yes", isYes) << main;
        itemOf(archive.items, "word/styles.xml/[0].last.piece").name = "word/styles.xml/[0].piece";
        const RawArchive first = archive;
        archive.items.push_back(stored("word/Styles.xml/[1].last.piece", ""));
        EXPECT_NE(judge(archive, false), "yes") << main;
        for (const int count : {10, 11}) { // by their names, 10 stands in front of 2
            archive = first;
            for (int i = 1; i < count; ++i)
                archive.items.push_back(stored("word/styles.xml/[" + std::to_string(i) +
                                                   (i + 1 == count ? "].last.piece" : "].piece"),
                                               ""));
            EXPECT_EQ(judge(archive, false) == "yes", isYes && count == 10) << main;
        }
    }
}

} // namespace
