#include "content/ContentTypes.hpp"
#include "standard_signatures/SignedSample.hpp"
#include "support/EventComparison.hpp"
#include "transform/RelationshipsDocument.hpp"

#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

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
        const ContentTypes types = ContentTypes::read(stream);
        for (const std::u16string& part : sample.store.partNames()) {
            const std::string* const type = types.find(toUDEString(part));
            if (part.find(u"/word/") == 0 && part.find(u".rels") == std::u16string::npos)
                meaning += (type == nullptr ? "none" : *type) + "\n";
        }
        return meaning;
    }
    for (const RelationshipValues& one : RelationshipsDocument::read(stream).relationships)
        meaning += one.id + " " + one.type + " " + one.target + (one.isExternal ? " external\n" : "\n");
    return meaning;
}

/// Whatever byte changes: if the answer is still yes, what is signed still says the same.
TEST(StandardVerification, SaysYesToNoOtherContent) {
    SignedSample sample;
    sample.sign();
    std::vector<std::u16string> names = sample.store.partNames();
    names.push_back(CONTENT_TYPES);
    std::size_t changes = 0;
    std::size_t yes = 0;
    for (const std::u16string& name : names) {
        const Bytes before = bytesOf(sample, name);
        const bool isLeftOut = name == u"/docProps/core.xml" || name == u"/_xmlsignatures/origin.sigs";
        const bool isSignature = name == SignedSample::SIGNATURE;
        const bool isDocument = name == CONTENT_TYPES || name.find(u".rels") != std::u16string::npos;
        for (std::size_t i = 0; i < before.size() && !isLeftOut; ++i) {
            Bytes after = before;
            after[i] = static_cast<unsigned char>(after[i] ^ (1U << i % 7));
            setBytes(sample, name, after);
            ++changes;
            if (!sample.verify().isYes())
                continue;
            ++yes;
            // The signature's own document can only say yes to the same parts, which haven't changed. The relationships
            // of the package can lose what needn't be signed.
            ASSERT_TRUE(isSignature || isDocument) << toUDEString(name) << " " << i;
            const bool isOfContent = name != u"/_rels/.rels" && name.find(u"sigs") == std::u16string::npos;
            if (isDocument && isOfContent) {
                ASSERT_EQ(meaningOf(sample, name, after), meaningOf(sample, name, before))
                    << toUDEString(name) << i;
            }
        }
        setBytes(sample, name, before);
    }
    EXPECT_TRUE(sample.verify().isYes());
    EXPECT_LT(yes, changes / 10); // such as those of IDs and comments
}

} // namespace
