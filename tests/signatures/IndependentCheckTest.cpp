#include "SignedPackage.hpp"
#include "support/ShellCommand.hpp"
#include "support/TemporaryFolder.hpp"

#include <opc/physical/ZipPackage.hpp>

#include <functional>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::physical::ZipPackage;

/// A script that shares nothing with this library examines signed ZIP packages.
class IndependentCheck : public testing::Test {
protected:
    void change(OpenMode mode, const std::function<void(Package&, DigitalSignatureManager&)>& action) {
        ZipPackage archive(folder / "package.zip");
        Package package(archive);
        DigitalSignatureManager manager(package);
        package.open(mode);
        action(package, manager);
        package.close(false);
    }

    static void write(Package& package, const char16_t* name, const std::string& content) {
        const PartName partName(name);
        if (!package.hasPart(partName))
            package.createPart(partName, ContentType(u"text/a;charset=\"utf-8\""), StandardPartInfo());
        writeAll(package.getPart(partName), content);
    }

    ShellOutcome check() {
        writeFile(folder / "key.der", keysOf(2048).getPublicKey());
        return runInShell(folder.path(), "python3 '" INDEPENDENT_CHECK "' package.zip key.der 2>&1");
    }

    TemporaryFolder folder;
};

TEST_F(IndependentCheck, findsWhatWasSigned) {
    change(OpenMode::CreateOnly, [](Package& package, DigitalSignatureManager&) {
        write(package, u"/a.bin", std::string(100000, '\xE9'));
        write(package, u"/b%20c.xml", "");
        write(package, u"/metadata/coreProperties.xml",
              "<p><cp:keywords>k</cp:keywords><dc:title>t</dc:title></p>");
        package.createInternalRelationship(u"urn:a", URI(u"/a.bin"));
        package.createExternalRelationship(u"urn:b", u"http://e/?a=1&b='<\u00E9\u4E2D>", u"rId10");
        Part part = package.getPart(PartName(u"/a.bin"));
        part.createInternalRelationship(u"urn:a", URI(u"b%20c.xml"));
        part.createInternalRelationship(u"urn:a", URI(u"/metadata/coreProperties.xml"));
    });
    change(OpenMode::ReadWrite, [](Package&, DigitalSignatureManager& manager) {
        for (const DigestMethod digest : ALL_DIGESTS)
            manager.signPackage(keysOf(2048).getPrivateKey(),
                                SignatureParams(digest, SignatureMethod::RSA2048));
        manager.countersignAllSignatures(keysOf(2048).getPrivateKey(), SignatureParams());
    });
    std::string expected;
    for (const char* number : {"1", "2", "3", "4", "5", "6"})
        expected += "/_xmlsignatures/sig" + std::string(number) + ".xml: 3 parts, 6 relationships\n";
    expected += "/_xmlsignatures/sigcountersig.xml: 7 parts, 7 relationships\n";
    const auto outcome = check();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, expected);

    change(OpenMode::ReadWrite, [](Package& package, DigitalSignatureManager&) {
        write(package, u"/metadata/coreProperties.xml",
              "<p><cp:keywords>l</cp:keywords><dc:title>t</dc:title></p>");
    });
    EXPECT_EQ(check().output, expected) << "keywords don't count";
    change(OpenMode::ReadWrite,
           [](Package& package, DigitalSignatureManager&) { write(package, u"/b%20c.xml", " "); });
    EXPECT_NE(check().output.find("digest differs: /b%20c.xml?ContentType="), std::string::npos);
}

} // namespace
