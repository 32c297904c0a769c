#include "support/PackageTest.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/SignatureCoverage.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/scanning/Scanner.hpp>

#include <functional>
#include <future>

namespace {

using namespace opc::model;
using opc::interfaces::OpenMode;
using opc::physical::ZipPackage;

constexpr int THREADS = 4;

/// Runs `work` on four threads that start together, and passes on an exception of any of them.
void onFourThreads(const std::function<void(int thread)>& work) {
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<void>> threads;
    threads.reserve(THREADS);
    for (int thread = 0; thread < THREADS; ++thread)
        threads.push_back(std::async(std::launch::async, [&work, started, thread] {
            started.wait();
            work(thread);
        }));
    start.set_value();
    for (std::future<void>& thread : threads)
        thread.get();
}

TEST(Threads, eachHasPackagesOfItsOwn) {
    const bedrock::crypto::RsaKeyPair keys = bedrock::crypto::generateRsaKeyPair(1024);
    const SignatureParams params(DigestMethod::SHA256, SignatureMethod::RSA1024);
    onFourThreads([&](int thread) {
        for (int round = 0; round < 5; ++round) {
            const std::string content = std::to_string(thread) + " in round " + std::to_string(round);
            ZipPackage archive(ZipPackage::Bytes{});
            {
                Package package(archive);
                DigitalSignatureManager signatures(package);
                package.open(OpenMode::CreateOnly);
                Part part = package.createPart(
                    PartName(u"/a.xml"), ContentType(u"text/xml;charset=\"utf-8\""), StandardPartInfo());
                opc::test::writeAll(part, content);
                part.createExternalRelationship(u"urn:link", u"http://e/\u00E9");
                package.createInternalRelationship(u"urn:main", URI(u"/a.xml"));
                CoreProperties properties;
                properties.setTitle(u"t");
                PackageHelper::createOrUpdateCoreProperties(package, properties);
                package.close(false);
                package.open(OpenMode::ReadWrite);
                signatures.signPackage(keys.getPrivateKey(), params);
                package.close(false);
            }
            Package package(archive);
            DigitalSignatureManager signatures(package);
            package.open(OpenMode::ReadWrite);
            EXPECT_EQ(opc::test::readAll(package.getPart(PartName(u"/A.XML"))), content);
            EXPECT_TRUE(PackageHelper::getCoreProperties(package).getTitle() == std::u16string(u"t"));
            const DigitalSignature signature = *signatures.getSignatures().begin();
            EXPECT_TRUE(signatures.verifySignature(signature, keys.getPublicKey()).isProperlyCodesigned());
            opc::test::writeAll(package.getPart(PartName(u"/a.xml")), "forged");
            EXPECT_FALSE(signatures.verifySignature(signature, keys.getPublicKey()).isProperlyCodesigned());
            EXPECT_THROW(package.getPart(PartName(u"/b.xml")), PartNotFound);
            package.close(true);
        }
    });
}

/// A parser that has read a document moves from thread to thread. One that has failed is destroyed.
TEST(Threads, handParsersOn) {
    onFourThreads([](int) {
        for (int round = 0; round < 50; ++round) {
            opc::physical::MemoryPackage store;
            opc::test::fill(store, {u"/a.xml"});
            store.setPart(u"/_rels/.rels", opc::test::relationships(
                                               "<?any?><Relationship Id='a' Type='urn:t' Target='a.xml'/>"));
            Package package(store);
            package.open(OpenMode::ReadOnly);
            EXPECT_EQ(package.getRelationships().size(), 1U);
            package.close(true);
            store.setPart(u"/_rels/.rels", opc::test::toBytes("<!DOCTYPE a><a/>"));
            EXPECT_THROW(package.open(OpenMode::ReadOnly), InvalidRelationshipContent);
        }
    });
}

TEST(Threads, shareValues) {
    const URI uri(u"http://e:80/a/b?q#f");
    const URI base(u"/a/b.xml");
    const PartName name(u"/a/b.xml");
    const ContentType type(u"text/xml;charset=utf-8");
    onFourThreads([&](int) {
        for (int round = 0; round < 500; ++round) {
            const URI copy = uri;
            const PartName copiedName(base);
            EXPECT_EQ(copy, uri);
            EXPECT_EQ(uri.getScheme() + uri.getAuthority() + uri.getPath(), u"httpe:80/a/b");
            EXPECT_EQ(relativize(base, URI(u"/c")).toString(), u"../c");
            EXPECT_EQ(resolve(uri, URI(u"c")).toString(), u"http://e:80/a/c");
            EXPECT_EQ(copiedName, name);
            EXPECT_FALSE(name < copiedName);
            EXPECT_EQ(PartName(name.getRelationshipPartName()).getSourcePartName(), u"/a/b.xml");
            EXPECT_FALSE(name.isRelationshipName());
            EXPECT_EQ(ContentType(type).toString(), u"text/xml;charset=utf-8");
            EXPECT_EQ(
                AlgorithmURIMap::getDigestMethod(AlgorithmURIMap::getAlgorithmURI(AlgorithmTag::TagSHA1)),
                DigestMethod::SHA1);
        }
    });
}

/// Several scans at once, each with threads of its own, and one that ends early.
TEST(Threads, scanFiles) {
    const std::filesystem::path office = std::filesystem::path(OPCMODEL_TEST_DATA) / "office";
    const std::filesystem::path names[] = {"letter.docx", "table.xlsx", "none", "PROVENANCE.md", "talk.pptx"};
    onFourThreads([&](int thread) {
        opc::scanning::ScanOptions options;
        options.what = opc::scanning::EVERY_ASPECT;
        options.jobs = 3;
        options.window = 8;
        std::size_t taken = 0;
        opc::scanning::Scanner scanner(
            [&] { return opc::scanning::fileSource(office / names[taken++ % std::size(names)]); }, options);
        for (std::size_t given = 0; given < 20U + static_cast<std::size_t>(thread); ++given)
            EXPECT_EQ(scanner.next().value().name, (office / names[given % std::size(names)]).string());
    });
}

/// One error object is thrown, caught, copied and read on four threads at once.
TEST(Threads, shareErrors) {
    const std::function<void()> failures[] = {
        [] { PartName(u"a"); },
        [] { URI(u":"); },
        [] {
            const auto code = make_error_code(boost::system::errc::io_error);
            throw PackageOpenFailed("no", code);
        },
        [] { throw InvalidSignature("no", bedrock::codesigning_verifier::ErrorMap<101>()); },
    };
    for (const auto& fail : failures) {
        std::exception_ptr error;
        std::string message;
        try {
            fail();
        } catch (const std::exception& e) {
            error = std::current_exception();
            message = e.what();
        }
        ASSERT_TRUE(error);
        onFourThreads([&](int) {
            for (int round = 0; round < 50; ++round) {
                try {
                    std::rethrow_exception(error);
                } catch (const opc::Exception& e) {
                    const opc::Exception copy(e);
                    EXPECT_EQ(copy.what(), message);
                    EXPECT_EQ(copy.code(), e.code());
                }
            }
        });
    }
}

} // namespace
