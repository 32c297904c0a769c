#include "xml/AttributeValues.hpp"
#include "relationships/RelationshipID.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "relationships/RelationshipTarget.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesGuard.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace opc::model;

/// Holds what is said of values against what becomes of them in a relationships part.
class AttributeValues : public testing::Test {
protected:
    bool comeBack(const std::u16string& id, const std::u16string& target) {
        RelationshipManager written(URI(u"/"));
        RelationshipManager read(URI(u"/"));
        written.addExternalRelationship(id, u"t", target);
        std::vector<unsigned char> document;
        opc::ByteArrayOutAdaptor output(document);
        try {
            serializer.writeByXerces(written, output);
            opc::ByteArrayInAdaptor input(document);
            serializer.parse(input, read);
        } catch (const InvalidPartContent&) {
            return false;
        }
        return read.hasRelationship(id) && read.getRelationship(id).getTarget() == target;
    }

    void compareAsTarget(const std::u16string& value) {
        const bool isAccepted = !value.empty() && isIRITarget(value) && canHoldURI(value, [] {});
        EXPECT_EQ(isAccepted, comeBack(u"a", value)) << opc::toUDEString(value);
    }

    void compareAsID(const std::u16string& value) {
        EXPECT_EQ(isRelationshipID(value), comeBack(value, u"x")) << opc::toUDEString(value);
    }

    const XercesGuard guard;
    RelationshipSerializer serializer;
};

TEST_F(AttributeValues, areHeldIfTheyComeBackFromADocument) {
    const std::u16string alphabet = u"a1:/\\?#@%.-| \t\r\"<&\u00E9\uFFFF\xD800\xDC00";
    const auto compare = [this](const std::u16string& value) {
        compareAsTarget(value);
        compareAsID(value);
    };
    for (const char16_t first : alphabet) {
        compare({first});
        for (const char16_t second : alphabet) {
            compare({first, second});
            for (const char16_t third : alphabet)
                compareAsTarget({first, second, third});
        }
    }
    std::istringstream values(
        "mailto:a@b mailto: http: http:// http://h:port http://h:80 // //- C:\\a dir\\a:b "
        "http://[::1]/ http://[1::x]/ a%20b #a#b a?b?c urn:a:b");
    for (std::string value; values >> value;)
        compareAsTarget(opc::toString(value, true));
    for (const char16_t* value : {u"a  b", u"a b", u"file:///c:/x y", u"http://\u4E2D.com/\U0001F600"})
        compareAsTarget(value);
}

TEST_F(AttributeValues, idsAreHeldLetterByLetter) {
    for (unsigned unit = 1; unit < 0xFFFF; unit += unit < 0x400 ? 1 : 61) {
        const auto letter = static_cast<char16_t>(unit);
        compareAsID({letter});
        compareAsID({u'a', letter, u'b'});
    }
}

} // namespace
