#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

constexpr auto narrow = &opc::toUDEString;
const char* const NOT_PARSED = "Could not successfully parse content type string";

std::string canonical(const std::u16string& text) {
    return narrow(ContentType(text).toString());
}

TEST(ContentType, canonicalText) {
    for (const std::u16string text :
         {u"text/xml", u"Text/XML", u"!#$%&'*+-.^_|~`/0Zz", u"a/b;c=\"x y\"", u"a/b;c=\" \"",
          u"a/b;c=\";d=1\"", u"a/b;c=\"x\\\""}) // a backslash escapes nothing
        EXPECT_EQ(canonical(text), narrow(text));
    for (const std::u16string row :
         {u"a/b; z=1 ;y=2 | a/b;y=2;z=1", u"a/b   ;   c=1 | a/b;c=1", u"a/b;c=\"xy\" | a/b;c=xy",
          u"a/b;c=\"x\\\";d=\"y\" | a/b;c=\"x\\\";d=y", u"a/b;c=1;C=2 | a/b;c=2",
          u"a/b;C=1;b=0;c=\"2 3\" | a/b;b=0;C=\"2 3\"", u"a/b;b=1;B_=2;A=3 | a/b;A=3;b=1;B_=2"}) {
        const auto [text, expected] = columns<2>(row);
        EXPECT_EQ(canonical(text), narrow(expected));
        EXPECT_EQ(canonical(expected), narrow(expected));
    }
    for (const char16_t separator : std::u16string(u"()<>@,;:\\/[]?={} "))
        EXPECT_EQ(canonical(std::u16string(u"a/b;c=\"") + separator + u"\""),
                  "a/b;c=\"" + narrow(std::u16string(1, separator)) + "\"");
}

TEST(ContentType, refusesWhatTheGrammarDoes) {
    const std::u16string cases[] = {
        // blanks and parts that are missing
        u"", u"text", u"/xml", u"text/", u"/", u" text/xml", u"text/xml ", u"text /xml", u"text/ xml",
        u"a/b/c", u"text/xml;", u"text/xml; ", u"text/xml;;a=1", u"text/xml;a", u"text/xml;a=",
        u"text/xml;=1", u"text/xml;a =1", u"text/xml;a= 1", u"text/xml;a=1 ", u"text/xml;a=1;",
        u"text/xml a=1", u"text/xml;a=b=c",
        // quotes
        u"text/xml;\"a\"=1", u"text/xml;a=\"\"", u"text/xml;a=\"", u"text/xml;a=\"b", u"text/xml;a=b\"",
        u"text/xml;a=\"b\"c", u"text/xml;a=\"b\"\"c\"", u"text/xml;a=\"b\tc\"", u"text/xml;a=\"é\"",
        u"text/xml;a=\"\x7F\"",
        // characters
        u"text/xml;\ta=1", u"text/xml\t;a=1", u"text/xml;a=1\n", u"\u00E9/xml", u"text/\u0100",
        u"text/xml\x7F", u"te\u2044xt/xml", u"text\uFF0Fxml", std::u16string(u"text/xml\0", 9),
        std::u16string(u"a/") + char16_t(0xD800), u"a/\U0001F600", u"a(b)/c", u"a/b, c/d", u"a/b;[=1"};
    for (const std::u16string& text : cases)
        EXPECT_RAISES(InvalidContentType, NOT_PARSED, ContentType{text}) << narrow(text);
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
    for (const std::u16string row : {u"text/xml | = | TEXT/Xml", u"a/b;c=D | = | A/B;C=d",
                                     u"a/b;c=\"d\" | = | a/b ;c=d", u"a/b; z=1 ;y=2 | = | a/b;y=2;z=1",
                                     u"a/b | < | a/b;c=1", u"a/b;c=1 | < | a/b;c=2", u"a/B | < | a/c"}) {
        const auto [leftText, sign, rightText] = columns<3>(row);
        const ContentType left(leftText), right(rightText);
        EXPECT_TRUE((left == right) == (sign == u"=") && (left != right) == (sign != u"=")) << narrow(row);
        EXPECT_TRUE((left < right) == (sign == u"<") && !(right < left)) << narrow(row);
    }
}

TEST(ContentType, addParameter) {
    const auto expectRefusal = [](const std::u16string& name, const std::u16string& value,
                                  const char* message) {
        ContentType type(u"t/s;c=x");
        EXPECT_RAISES(InvalidContentTypeParameter, message, type.addParameter(name, value))
            << narrow(name + u"=" + value);
        EXPECT_EQ(narrow(type.toString()), "t/s;c=x");
        EXPECT_FALSE(type.hasParameter(u"a"));
    };
    for (const std::u16string name :
         {u"", u"a b", u"a\t", u"a\x7F", u"é", u"a\u0120" /* low byte: a blank */, u"\"a\"", u"a=", u"a\\"})
        expectRefusal(name, u"1", "Invalid parameter attribute name");
    expectRefusal(u"", u"", "Invalid parameter attribute name");
    for (const std::u16string value : {u"", u"x\ty", u"\x1F", u"\x7F", u"é"})
        expectRefusal(u"a", value, "Invalid parameter attribute value");
    for (const std::u16string row : {u"a | 1 | t/s;a=1;c=x", u"z | x y | t/s;c=x;z=\"x y\"",
                                     u"C | 2 | t/s;c=2", u"a~ | \" | t/s;a~=\"\"\";c=x"}) {
        const auto [name, value, text] = columns<3>(row);
        ContentType type(u"t/s;c=x");
        type.addParameter(name, value);
        EXPECT_EQ(narrow(type.toString()), narrow(text));
        EXPECT_EQ(type.getParameterValue(name), value);
    }
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
