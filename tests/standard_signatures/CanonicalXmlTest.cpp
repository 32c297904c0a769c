#include "canonical/CanonicalXml.hpp"
#include "canonical/BaseURI.hpp"
#include "reason/Refusal.hpp"
#include "standard_signatures/CanonicalComparison.hpp"
#include "support/EventComparison.hpp"
#include "support/Texts.hpp"
#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>

#include <random>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

/// Documents with everything that the canonical forms treat in a special way.
const std::string HARD[] = {
    "<?p?><!--c--><a xml:lang='en' xml:space='preserve' xmlns='u:d' xmlns:b='u:b' xmlns:c='u:c' "
    "z='&lt;&quot;&#9;' "
    "b:y=\"'>\"><b:e xmlns='' xmlns:c='u:c' c:q='&#13;'>x&#13;y&gt;]]&gt;<f xmlns='u:d' xmlns:b='u:b2'/><?q  "
    "r?>"
    "<!-- \xC3\xA4 --></b:e><![CDATA[<&>]]>\r\n<g xml:lang='de' xml:id='i'><h/></g></a>",
    "<r xmlns:\xC3\xA4='u:1' xmlns:b='u:2' \xC3\xA4:a='1' b:a='2' a='3' \xF0\x90\x80\x80=''/>",
    "<r xmlns:xml='http://www.w3.org/XML/1998/namespace' xml:base='http://h/a/'><s "
    "xml:base='b/c'><t/></s></r>",
    "<r xmlns='u:a'><b xmlns=''><c xmlns='u:a'><d xmlns=''/></c></b></r>",
};

TEST(CanonicalXml, ofHardDocumentsIsThatOfAnotherProgram) {
    for (const std::string& document : HARD) {
        const CanonicalComparison result = compareCanonicalForms(toBytes(document));
        EXPECT_EQ(result.difference, "") << document;
    }
    EXPECT_GT(compareCanonicalForms(toBytes(HARD[0])).subtrees, 4U);
}

TEST(CanonicalXml, sortsByCharactersAndRefusesWhatHasNoForm) {
    const auto canonical = [](const std::string& text, const CanonicalForm& form = {}) {
        const Bytes document = toBytes(text);
        SlowStream stream(document, 4096);
        return canonicalize(XmlTree::read(stream).root(), form);
    };
    const std::string longName = "<r xmlns:a='u:" + std::string(1022, 'x');
    EXPECT_RAISES(Refusal, "The canonical form of an element is too long", // from a document of 250 KB
                  canonical(longName + "'>" + repeated("<a:b/>", 41000) + "</r>",
                            {CanonicalForm::Version::Exclusive, false, {}}));
    for (const std::string use : {"<a:b/></r>", "<b a:c=''/></r>"})
        EXPECT_RAISES(model::InvalidXMLDocument, "A namespace has more than 1024 characters",
                      canonical(longName + "x'>" + use));
    EXPECT_EQ(canonical("<r xmlns:a='u:\xF0\x90\x80\x80' xmlns:b='u:\xEF\xBC\xA1' a:x='1' b:x='2'/>"),
              "<r xmlns:a=\"u:\xF0\x90\x80\x80\" xmlns:b=\"u:\xEF\xBC\xA1\" b:x=\"2\" a:x=\"1\"></r>");
    for (const std::string uri : {"a", "a/b:c", "#x", "?a:b", "//h/p"})
        EXPECT_RAISES(model::InvalidXMLDocument,
                      "A namespace is a relative reference, which has no canonical form",
                      canonical("<r xmlns='" + uri + "'/>"));
}

/// All that is looked at counts, whether or not it stands in the form.
TEST(CanonicalXml, isNoMoreWorkThanItMayBe) {
    using Version = CanonicalForm::Version;
    const struct {
        std::string document; ///< the form is that of its first child element
        std::uint64_t work;
        Version version = Version::Inclusive10;
    } cases[] = {
        {"<r><s/></r>", 2},
        {"<r xmlns:a='u:' a:b='' c=''><s/></r>", 5},
        {"<r xmlns:a='u:' a:b='' c=''><s/></r>", 5, Version::Exclusive},
        {"<r><s a=''><t xmlns:a='u:' xmlns:b='u:'/>text<?i?><!--c--></s><t/></r>", 9},
        {"<r><s>" + std::string(std::size_t{64} * 1000, '.') + "</s></r>", 3 + 1000},
        {"<r xml:base='http://h/'><s xml:base='../a'/></r>", 4 + 9 + 4, Version::Inclusive11},
    };
    for (const auto& one : cases) {
        const Bytes document = toBytes(one.document);
        SlowStream stream(document, 4096);
        const XmlTree tree = XmlTree::read(stream);
        const XmlTreeNode& element = *firstChildElement(tree.root());
        const CanonicalForm form{one.version, false, {}};
        std::uint64_t work = one.work + 1;
        EXPECT_EQ(canonicalize(element, form, work), canonicalize(element, form)) << one.document;
        EXPECT_EQ(work, 1U) << one.document;
        work = one.work;
        EXPECT_RAISES(Refusal, "The signatures of the package need too much digesting",
                      canonicalize(element, form, work));
    }
}

/// A document of few names, so that declarations hide and repeat one another.
class RandomDocument {
public:
    explicit RandomDocument(unsigned seed) : random(seed) {}

    std::string make() { return element(0); }

private:
    std::size_t below(std::size_t bound) { return random() % bound; }

    std::string element(int depth) {
        static const std::string PREFIXES[] = {"", "a:", "b:", "c:"};
        std::string start;
        for (const std::string prefix : {":a", ":b", ":c", ""})
            if (depth == 0 || below(4) == 0)
                start += " xmlns" + prefix + "='" +
                         (prefix.empty() && below(3) == 0
                              ? ""
                              : "u:" + std::to_string(below(2) + 2 * (prefix == ":c"))) +
                         "'";
        const std::string name = PREFIXES[below(4)] + "e";
        if (below(3) == 0)
            start += " a:m='&#x" + std::string(below(2) == 0 ? "A" : "9") + ";\t&amp;'";
        if (below(3) == 0)
            start += " c:m='1' m='>'";
        if (below(5) == 0)
            start += std::string(" xml:lang='") + (below(2) == 0 ? "en'" : "'") + " xml:space='x' xml:a='b'";
        std::string text = "<" + name + start + ">";
        for (std::size_t children = below(5); depth < 6 && children > 0; --children)
            text += below(3) != 0 ? element(depth + 1) : below(2) == 0 ? "<!--x-->&lt;" : "<?i  j?>\r\n]";
        return text + "</" + name + ">";
    }

    std::mt19937 random;
};

TEST(CanonicalXml, ofRandomDocumentsIsThatOfAnotherProgram) {
    std::size_t subtrees = 0;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const std::string document = RandomDocument(seed).make();
        const CanonicalComparison result = compareCanonicalForms(toBytes(document), 100);
        ASSERT_EQ(result.difference, "") << document;
        subtrees += result.subtrees;
    }
    EXPECT_GT(subtrees, 3000U);
}

/// The examples of RFC 3986 section 5.4, and those of Canonical XML 1.1 that keep what leads upward.
TEST(CanonicalXml, joinsBases) {
    const struct {
        std::string base, reference, expected;
    } cases[] = {
        {"http://a/b/c/d;p?q", "g:h", "g:h"},
        {"http://a/b/c/d;p?q", "./g/", "http://a/b/c/g/"},
        {"http://a/b/c/d;p?q", "//g", "http://g"},
        {"http://a/b/c/d;p?q", "?y", "http://a/b/c/d;p?y"},
        {"http://a/b/c/d;p?q", "", "http://a/b/c/d;p?q"},
        {"http://a/b/c/d;p?q", "#s", "http://a/b/c/d;p?q"},
        {"http://a/b/c/d;p?q", "../..", "http://a/"},
        {"http://a/b/c/d;p?q", "../../../g", "http://a/g"},
        {"http://a", "g", "http://a/g"},
        {"abc/", "../", ""},
        {"../abc", "..", "../../"},
        {"a/b", "../../c", "../c"},
        {"/a", "b//c/.", "/b/c/"},
    };
    for (const auto& [base, reference, expected] : cases)
        EXPECT_EQ(joinBase(base, reference), expected) << base << " and " << reference;
}

TEST(XmlTree, refusesWhatIsBeyondItsLimits) {
    const struct {
        std::string document, message;
    } cases[] = {
        {repeated("<a>", 11), "Elements are nested deeper than 10"},
        {"<a>" + std::string(200, ' ') + "</a>", "The document is longer than 200 bytes"},
        {"<a>" + repeated("<b/>", 20) + "</a>", "The document has more than 20 nodes"},
        {"<a xmlns:a='u:a' xmlns:b='u:b' a:c='' b:c='' xmlns:d='u:d' >" + repeated("<b/>", 15) + "</a>",
         "The document has more than 20 nodes"},
        {"<?xml version='1.1'?><a/>", "The document isn't one of XML 1.0"},
        {"<!DOCTYPE a><a/>", "the document has a document type declaration, which isn't allowed"},
    };
    for (const auto& [document, message] : cases) {
        const Bytes bytes = toBytes(document);
        SlowStream stream(bytes, 100);
        EXPECT_RAISES(model::InvalidXMLDocument, message, XmlTree::read(stream, {200, 20, 10}));
    }
}

} // namespace
