#include "SignedPackage.hpp"

#include <algorithm>
#include <random>

namespace {

using namespace opc::model;
using namespace opc::test;

/// Changes documents at random, by a fixed series.
class Mutator {
public:
    std::string mutate(std::string text) {
        for (std::size_t times = 1 + pick(2); times > 0 && !text.empty(); --times)
            mutateOnce(text);
        return text;
    }

private:
    std::size_t pick(std::size_t count) { return random() % count; }

    void mutateOnce(std::string& text) {
        const std::size_t place = pick(text.size());
        switch (pick(10)) {
        case 0:
            text[place] = static_cast<char>(text[place] ^ (1 << pick(8)));
            break;
        case 1:
            text[place] = "<>&\"'/= 0\0"[pick(10)];
            break;
        case 2:
            text.resize(place);
            break;
        case 3:
            text.erase(place, pick(100));
            break;
        case 4:
            text.insert(pick(text.size()), text.substr(place, pick(400)));
            break;
        case 5:
            moveElement(text, true);
            break;
        case 6:
            moveElement(text, false);
            break;
        default: // mostly within a value
            text[std::min(text.find_first_of("0123456789+#:", place), text.size() - 1)] =
                static_cast<char>('0' + pick(10));
        }
    }

    /// From a tag to the end of an element with that name: the first such tag after a random place.
    std::pair<std::size_t, std::size_t> pickElement(const std::string& text) {
        const std::size_t begin = text.find('<', pick(text.size()));
        if (begin == std::string::npos)
            return {text.size(), text.size()};
        const std::string name = text.substr(begin + 1, text.find_first_of(" >/", begin + 1) - begin - 1);
        const std::size_t close = text.find("</" + name + ">", begin);
        const std::size_t end = close == std::string::npos ? text.find('>', begin) : close + name.size() + 2;
        return {begin, end == std::string::npos ? text.size() : end + 1};
    }

    /// Copies or moves an element to the next tag after a random place.
    void moveElement(std::string& text, bool takesOut) {
        const auto [begin, end] = pickElement(text);
        const std::string element = text.substr(begin, end - begin);
        if (takesOut)
            text.erase(begin, element.size());
        text.insert(std::min(text.find('<', pick(text.size() + 1)), text.size()), element);
    }

    std::mt19937 random{20};
};

/// How often each result occurred.
struct Ends {
    int held = 0, failed = 0, unchecked = 0, unreadable = 0;
};

class Mutation : public SignedPackage {
protected:
    /// Loads and verifies everything that is found. Results other than the documented ones make the test fail.
    void run(Ends& ends) {
        try {
            package->open(OpenMode::ReadOnly);
            for (const DigitalSignature& signature : manager->getSignatures())
                verifyOne(signature, ends);
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), 102) << e.what();
            ++ends.unreadable;
        }
        package->close(true);
    }

    void verifyOne(const DigitalSignature& signature, Ends& ends) {
        try {
            const auto status = manager->verifySignature(signature, publicKey);
            ++(status.isProperlyCodesigned() ? ends.held : ends.failed);
        } catch (const InvalidSignature& e) {
            EXPECT_NE(e.getErrorCode().value(), 102) << e.what();
            ++ends.unchecked;
        }
    }
};

TEST_F(Mutation, aThousandChangedSignaturePartsEndAsPromised) {
    sign({PartName(u"/a.xml"), PartName(u"/b.xml")}, {byType(u"/", u"urn:main"), byId(u"/a.xml", u"rId1")});
    package->close(false);
    const std::string document = text();
    Mutator mutator;
    Ends ends;
    for (int i = 0; i < 1000; ++i) {
        store.setPart(SIGNATURE, toBytes(mutator.mutate(document)));
        run(ends);
    }
    EXPECT_EQ(ends.held + ends.failed + ends.unchecked + ends.unreadable, 1000);
    EXPECT_GT(ends.failed, 60) << "many are still read";
    EXPECT_GT(ends.unchecked, 20);
    EXPECT_LT(ends.held, 200) << "what holds differs outside of what is signed";
}

} // namespace
