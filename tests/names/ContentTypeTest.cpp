#include "support/Cases.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::toUDEString;

const char* const NOT_PARSED = "Could not successfully parse content type string";

std::string canonical(const std::u16string& text) {
    return toUDEString(ContentType(text).toString());
}

TEST(ContentType, canonicalText) {
    forEachCase("content-types/canonical.txt", [](const std::u16string& text, const std::string& expected) {
        EXPECT_EQ(canonical(text), expected);
        EXPECT_EQ(canonical(opc::toString(expected, true)), expected);
    });
    for (const char16_t separator : std::u16string(u"()<>@,;:\\/[]?={} "))
        EXPECT_EQ(canonical(std::u16string(u"a/b;c=\"") + separator + u"\""),
                  "a/b;c=\"" + toUDEString(std::u16string(1, separator)) + "\"");
}

TEST(ContentType, refusesWhatTheGrammarDoes) {
    forEachCase("content-types/refused.txt", [](const std::u16string& text) {
        EXPECT_RAISES(InvalidContentType, NOT_PARSED, ContentType{text});
    });
    EXPECT_RAISES(InvalidContentType, NOT_PARSED, ContentType{std::u16string(u"a/") + char16_t(0xD800)});
    const char16_t* const none = nullptr;
    EXPECT_RAISES(InvalidContentType, NOT_PARSED, ContentType{none});
    EXPECT_EQ(ContentType(u"a/b").toString(), u"a/b");
}

TEST(ContentType, keepsPartsAndFindsParametersWithoutCase) {
    const ContentType type(u"Text/XML;Charset=\"utf 8\"");
    EXPECT_EQ(type.getType(), u"Text");
    EXPECT_EQ(type.getSubType(), u"XML");
    for (const char16_t* name : {u"Charset", u"charset", u"CHARSET"}) {
        EXPECT_TRUE(type.hasParameter(name));
        EXPECT_EQ(type.getParameterValue(name), u"utf 8");
    }
    EXPECT_FALSE(type.hasParameter(u"char"));
    EXPECT_RAISES(ContentTypeParameterNotFound, "No parameter exists for the given attribute",
                  type.getParameterValue(u"char"));
}

TEST(ContentType, comparesCanonicalTextsWithoutCase) {
    const auto check = [](const std::u16string& leftText, const std::string& sign,
                          const std::u16string& rightText) {
        const ContentType left(leftText), right(rightText);
        EXPECT_TRUE((left == right) == (sign == "=") && (left != right) == (sign != "="));
        EXPECT_TRUE((left < right) == (sign == "<") && !(right < left));
    };
    forEachCase("content-types/compared.txt", check);
}

TEST(ContentType, addParameter) {
    forEachCase("content-types/parameters-refused.txt",
                [](const std::string& message, const std::u16string& name, const std::u16string& value) {
                    ContentType type(u"t/s;c=x");
                    EXPECT_RAISES(InvalidContentTypeParameter, message, type.addParameter(name, value));
                    EXPECT_EQ(toUDEString(type.toString()), "t/s;c=x");
                    EXPECT_FALSE(type.hasParameter(u"a"));
                });
    forEachCase("content-types/parameters-added.txt",
                [](const std::u16string& name, const std::u16string& value, const std::string& text) {
                    ContentType type(u"t/s;c=x");
                    type.addParameter(name, value);
                    EXPECT_EQ(toUDEString(type.toString()), text);
                    EXPECT_EQ(type.getParameterValue(name), value);
                });
    ContentType quoted(u"t/s");
    quoted.addParameter(u"a", u"x\"y");
    EXPECT_THROW(ContentType{quoted.toString()}, InvalidContentType);
}

TEST(ContentType, removeParameter) {
    ContentType type(u"t/s;a=1;b=2");
    EXPECT_RAISES(ContentTypeParameterNotFound, "No parameter exists for the given attribute",
                  type.removeParameter(u"c"));
    EXPECT_EQ(type.toString(), u"t/s;a=1;b=2");
    type.removeParameter(u"A");
    EXPECT_EQ(type.toString(), u"t/s;b=2");
    type.removeParameter(u"b");
    EXPECT_EQ(type.toString(), u"t/s");
    EXPECT_FALSE(type.hasParameter(u"b"));
}

TEST(ContentType, hostileTextsEndSoon) {
    const int times = 100000;
    std::u16string many(u"a/b");
    for (int i = 0; i < times; ++i)
        many += u" ; p" + opc::toString(std::to_string(i), true) + u"=\"x y\"";
    EXPECT_EQ(ContentType(many).getParameterValue(u"P99999"), u"x y");

    const std::u16string blanks(times, u' ');
    const std::u16string letters(times, u'x');
    EXPECT_EQ(ContentType(u"a/b;c=\"" + blanks + u"\"").getParameterValue(u"c"), blanks);
    EXPECT_EQ(
        ContentType(letters + u"/" + letters + blanks + u";" + blanks + u"c=" + letters).toString().size(),
        3 * letters.size() + 4);

    for (const std::u16string& text : {u"a/b" + blanks, u"a/b;c=\"" + letters, many + u";",
                                       u"a/b" + repeated(u" ; ", times), u"a/b;c=" + repeated(u"\"", times)})
        EXPECT_THROW(ContentType{text}, InvalidContentType);
}

} // namespace
