#include "content/ContentTypes.hpp"
#include "content/PackageContents.hpp"
#include "names/PartNames.hpp"
#include "standard_signatures/SignedSample.hpp"
#include "support/EventComparison.hpp"
#include "support/RawZip.hpp"
#include "support/TemporaryFolder.hpp"
#include "transform/RelationshipsDocument.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

const std::u16string CONTENT_TYPES = u"[Content_Types].xml";

Bytes bytesOf(const SignedSample& sample, const std::u16string& name) {
    return name == CONTENT_TYPES ? sample.store.contentTypes() : sample.store.partBytes(name);
}

void setBytes(SignedSample& sample, const std::u16string& name, const Bytes& bytes) {
    if (name == CONTENT_TYPES)
        sample.store.setContentTypes(bytes);
    else
        sample.store.setPart(name, bytes);
}

/// What a document says of what is signed. A content type in another letter case is another one here.
std::string meaningOf(const SignedSample& sample, const std::u16string& name, const Bytes& bytes) {
    SlowStream stream(bytes, 4096);
    std::string meaning;
    if (name == CONTENT_TYPES) {
        ContentTypes types = ContentTypes::read(stream);
        for (const std::u16string& part : sample.store.partNames()) {
            const std::string partName = toUDEString(part);
            bool isOwn = false;
            const std::string* const type = types.find(partName, partKeyOf(partName), isOwn);
            if (part.find(u"/word/") == 0 && part.find(u".rels") == std::u16string::npos)
                meaning += (type == nullptr ? "none" : *type) + "\n";
        }
        return meaning;
    }
    for (const RelationshipValues& one : RelationshipsDocument::read(stream).relationships)
        meaning += one.id + " " + one.type + " " + one.target + (one.isExternal ? " external\n" : "\n");
    return meaning;
}

/// How many bytes lie between those that are flipped. The nightly run flips each.
std::size_t stride() {
    return std::getenv("OPCMODEL_EACH_BYTE") == nullptr ? 5 : 1;
}

unsigned char flipped(unsigned char byte, std::size_t place) {
    return static_cast<unsigned char>(byte ^ (1U << place % 7));
}

void sign(interfaces::IPhysicalPackage& store, const Identity& signer) {
    model::Package package(store);
    package.open(interfaces::OpenMode::ReadWrite);
    standard_signatures::sign(
        package, store, {bedrock::crypto::readSigningKey(signer.getPrivateKey()), signer.certificate, {}});
    package.close(false);
}

/// With RSA and ECDSA.
std::vector<Identity> signers() {
    return {SignedSample::usualSigner(),
            makeSigner(nullptr, [](CertificateRecipe& recipe) { recipe.rsaBits = 0; })};
}

/// Whatever byte of a part changes: if the answer is still yes, what is signed still says the same.
TEST(StandardMutation, SaysYesToNoOtherContent) {
    for (const Identity& signer : signers()) {
        const VerificationPolicy policy = SignedSample::trusting(signer);
        PlainSample sample;
        sign(sample.store, signer);
        std::vector<std::u16string> names = sample.store.partNames();
        names.push_back(CONTENT_TYPES);
        std::size_t changes = 0;
        std::size_t yes = 0;
        for (const std::u16string& name : names) {
            const Bytes before = bytesOf(sample, name);
            const bool isLeftOut = name == u"/docProps/core.xml" || name == u"/_xmlsignatures/origin.sigs";
            const bool isSignature = name == SignedSample::SIGNATURE;
            const bool isDocument = name == CONTENT_TYPES || name.find(u".rels") != std::u16string::npos;
            for (std::size_t i = 0; i < before.size() && !isLeftOut; i += stride()) {
                Bytes after = before;
                after[i] = flipped(after[i], i);
                setBytes(sample, name, after);
                ++changes;
                if (!sample.verify(policy).isYes())
                    continue;
                ++yes;
                // The signature's own document can only say yes to the same parts, which haven't changed. The
                // relationships of the package can lose what needn't be signed.
                ASSERT_TRUE(isSignature || isDocument) << toUDEString(name) << " " << i;
                const bool isOfContent =
                    name != u"/_rels/.rels" && name.find(u"sigs") == std::u16string::npos;
                if (isDocument && isOfContent) {
                    ASSERT_EQ(meaningOf(sample, name, after), meaningOf(sample, name, before))
                        << toUDEString(name) << i;
                }
            }
            setBytes(sample, name, before);
        }
        EXPECT_TRUE(sample.verify(policy).isYes());
        EXPECT_LT(yes, changes / 10); // such as those of IDs and comments
    }
}

/// The names and contents of an archive's parts that must be signed, but for relationships.
std::string contentsOf(interfaces::IPhysicalPackage& store) {
    const PackageContents contents(store);
    std::map<std::string, std::string> parts;
    for (const StoredPart& part : contents.parts())
        if (!part.source && part.name.find("/word/") == 0) {
            const auto stream = contents.open(part);
            std::string& content = parts[part.name];
            unsigned char block[4096];
            while (!stream->isDone())
                content.append(block, block + stream->read(block, sizeof block));
        }
    std::string all;
    for (const auto& [name, content] : parts)
        all += name + " " + content + "\n";
    return all;
}

/// The same for each byte of an archive.
TEST(StandardMutation, SaysYesToNoOtherArchive) {
    const TemporaryFolder folder;
    for (const Identity& signer : signers()) {
        const VerificationPolicy policy = SignedSample::trusting(signer);
        const PlainSample sample;
        std::vector<RawItem> items{stored("[Content_Types].xml", toText(sample.store.contentTypes()))};
        for (const std::u16string& name : sample.store.partNames())
            items.push_back(stored(toUDEString(name).substr(1), toText(sample.store.partBytes(name))));
        writeFile(folder / "a.docx", makeZip(items));
        physical::ZipPackage archive(folder / "a.docx");
        sign(archive, signer);
        const Bytes before = readFile(folder / "a.docx");
        /// The contents if the answer is yes.
        const auto contentsOfYes = [&](const Bytes& bytes) -> std::optional<std::string> {
            writeFile(folder / "b.docx", bytes);
            physical::ZipPackage store(folder / "b.docx");
            try {
                store.open(interfaces::OpenMode::ReadOnly);
            } catch (const std::exception&) { // no archive any more
                return std::nullopt;
            }
            std::optional<std::string> contents;
            if (verify(store, policy).isYes())
                contents = contentsOf(store);
            store.close(true);
            return contents;
        };
        const auto right = contentsOfYes(before);
        ASSERT_TRUE(right);
        for (std::size_t i = 0; i < before.size(); i += stride()) {
            Bytes after = before;
            after[i] = flipped(after[i], i);
            const auto contents = contentsOfYes(after);
            ASSERT_EQ(contents.value_or(*right), *right) << i;
        }
    }
}

} // namespace
