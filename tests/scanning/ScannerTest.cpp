#include "PartLookup.hpp"
#include "support/Cases.hpp"
#include "support/PackageTest.hpp"
#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <bedrock/crypto/SigningKey.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/scanning/ResultJSON.hpp>
#include <opc/scanning/Scanner.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <tuple>

namespace {

namespace fs = std::filesystem;
using namespace opc::model;
using namespace opc::scanning;
using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;

const fs::path LETTER = fs::path(OPCMODEL_TEST_DATA) / "office" / "letter.docx";

/// A package with a part that has a link, a target that isn't there, and a title.
ZipPackage::Bytes makePackage(std::size_t links,
                              const std::function<void(Package&, ZipPackage&)>& sign = {}) {
    ZipPackage archive(ZipPackage::Bytes{});
    Package package(archive);
    package.open(OpenMode::CreateOnly);
    Part part = package.createPart(PartName(u"/word/a.xml"), ContentType(u"text/xml"), StandardPartInfo());
    opc::test::writeAll(part, "<a/>");
    package.createInternalRelationship(u"urn:main", URI(u"/word/a.xml"), u"m");
    part.createInternalRelationship(u"urn:gone", URI(u"/word/gone.xml"), u"g");
    for (std::size_t link = 0; link < links; ++link)
        part.createExternalRelationship(u"urn:a/image", u"http://e/\u00C4",
                                        u"e" + opc::toString(std::to_string(link), true));
    CoreProperties properties;
    properties.setTitle(u"\u00C4");
    PackageHelper::createOrUpdateCoreProperties(package, properties);
    package.close(false);
    if (sign) {
        package.open(OpenMode::ReadWrite);
        sign(package, archive);
        package.close(false);
    }
    return archive.bytes();
}

Source bytesSource(std::string name, ZipPackage::Bytes bytes) {
    return {std::move(name), {}, std::make_shared<const ZipPackage::Bytes>(std::move(bytes))};
}

TEST(Scanner, tellsWhatIsAskedFor) {
    ScanOptions options;
    options.what = EVERY_ASPECT;
    const Result result = readFile(bytesSource("x", makePackage(1)), options);
    ASSERT_FALSE(result.failure) << result.failure->message;
    EXPECT_EQ(result.format->name, "opc");
    ASSERT_EQ(result.parts->size(), 2U);
    EXPECT_EQ(result.parts->back().name, "/word/a.xml");
    EXPECT_EQ(result.parts->back().contentType, "text/xml");
    EXPECT_EQ(result.parts->back().size, 4U);
    EXPECT_EQ(result.parts->back().relationships, 2U);
    ASSERT_EQ(result.relationships->size(), 4U);
    EXPECT_EQ(result.relationships->at(0).source, "/");
    EXPECT_TRUE(result.relationships->at(0).exists);
    const ScannedRelationship& external = result.relationships->at(2);
    EXPECT_EQ(external.source, "/word/a.xml");
    EXPECT_EQ(external.id, "e0");
    EXPECT_EQ(external.type, "urn:a/image");
    EXPECT_EQ(external.target, "http://e/\xC3\x84");
    EXPECT_TRUE(external.isExternal);
    const ScannedRelationship& internal = result.relationships->at(3);
    EXPECT_FALSE(internal.isExternal || internal.exists);
    EXPECT_EQ(resolveTarget(internal.source, internal.target), "/word/gone.xml");
    EXPECT_TRUE(result.properties->getTitle() == std::u16string(u"\u00C4"));
    EXPECT_EQ(result.externals->found.at(0).effect, opc::inspection::ExternalEffect::LoadsOnOpen);
    EXPECT_EQ(result.signatures->state, ScannedSignatures::State::Unsigned);
    EXPECT_FALSE(result.findings->findings.empty());

    for (unsigned aspect = FORMAT; aspect < EVERY_ASPECT; aspect *= 2) {
        options.what = aspect;
        const Result one = readFile(bytesSource("x", makePackage(1)), options);
        EXPECT_EQ((one.format ? FORMAT : 0U) | (one.parts ? PARTS : 0U) |
                      (one.relationships ? RELATIONSHIPS : 0U) | (one.properties ? PROPERTIES : 0U) |
                      (one.externals ? EXTERNALS : 0U) | (one.signatures ? SIGNATURES : 0U) |
                      (one.findings ? FINDINGS : 0U),
                  aspect);
    }
}

TEST(Scanner, verifiesBothProfiles) {
    const auto keys = bedrock::crypto::generateRsaKeyPair(2048);
    const auto signOwn = [&](Package& package, ZipPackage&) {
        package.close(true);
        DigitalSignatureManager manager(package);
        package.open(OpenMode::ReadWrite);
        manager.signPackage(keys.getPrivateKey(),
                            SignatureParams(DigestMethod::SHA256, SignatureMethod::RSA2048));
        package.close(false);
        package.open(OpenMode::ReadWrite);
    };
    const auto signStandard = [&](Package& package, ZipPackage& archive) {
        opc::standard_signatures::sign(package, archive,
                                       {bedrock::crypto::readSigningKey(keys.getPrivateKey()), {}, {}});
    };
    ScanOptions options;
    options.what = SIGNATURES;
    const ScanOptions signaturesOnly = options; // trusts nobody
    options.ownPolicy = SignaturePolicy::byPublicKey(keys.getPublicKey());
    using State = ScannedSignatures::State;
    const auto read = [&](ZipPackage::Bytes bytes) {
        return readFile(bytesSource("x", std::move(bytes)), options).signatures.value();
    };
    const ScannedSignatures own = read(makePackage(0, signOwn));
    EXPECT_EQ(own.state, State::Holds);
    EXPECT_EQ(own.own.size(), 1U);
    EXPECT_TRUE(own.ownCoverEverything);
    const ScannedSignatures standard = read(makePackage(0, signStandard));
    EXPECT_EQ(standard.state, State::Unproven); // who signed isn't known
    ASSERT_EQ(standard.standard.signatures.size(), 1U);
    EXPECT_TRUE(standard.standard.signatures[0].coverage.isComplete());

    const auto byNobody =
        readFile(bytesSource("x", makePackage(0, signOwn)), signaturesOnly).signatures.value();
    EXPECT_EQ(byNobody.state, State::Unproven); // nothing has changed

    const auto change = [](Package& package) {
        opc::test::writeAll(package.getPart(PartName(u"/word/a.xml")), "<b/>");
    };
    const auto remove = [](auto&& source) {
        for (const auto& one : source.getRelationships())
            if (one.getType().find(u"digital-signature") != std::u16string::npos)
                source.deleteRelationship(one.getID());
    };
    const auto removeOrigin = [&](Package& package) { remove(package); };
    const auto removeAll = [&](Package& package) {
        remove(package);
        remove(package.getPart(PartName(u"/_xmlsignatures/origin.sigs")));
    };
    const struct {
        bool isStandard;
        std::function<void(Package&)> change;
        State state;
        const char* reason;
    } rows[] = {
        {false, change, State::Broken, "\"holds\":false"},
        {true, change, State::Broken, "was signed"},
        {true, removeOrigin, State::Unproven, "the relationship isn't signed"},
        {true, removeAll, State::Unproven,
         ".xml: It has the content type of a signature, and no relationship leads to it"},
    };
    for (const auto& row : rows) {
        const ScannedSignatures found = read(makePackage(0, [&](Package& package, ZipPackage& archive) {
            row.isStandard ? signStandard(package, archive) : signOwn(package, archive);
            package.close(false);
            package.open(OpenMode::ReadWrite);
            row.change(package);
        }));
        EXPECT_EQ(found.state, row.state);
        const std::string told = toJSON(found);
        EXPECT_NE(told.find(row.reason), std::string::npos) << told;
        EXPECT_EQ(told.find("has no signatures"), std::string::npos) << told;
    }
}

TEST(Scanner, givesFailuresAsResults) {
    const opc::test::TemporaryFolder folder;
    opc::test::writeFile(folder / "pdf", std::string("%PDF-1.4"));
    ScanOptions options;
    options.what = EVERY_ASPECT;
    const struct {
        fs::path path;
        const char* className;
        const char* format;
    } rows[] = {
        {LETTER, nullptr, "docx"},
        {folder / "missing", "PackageNotFound", nullptr},
        {LETTER, nullptr, "docx"},
        {folder.path(), "PackageOpenFailed", nullptr},
        {folder / "pdf", "PackageOpenFailed", "pdf"},
        {LETTER, nullptr, "docx"},
    };
    std::vector<fs::path> paths;
    for (const auto& row : rows)
        paths.push_back(row.path);
    std::size_t at = 0;
    scan(paths, options, [&](const Result& result) {
        const auto& row = rows[at++];
        EXPECT_EQ(result.name, row.path.string());
        EXPECT_EQ(result.failure ? result.failure->className : "", row.className ? row.className : "");
        EXPECT_EQ(result.format ? result.format->name : "", row.format ? row.format : "");
        EXPECT_EQ(result.parts.has_value(), row.className == nullptr);
    });
    EXPECT_EQ(at, std::size(rows));
}

/// Packages without anything odd are read without the lenient view, which signatures need. Both say the same.
void expectSameViews(const Source& source, std::size_t& opened) {
    const unsigned what = PARTS | RELATIONSHIPS | PROPERTIES;
    ScanOptions options;
    options.what = what;
    const std::string quick = toJSON(readFile(source, options), what);
    options.what = what | SIGNATURES;
    EXPECT_EQ(quick, toJSON(readFile(source, options), what)) << source.name;
    opened += quick.find("\"parts\"") != std::string::npos ? 1 : 0;
}

TEST(Scanner, readsPlainPackagesAsOddOnes) {
    std::size_t opened = 0;
    for (const fs::path& folder : {fs::path(OPCMODEL_HOSTILE_ARCHIVES), LETTER.parent_path()})
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            expectSameViews(fileSource(entry.path()), opened);
    const std::string types = opc::test::toText(opc::test::contentTypes(opc::test::USUAL_CONTENT_TYPES));
    const auto check = [&opened](const std::string& contentTypes, const std::string& relationships,
                                 const std::string& part) {
        expectSameViews(bytesSource(contentTypes + relationships,
                                    opc::test::makeZip(
                                        {opc::test::stored("[Content_Types].xml", contentTypes),
                                         opc::test::stored("_rels/.rels", relationships),
                                         opc::test::stored("a.xml", "<a/>"), opc::test::stored(part, "")})),
                        opened);
    };
    for (const auto& one : opc::test::readCases("lenient/relationships.txt", 3)) {
        std::string text = one.columns[0];
        text.erase(std::remove(text.begin(), text.end(), '$'), text.end());
        check(types, text, "b.xml");
    }
    for (const auto& one : opc::test::readCases("lenient/content-types.txt", 3))
        check(one.columns[0], opc::test::toText(opc::test::relationships("")), "b.png");
    EXPECT_GT(opened, 50U);
}

/// The same for what concerns more than one document.
TEST(Scanner, readsPackagesThatAreNearlyPlainAsOddOnes) {
    const std::string core =
        R"(Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties")";
    const std::string properties =
        R"(<coreProperties xmlns="http://schemas.openxmlformats.org/package/2006/metadata/core-properties">)"
        R"(<category>x</category></coreProperties>)";
    struct {
        const char* change;
        std::string types, relationships, name, ofPart, ofPartName = "_rels/a.xml.rels";
    } const rows[] = {
        {"nothing", "", "<Relationship Id='c' " + core + " Target='c.xml'/>", "c.xml",
         "<Relationship Id='b' "
         "Type='t:b' Target='c.xml#x'/><Relationship Id='a' Type='t:a' Target='/_rels/.rels'/>"},
        {"letter case", "<Override PartName='/C.xml' ContentType='a/B'/>",
         "<Relationship Id='c' " + core + " Target='/C.XML'/>", "c.xml",
         "<Relationship Id='b' Type='t:b' Target='C.Xml'/>", "_rels/A.XML.rels"},
        {"twins", "<Default Extension='XML' ContentType='a/b'/>", "", "c.xml", ""},
        {"overrides of relationships",
         "<Override PartName='/_rels/a.xml.rels' "
         "ContentType='application/vnd.openxmlformats-package.relationships+xml'/>",
         "", "c.xml", ""},
        {"another type of relationships", "<Override PartName='/_rels/.rels' ContentType='a/b'/>", "",
         "c.xml", ""},
        {"no type", "", "", "c.png", ""},
        {"an escape", "", "<Relationship Id='c' " + core + " Target='%C3%84.xml'/>", "%C3%84.xml", ""},
        {"no source", "", "", "c.xml", "", "_rels/d.xml.rels"},
        {"no source, deep", "", "", "c.xml", "", "_rels/a/a.xml.rels"},
        {"two sets of properties", "",
         "<Relationship Id='c' " + core + " Target='c.xml'/><Relationship Id='d' " + core +
             " Target='c.xml'/>",
         "c.xml", ""},
        {"properties of a part", "", "", "c.xml", "<Relationship Id='c' " + core + " Target='c.xml'/>"},
        {"properties elsewhere", "",
         "<Relationship Id='c' " + core + " Target='c.xml' TargetMode='External'/>", "c.xml", ""},
        {"no properties there", "", "<Relationship Id='c' " + core + " Target='d.xml'/>", "c.xml", ""},
        {"no properties in them", "", "<Relationship Id='c' " + core + " Target='a.xml'/>", "c.xml", ""},
    };
    std::size_t opened = 0;
    for (const auto& row : rows)
        expectSameViews(
            bytesSource(row.change,
                        opc::test::makeZip(
                            {opc::test::stored("[Content_Types].xml",
                                               opc::test::toText(opc::test::contentTypes(
                                                   opc::test::USUAL_CONTENT_TYPES + row.types))),
                             opc::test::stored("_rels/.rels", opc::test::toText(opc::test::relationships(
                                                                  row.relationships))),
                             opc::test::stored("a.xml", "<a/>"), opc::test::stored(row.name, properties),
                             opc::test::stored(row.ofPartName,
                                               opc::test::toText(opc::test::relationships(row.ofPart)))})),
            opened);
    EXPECT_EQ(opened, std::size(rows));
}

TEST(PartLookup, findsWhatAPlainTargetLeadsTo) {
    const std::vector<ScannedPart> parts{
        {"/_a/b.xml", "", 0, 0}, {"/A.xml", "", 0, 0}, {"/w/a.xml", "", 0, 0}, {"/w/m/i.png", "", 0, 0}};
    const struct {
        const char* source;
        const char* target;
        std::optional<bool> found;
        bool isPart; // by more than plain segments
    } rows[] = {
        {"/", "a.XML", true, true},
        {"/", "/w/a.xml", true, true},
        {"/w/x.xml", "a.xml", true, true},
        {"/w/x.xml", "m/i.png", true, true},
        {"/w/x.xml", "../A.xml", true, true},
        {"/w/m/x.xml", "../../_a/b.xml", true, true},
        {"/w/x.xml", "A.xml/", std::nullopt, false},
        {"/w/x.xml", "b.xml", false, false},
        {"/w/x.xml", "m", false, false},
        {"/", "../a.xml", std::nullopt, true},
        {"/w/x.xml", "/../A.xml", std::nullopt, false},
        {"/w/x.xml", "m/../a.xml", std::nullopt, true},
        {"/", "./a.xml", std::nullopt, true},
        {"/", "w//a.xml", std::nullopt, false},
        {"/", "a.xml#x", std::nullopt, true},
        {"/", "%41.xml", std::nullopt, false},
        {"/", "", std::nullopt, false},
        {"/", "w/..", std::nullopt, false},
        {"/w\xC3\xA4/a", "b.xml", std::nullopt, false},
    };
    PartLookup lookup(parts);
    for (const auto& row : rows) {
        lookup.setSource(row.source);
        EXPECT_EQ(lookup.find(row.target), row.found) << row.source << ' ' << row.target;
        EXPECT_EQ(lookup.leadsToPart(row.target), row.isPart) << row.source << ' ' << row.target;
    }
}

/// With each hostile archive between good files, whatever is asked.
TEST(Scanner, goesOnAfterHostileFiles) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(OPCMODEL_HOSTILE_ARCHIVES)) {
        paths.push_back(entry.path());
        paths.push_back(LETTER);
    }
    ASSERT_GT(paths.size(), 100U);
    ScanOptions options;
    options.what = EVERY_ASPECT;
    options.inspection.profiles = opc::inspection::EVERY_PROFILE;
    std::size_t at = 0, good = 0;
    scan(paths, options, [&](const Result& result) {
        EXPECT_EQ(result.name, paths[at++].string());
        good += result.failure ? 0 : 1;
    });
    EXPECT_EQ(at, paths.size());
    EXPECT_GE(good, paths.size() / 2);
}

/// Files that take long, files with large results and files that fail, in turn.
TEST(Scanner, keepsOrderAndWindow) {
    const std::vector<Source> kinds{bytesSource("", makePackage(1)), bytesSource("", makePackage(4000)),
                                    bytesSource("", {1, 2, 3}), bytesSource("", makePackage(300))};
    for (const unsigned jobs : {1U, 4U})
        for (const std::size_t window : {1U, 3U, 64U}) {
            ScanOptions options;
            options.jobs = jobs;
            options.window = window;
            std::size_t taken = 0, given = 0, ahead = 0;
            const auto next = [&]() -> std::optional<Source> {
                if (taken == 40)
                    return std::nullopt;
                Source source = kinds[taken % kinds.size()];
                source.name = std::to_string(taken++);
                ahead = std::max(ahead, taken - given);
                return source;
            };
            scan(next, options, [&](const Result& result) {
                EXPECT_EQ(result.name, std::to_string(given));
                EXPECT_EQ(result.failure.has_value(), given % kinds.size() == 2);
                ++given;
            });
            EXPECT_EQ(given, 40U);
            EXPECT_LE(ahead, window);
        }
}

TEST(Scanner, passesOnWhatItsSourcesThrowBehindTheirResults) {
    int taken = 0;
    Scanner scanner(
        [&taken]() -> std::optional<Source> {
            if (taken++ == 5)
                throw std::runtime_error("no more");
            return fileSource(LETTER);
        },
        {});
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(scanner.next().value().parts);
    EXPECT_THROW(scanner.next(), std::runtime_error);
    EXPECT_FALSE(scanner.next());
}

/// Whatever its threads do when it is destroyed: read, wait with a large result, or wait for work.
TEST(Scanner, endsEarly) {
    const Source large = bytesSource("large", makePackage(4000));
    for (const int wanted : {0, 1, 3}) {
        ScanOptions options;
        options.jobs = 3;
        Scanner scanner([&] { return large; }, options);
        for (int i = 0; i < wanted; ++i)
            EXPECT_EQ(scanner.next().value().name, "large");
    }
}

TEST(Scanner, tellsWhatAReasonMakesOfASignature) {
    using namespace opc::standard_signatures;
    using Status = CryptographyAnswer::Status;
    const std::tuple<Status, Reason::Code, std::string> cases[] = {
        {Status::Weak, Reason::Code::WeakAlgorithm, "weak: why"},
        {Status::Valid, Reason::Code::NullNotRequired, "accepted: why"},
        {Status::Broken, Reason::Code::NullNotRequired, "accepted: why"},
        {Status::Broken, Reason::Code::MissingNull, "broken: why"},
        {Status::Broken, Reason::Code::WrongSignatureValue, "broken: why"}};
    for (const auto& [status, code, told] : cases) {
        VerifiedSignature signature;
        signature.cryptography.status = status;
        signature.cryptography.reasons.push_back({code, "", "why"});
        EXPECT_EQ(reasonsOf(signature).front(), told);
    }
}

} // namespace
