#include "contenttypes/ContentTypeSource.hpp"
#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypeSerializer.hpp"
#include "support/PackageTest.hpp"
#include "support/Texts.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>

#include <sstream>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n"
                         "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">";

const std::string EMPTY = HEAD.substr(0, HEAD.size() - 1) + "/>\n";

class ContentTypesStream : public PackageTest {
protected:
    void create(const char16_t* name, const char16_t* type) {
        package.createPart(PartName(name), ContentType(type), StandardPartInfo());
    }

    /// Closes the package and returns the entries of the stream, without the white space of pretty printing.
    std::string written() {
        package.close(false);
        const std::string text = toText(store.contentTypes());
        EXPECT_EQ(text.substr(0, HEAD.size()), HEAD);
        std::string entries;
        std::istringstream lines(text.substr(std::min(HEAD.size(), text.size())));
        for (std::string line; std::getline(lines >> std::ws, line);)
            entries += line;
        return entries;
    }
};

TEST_F(ContentTypesStream, holdsTheRootAloneForAPackageWithoutParts) {
    package.open(OpenMode::CreateOnly);
    package.close(false);
    EXPECT_EQ(toText(store.contentTypes()), EMPTY);
}

TEST_F(ContentTypesStream, theFirstPartOfAnExtensionSetsItsDefault) {
    package.open(OpenMode::CreateOnly);
    create(u"/b.PNG", u"image/png");
    create(u"/c.png", u"image/x-other");
    create(u"/a.png", u"image/png");
    create(u"/noext", u"text/plain;b=2; a=1");
    create(u"/d.png", u"IMAGE/png"); // equal, but not the same text
    EXPECT_EQ(written(), R"(<Default ContentType="image/png" Extension="png"/>)"
                         R"(<Override ContentType="image/x-other" PartName="/c.png"/>)"
                         R"(<Override ContentType="IMAGE/png" PartName="/d.png"/>)"
                         R"(<Override ContentType="text/plain;a=1;b=2" PartName="/noext"/></Types>)");
}

TEST_F(ContentTypesStream, aPartThatIsRetypedGetsAnOverride) {
    package.open(OpenMode::CreateOnly);
    const auto retype = [this](const char16_t* name, const char16_t* type) {
        package.setContentType(PartName(name), ContentType(type));
    };
    create(u"/a.png", u"image/png");
    create(u"/b.png", u"image/png");
    create(u"/c.gif", u"image/gif");
    const Part part = package.getPart(PartName(u"/a.png"));
    EXPECT_RAISES(PartNotFound, "No part found with the name:/d", retype(u"/d", u"t/d"));
    retype(u"/A.PNG", u"t/1");
    retype(u"/c.gif", u"t/2");
    retype(u"/b.png", u"t/3");
    EXPECT_EQ(part.getContentType().toString(), u"t/1");
    EXPECT_EQ(written(), R"(<Override ContentType="t/1" PartName="/a.png"/>)"
                         R"(<Override ContentType="t/3" PartName="/b.png"/>)"
                         R"(<Override ContentType="t/2" PartName="/c.gif"/></Types>)");
    EXPECT_EQ(physical.countCalls("getOutputStream /"), 0U) << "no content is touched";

    store.setContentTypes(contentTypes(USUAL_CONTENT_TYPES +
                                       R"(<Override PartName="/a.png" ContentType="application/png"/>)"
                                       R"(<Override PartName="/b.png" ContentType="t/3"/>)"
                                       R"(<Default Extension="png" ContentType="application/png"/>)"
                                       R"(<Default Extension="gif" ContentType="image/gif"/>)"));
    package.open(OpenMode::ReadWrite);
    retype(u"/b.png", u"application/png");
    retype(u"/a.png", u"t/4");
    EXPECT_EQ(written(), R"(<Default ContentType="image/gif" Extension="gif"/>)"
                         R"(<Default ContentType="application/png" Extension="png"/>)"
                         R"(<Override ContentType="t/4" PartName="/a.png"/></Types>)");
}

TEST_F(ContentTypesStream, aDefaultGoesWithItsLastPart) {
    package.open(OpenMode::CreateOnly);
    create(u"/a.png", u"image/png");
    create(u"/b.png", u"image/x-other");
    create(u"/c.png", u"image/png");
    package.close(false);

    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/a.png"));
    package.deletePart(PartName(u"/c.png"));
    EXPECT_EQ(written(), R"(<Override ContentType="image/x-other" PartName="/b.png"/></Types>)");

    package.open(OpenMode::ReadWrite);
    create(u"/d.png", u"image/new");
    EXPECT_EQ(written(), R"(<Default ContentType="image/new" Extension="png"/>)"
                         R"(<Override ContentType="image/x-other" PartName="/b.png"/></Types>)");
}

TEST_F(ContentTypesStream, relationshipsPartsKeepTheirDefaultInUse) {
    package.open(OpenMode::CreateOnly);
    create(u"/a", u"a/b");
    package.createExternalRelationship(u"t:t", u"x", u"one");
    package.getPart(PartName(u"/a")).createExternalRelationship(u"t:t", u"x", u"one");
    package.close(false);
    package.open(OpenMode::ReadWrite);
    package.deleteRelationship(u"one");
    EXPECT_NE(written().find(R"(Extension="rels")"), std::string::npos);
    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/a"));
    package.close(false);
    EXPECT_EQ(toText(store.contentTypes()), EMPTY);
}

TEST_F(ContentTypesStream, readsEveryEntryWhateverItsOrder) {
    store.setContentTypes(contentTypes(R"(<Override PartName="/a.xml" ContentType="o/1"/>)"
                                       R"(<Default Extension="XML" ContentType="d/1"/>)"
                                       R"(<Default Extension="xml" ContentType="d/2"/>)"
                                       R"(<Override PartName="/A.XML" ContentType="o/2"/>)"
                                       R"(<Default Extension="unused" ContentType="d/3"/>)"));
    store.setPart(u"/a.xml", {});
    store.setPart(u"/b.Xml", {});
    const auto before = store.contentTypes();
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(package.getPart(PartName(u"/a.xml")).getContentType().toString(), u"o/1") << "an Override wins";
    EXPECT_EQ(package.getPart(PartName(u"/b.xml")).getContentType().toString(), u"d/1")
        << "the first one counts";
    package.close(false);
    EXPECT_EQ(store.contentTypes(), before) << "nothing has changed, so nothing is written";

    package.open(OpenMode::ReadWrite);
    create(u"/c", u"a/b");
    EXPECT_EQ(written(), R"(<Default ContentType="d/1" Extension="xml"/>)"
                         R"(<Override ContentType="o/1" PartName="/a.xml"/>)"
                         R"(<Override ContentType="a/b" PartName="/c"/></Types>)");
}

TEST_F(ContentTypesStream, extensionsThatTheSchemaRefusesGetAnOverride) {
    std::vector<std::u16string> extensions = {u"", u"%", u"%4", u"%4g", u"%20a", u"a%2F", u"%%20"};
    for (char16_t letter = u'!'; letter <= u'~'; ++letter)
        extensions.push_back(std::u16string(u"x") + letter + u'y');
    const ContentTypeSerializer serializer;
    for (const std::u16string& extension : extensions) {
        ContentTypeMap written;
        ContentTypeMap read;
        written.addDefault(extension, ContentType(u"a/b"));
        written.addReference(extension);
        const Bytes document = toBytes(ContentTypeSerializer::serialize(written));
        opc::ByteArrayInAdaptor input(document);
        EXPECT_EQ(ContentTypeSource::canHaveDefault(extension),
                  outcomeOf([&] { serializer.parse(read, input); }).empty())
            << opc::toUDEString(extension);
    }

    package.open(OpenMode::CreateOnly);
    create(u"/a.x;y", u"a/b");
    EXPECT_EQ(written(), R"(<Override ContentType="a/b" PartName="/a.x;y"/></Types>)");
    package.open(OpenMode::ReadWrite);
    package.deletePart(PartName(u"/a.x;y"));
    package.close(false);
    EXPECT_EQ(toText(store.contentTypes()), EMPTY);
}

TEST_F(ContentTypesStream, unusedDefaultsCountForPartsToComeAndOverridesDoNot) {
    store.setContentTypes(contentTypes(R"(<Default Extension="png" ContentType="image/png"/>)"
                                       R"(<Override PartName="/stale.png" ContentType="image/stale"/>)"));
    package.open(OpenMode::ReadWrite);
    create(u"/a.png", u"image/png");
    create(u"/b.png", u"image/other");
    create(u"/stale.png", u"image/png");
    EXPECT_EQ(written(), R"(<Default ContentType="image/png" Extension="png"/>)"
                         R"(<Override ContentType="image/other" PartName="/b.png"/></Types>)");
}

TEST_F(ContentTypesStream, documentsThatBreakTheFormatAreRefused) {
    const std::string root =
        R"(<x:Types xmlns:x="http://schemas.openxmlformats.org/package/2006/content-types">)";
    store.setContentTypes(toBytes(root + R"(<x:Default Extension="xml" ContentType="a/b"/></x:Types>)"));
    store.setPart(u"/a.xml", {});
    EXPECT_RAISES(ContentTypeNotFound, "No content type was found for part:/a.xml",
                  package.open(OpenMode::ReadOnly))
        << "elements are found by their names without a prefix";

    for (const std::string& text :
         {std::string(), std::string("no xml"), std::string("<Types/>"),
          replaced(toText(contentTypes("")), "UTF-8", "ISO-8859-1"), toText(contentTypes("<Other/>")),
          toText(contentTypes(R"(<Default Extension="" ContentType="a/b"/>)")),
          toText(contentTypes(R"(<Default Extension="xml" ContentType=""/>)"))}) {
        store.setContentTypes(toBytes(text));
        EXPECT_THROW(package.open(OpenMode::ReadOnly), InvalidContentTypeStream) << text;
    }
}

} // namespace
