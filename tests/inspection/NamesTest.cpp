#include "subject/Names.hpp"
#include "RawZip.hpp"
#include "RulePairs.hpp"
#include "comparison/NamePattern.hpp"

#include <gtest/gtest.h>

namespace opc::test {
namespace {

/// The rules that names of further items break, infos included.
std::string brokenByNames(const std::vector<std::string>& names, unsigned profiles) {
    std::vector<RawItem> items =
        itemsWith({contentTypesWith(R"(<Default Extension="xml" ContentType="application/xml"/>)")});
    for (const std::string& name : names)
        items.push_back(stored(name, "<a/>"));
    inspection::InspectionOptions options;
    for (const inspection::Rule* rule : inspection::rules())
        if ((rule->profiles & profiles) != 0)
            for (const char* const own : {"M1.1", "M1.3", "M1.6", "M1.7", "M1.8", "M1.9", "M1.10", "M1.11",
                                          "M1.12", "M3.2", "M3.7", "S3.1", "SEC-55", "SEC-56"})
                if (rule->id == own)
                    options.only.emplace_back(own);
    std::string ids;
    for (const std::string& line : findingsOf(makeZip(items), options)) {
        const std::size_t start = line.find(' ') + 1;
        ids += (ids.empty() ? "" : " ") + line.substr(start, line.find(' ', start) - start);
    }
    return ids;
}

TEST(NamePattern, starsStopAtSlashesUnlessThereAreTwo) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"/a/*.png", "/A/b.PNG", true},
        {"/a/*.png", "/a/b/c.png", false},
        {"/a/**.png", "/a/b/c.png", true},
        {"/**", "/a/b", true},
        {"/*", "/a/b", false},
        {"/**/c*", "/a/b/cd", true},
        {"/**/c*", "/c", false},
        {"/a***b", "/a/x/b", true},
        {"/a", "/a/b", false},
        {"*", "", true},
        {"/a b*", "/a%20b.png", true},
        {"/1*", "/1*.xml", true},
    };
    for (const auto& [pattern, name, matches] : cases)
        EXPECT_EQ(inspection::NamePattern(pattern).matches(inspection::keyOfName(name)), matches) << pattern;
}

TEST(Names, breakOneRule) {
    struct {
        std::string name;
        const char* standard;
        const char* security;
    } const cases[] = {
        {"a.xml", "no M1.1, M1.3", "no SEC-55"},
        {"", "M1.1", ""},
        {"a//b.xml", "M1.3", ""},
        {"/a.xml", "M1.3", "SEC-55"},
        {"a b.xml", "M1.6", ""},
        {"a[1].xml", "M1.6", ""},
        {"a%4.xml", "M1.6", ""},
        {"\xC3\xA9.xml", "no M1.6, M3.2", ""}, // letters beyond ASCII are allowed
        {"a\xE9.xml", "M3.2", ""},
        {"a\x1F.xml", "M1.6", ""},
        {"a%2Fb.xml", "M1.7", ""},
        {"a%5cb.xml", "M1.7", ""},
        {"a%2Eb.xml", "M1.8", ""},
        {"a%20b%C3%A9.xml", "no M1.6, M1.7, M1.8", ""},
        {"a.xml%20", "", "SEC-55"},
        {"a./b.xml", "M1.9", ""},
        {"a../.b.xml", "M1.9", ""},
        {".../b.xml", "M1.10", ""},
        {"../b.xml", "M1.10", "SEC-55"},
        {"a\\b.xml", "M3.2", ""},
        {"C:/b.xml", "M3.2 S3.1", "SEC-55"},
        {std::string("a\0.xml", 6), "M3.2", "SEC-55"},
        {"a/con.xml", "S3.1", "SEC-55"},
        {"a/conx.xml", "no S3.1", "no SEC-55"},
        {"a*.xml", "S3.1", ""},
        {"a/" + std::string(254, 'b'), "S3.1", ""},
        {"a/" + std::string(253, 'b'), "no S3.1", ""},
        {"a\xE2\x80\xAExml.exe", "", "SEC-55"},
        {"folder/", "M3.7", ""},
        {"[trash]/a b", "no M1.6", ""},
        {"__MACOSX/._a", "no M1.9, M1.10", ""},
        {"a.xml/[0].piece", "no M1.6", ""},
        {"a[0].piece", "M1.6", ""},
    };
    for (const auto& [name, standard, security] : cases) {
        EXPECT_EQ(brokenByNames({name}, inspection::OPC), noted(standard)) << name;
        EXPECT_EQ(brokenByNames({name}, inspection::SECURITY), noted(security)) << name;
    }
}

TEST(Names, collide) {
    struct {
        std::vector<std::string> names;
        const char* breaks;
    } const cases[] = {
        {{"a.xml", "b.xml"}, "no M1.12"},
        {{"a.xml", "A.XML"}, "M1.12"},
        {{"\xC3\xA9.xml", "%c3%a9.xml"}, "M1.12"},
        {{"a.xml", "a.xml/b.xml"}, "M1.11"},
        {{"a.xml", "a.xml-c/b.xml", "A.xml/b.xml"}, "M1.11"},
        {{"a.xml", "a.xml-c/b.xml"}, "no M1.11"},
        {{"a.xml", "a.xml/[0].piece"}, ""}, // [M2.11]
        {{"a.xml", "a.xml;1"}, "SEC-55 S3.1 SEC-55"},
        {{"a.xml", "__MACOSX/a.xml"}, ""},
        {{"a.xml", "[trash]/../a.xml"}, "SEC-55 SEC-55"},
        {{"e\xCC\x81.xml", "\xC3\x89.xml"}, "SEC-56"},
        {{"\xD0\x96.xml", "\xD0\xB6.xml"}, "SEC-56"},
        {{"\xC3\x9F.xml", "SS.xml"}, "SEC-56"},
        {{"k.xml", "\xE2\x84\xAA.xml"}, "SEC-56"}, // the sign of Kelvin
        {{"\xC3\xA9.xml", "\xC3\xA8.xml"}, "no SEC-56"},
    };
    for (const auto& [names, breaks] : cases)
        EXPECT_EQ(brokenByNames(names, inspection::EVERY_PROFILE), noted(breaks)) << names.back();
}

} // namespace
} // namespace opc::test
