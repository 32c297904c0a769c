#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>

namespace {

using namespace opc::model;
using opc::test::throws;

std::string narrow(const std::u16string& text) {
    return opc::toUDEString(text);
}

std::string canonical(const std::u16string& text) {
    return narrow(ContentType(text).toString());
}

TEST(ContentType, canonicalText) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"text/xml", "text/xml"},
        {u"Text/XML", "Text/XML"},
        {u"!#$%&'*+-.^_|~`/0Zz", "!#$%&'*+-.^_|~`/0Zz"},
        {u"a/b; z=1 ;y=2", "a/b;y=2;z=1"},
        {u"a/b   ;   c=1", "a/b;c=1"},
        {u"a/b;c=\"x y\"", "a/b;c=\"x y\""},
        {u"a/b;c=\"xy\"", "a/b;c=xy"},
        {u"a/b;c=\" \"", "a/b;c=\" \""},
        {u"a/b;c=\";d=1\"", "a/b;c=\";d=1\""},
        {u"a/b;c=\"x\\\"", "a/b;c=\"x\\\""}, // a backslash escapes nothing
        {u"a/b;c=\"x\\\";d=\"y\"", "a/b;c=\"x\\\";d=y"},
        {u"a/b;c=1;C=2", "a/b;c=2"},
        {u"a/b;C=1;b=0;c=\"2 3\"", "a/b;b=0;C=\"2 3\""},
        {u"a/b;b=1;B_=2;A=3", "a/b;A=3;b=1;B_=2"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(canonical(text), expected);
        EXPECT_EQ(canonical(ContentType(text).toString()), expected);
    }
    for (const char16_t separator : std::u16string(u"()<>@,;:\\/[]?={} "))
        EXPECT_EQ(canonical(std::u16string(u"a/b;c=\"") + separator + u"\""),
                  "a/b;c=\"" + narrow(std::u16string(1, separator)) + "\"");
}

TEST(ContentType, refusesWhatTheGrammarDoes) {
    const std::u16string cases[] = {u"",
                                    u"text",
                                    u"/xml",
                                    u"text/",
                                    u"/",
                                    u" text/xml",
                                    u"text/xml ",
                                    u"text /xml",
                                    u"text/ xml",
                                    u"a/b/c",
                                    u"text/xml;",
                                    u"text/xml; ",
                                    u"text/xml;;a=1",
                                    u"text/xml;a",
                                    u"text/xml;a=",
                                    u"text/xml;=1",
                                    u"text/xml;a =1",
                                    u"text/xml;a= 1",
                                    u"text/xml;a=1 ",
                                    u"text/xml;a=1;",
                                    u"text/xml a=1",
                                    u"text/xml;a=b=c",
                                    u"text/xml;\"a\"=1",
                                    u"text/xml;a=\"\"",
                                    u"text/xml;a=\"",
                                    u"text/xml;a=\"b",
                                    u"text/xml;a=b\"",
                                    u"text/xml;a=\"b\"c",
                                    u"text/xml;a=\"b\"\"c\"",
                                    u"text/xml;a=\"b\tc\"",
                                    u"text/xml;a=\"é\"",
                                    u"text/xml;a=\"\x7F\"",
                                    u"text/xml;\ta=1",
                                    u"text/xml\t;a=1",
                                    u"text/xml;a=1\n",
                                    u"\u00E9/xml",
                                    u"text/\u0100",
                                    u"text/xml\x7F",
                                    u"te\u2044xt/xml",
                                    u"text\uFF0Fxml",
                                    std::u16string(u"text/xml\0", 9),
                                    std::u16string(u"a/") + char16_t(0xD800),
                                    u"a/\U0001F600",
                                    u"a(b)/c",
                                    u"a/b, c/d",
                                    u"a/b;[=1"};
    for (const std::u16string& text : cases)
        EXPECT_TRUE(throws<InvalidContentType>("Could not successfully parse content type string", [&text] {
            ContentType{text};
        })) << narrow(text);
    const char16_t* const none = nullptr;
    EXPECT_TRUE(throws<InvalidContentType>("Could not successfully parse content type string",
                                           [none] { ContentType{none}; }));
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
    EXPECT_TRUE(throws<ContentTypeParameterNotFound>("No parameter exists for the given attribute",
                                                     [&type] { type.getParameterValue(u"char"); }));
}

TEST(ContentType, comparesCanonicalTextsWithoutCase) {
    struct Case {
        const char16_t *left, *right;
        int sign;
    };
    const Case cases[] = {
        {u"text/xml", u"TEXT/Xml", 0},
        {u"a/b;c=D", u"A/B;C=d", 0},
        {u"a/b;c=\"d\"", u"a/b ;c=d", 0},
        {u"a/b; z=1 ;y=2", u"a/b;y=2;z=1", 0},
        {u"a/b", u"a/b;c=1", -1},
        {u"a/b;c=1", u"a/b;c=2", -1},
        {u"a/B", u"a/c", -1},
    };
    for (const Case& c : cases) {
        const ContentType left(c.left);
        const ContentType right(c.right);
        EXPECT_EQ(left == right, c.sign == 0) << narrow(c.left);
        EXPECT_EQ(left != right, c.sign != 0) << narrow(c.left);
        EXPECT_EQ(left < right, c.sign < 0) << narrow(c.left);
        EXPECT_FALSE(right < left) << narrow(c.left);
    }
}

TEST(ContentType, addParameter) {
    const char* const badName = "Invalid parameter attribute name";
    const char* const badValue = "Invalid parameter attribute value";
    struct Case {
        std::u16string name, value;
        const char* message;
        std::string text;
    };
    const Case cases[] = {
        {u"", u"1", badName, ""},
        {u"a b", u"1", badName, ""},
        {u"a\t", u"1", badName, ""},
        {u"a\x7F", u"1", badName, ""},
        {u"é", u"1", badName, ""},
        {u"a\u0120", u"1", badName, ""}, // its low byte is a blank
        {u"\"a\"", u"1", badName, ""},
        {u"a=", u"1", badName, ""},
        {u"a\\", u"1", badName, ""},
        {u"", u"", badName, ""}, // the name's message comes first
        {u"a", u"", badValue, ""},
        {u"a", u"x\ty", badValue, ""},
        {u"a", u"\x1F", badValue, ""},
        {u"a", u"\x7F", badValue, ""},
        {u"a", u"é", badValue, ""},
        {u"a", u"1", nullptr, "t/s;a=1;c=x"},
        {u"z", u"x y", nullptr, "t/s;c=x;z=\"x y\""},
        {u"C", u"2", nullptr, "t/s;c=2"},
        {u"a~", u"\"", nullptr, "t/s;a~=\"\"\";c=x"},
    };
    for (const Case& c : cases) {
        ContentType type(u"t/s;c=x");
        if (c.message == nullptr) {
            type.addParameter(c.name, c.value);
            EXPECT_EQ(narrow(type.toString()), c.text);
            EXPECT_EQ(type.getParameterValue(c.name), c.value);
        } else {
            EXPECT_TRUE(
                throws<InvalidContentTypeParameter>(c.message, [&] { type.addParameter(c.name, c.value); }));
            EXPECT_EQ(narrow(type.toString()), "t/s;c=x");
            EXPECT_FALSE(type.hasParameter(u"a"));
        }
    }
    ContentType quoted(u"t/s");
    quoted.addParameter(u"a", u"x\"y");
    EXPECT_THROW(ContentType{quoted.toString()}, InvalidContentType);
}

TEST(ContentType, removeParameter) {
    ContentType type(u"t/s;a=1;b=2");
    EXPECT_TRUE(throws<ContentTypeParameterNotFound>("No parameter exists for the given attribute",
                                                     [&type] { type.removeParameter(u"c"); }));
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

    std::u16string semicolons(u"a/b");
    std::u16string quotes(u"a/b;c=");
    for (int i = 0; i < times; ++i) {
        semicolons += u" ; ";
        quotes += u"\"";
    }
    for (const std::u16string& text :
         {u"a/b" + blanks, u"a/b;c=\"" + letters, many + u";", semicolons, quotes})
        EXPECT_THROW(ContentType{text}, InvalidContentType);
}

} // namespace
