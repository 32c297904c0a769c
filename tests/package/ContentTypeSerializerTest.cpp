#include "contenttypes/ContentTypeSerializer.hpp"
#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypesComposer.hpp"
#include "support/Cases.hpp"
#include "support/Outcome.hpp"
#include "support/PackageContent.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/ContentTypeRules.hpp>
#include <opc/model/XercesGuard.hpp>

namespace {

using namespace opc::model;
using opc::test::Bytes;
using opc::test::forEachCase;

std::string written(const ContentTypeMap& map) {
    Bytes document;
    opc::ByteArrayOutAdaptor stream(document);
    ContentTypeSerializer().write(map, stream);
    return opc::test::toText(document);
}

TEST(ContentTypeSerializer, writesWhatXercesWrites) {
    const XercesGuard guard;
    ContentTypeMap map;
    const auto expectSame = [&map](bool isPlain) {
        std::string document;
        EXPECT_EQ(composePlainContentTypes(map, document), isPlain);
        EXPECT_EQ(written(map), ContentTypeSerializer::serialize(map));
    };
    expectSame(true); // a root without children
    map.addDefault(u"unused", ContentType(u"a/b"));
    expectSame(true);
    map.addDefault(u"it's", ContentType(u"a/b;p=\"<&>'\\ \""));
    map.addReference(u"it's");
    expectSame(true);
    map.addOverride(PartName(u"/a&b'c.xml"), ContentType(u"text/plain;charset=utf-8"));
    map.addOverride(PartName(u"/A/%C3%A9.xml"), ContentType(u"x/y;a=\"1 2\";b=3"));
    expectSame(true);
    for (int i = 0; i < 2000; ++i) // more than one block
        map.addOverride(PartName(opc::toString("/part" + std::to_string(i), true)), ContentType(u"a/b"));
    expectSame(true);
}

TEST(ContentTypeSerializer, refusesWhatTheRulesRefuse) {
    const XercesGuard guard;
    ContentTypeRules rules;
    const auto compare = [&rules](std::u16string_view extension, std::u16string_view name,
                                  std::u16string_view type) {
        std::string entry = name.empty() ? "<Default" : "<Override";
        const auto add = [&entry](const char* attribute, std::u16string_view value) {
            entry.append(" ").append(attribute).append("='");
            for (const char16_t unit : value)
                entry.append("&#" + std::to_string(static_cast<unsigned>(unit)) + ";");
            entry += "'";
        };
        name.empty() ? add("Extension", extension) : add("PartName", name);
        add("ContentType", type);
        const Bytes document = opc::test::contentTypes(entry + "/>");
        ContentTypeMap map;
        const std::string refusal = opc::test::outcomeOf([&] {
            opc::ByteArrayInAdaptor input(document);
            ContentTypeSerializer().read(map, input);
        });
        const std::string defect = rules.findDefectOfContentType(type) +
                                   (name.empty() ? ContentTypeRules::findDefectOfExtension(extension)
                                                 : ContentTypeRules::findDefectOfPartName(name));
        EXPECT_EQ(defect.empty(), refusal.empty()) << entry << "\n" << refusal << "\n" << defect;
        if (refusal.empty() && !name.empty()) {
            EXPECT_EQ(map.getOverrides().count(PartName(ContentTypeRules::readPartName(name))), 1U) << entry;
        }
    };
    forEachCase("content-types/attribute-values.txt", [&](const std::u16string& value) {
        compare(value, u"", u"a/b");
        compare(u"png", u"", value);
        compare(u"", value.empty() ? u" " : value, u"a/b");
        compare(u"", u"/a.xml", value);
    });
    for (char16_t unit = 0x20; unit < 0x100; ++unit) {
        const std::u16string around = {u'/', u'a', unit, u'b'};
        compare(std::u16string_view(around).substr(1), u"", u"a" + around);
        compare(u"", around, u"a/b;c=\"" + around + u"\"");
    }
    const std::u16string longest(1U << 20, u'/');
    for (const std::string& defect : {ContentTypeRules::findDefectOfExtension(longest),
                                      ContentTypeRules::findDefectOfPartName(longest + u'a'),
                                      rules.findDefectOfContentType(longest + u'a')})
        EXPECT_NE(defect, "");
}

} // namespace
