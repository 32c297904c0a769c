#include "package/ContentTypeSerializer.hpp"
#include "package/ContentTypeMap.hpp"
#include "package/ContentTypesWriter.hpp"
#include "support/PackageContent.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/XercesGuard.hpp>

#include <gtest/gtest.h>

namespace {

using namespace opc::model;
using opc::test::Bytes;

using Write = void (ContentTypeSerializer::*)(const ContentTypeMap&, opc::OutputStream&) const;

std::string written(const ContentTypeMap& map, Write write) {
    Bytes document;
    opc::ByteArrayOutAdaptor stream(document);
    (ContentTypeSerializer().*write)(map, stream);
    return opc::test::toText(document);
}

TEST(ContentTypeSerializer, writesWhatXercesWrites) {
    const XercesGuard guard;
    ContentTypeMap map;
    const auto expectSame = [&map](bool isPlain) {
        std::string document;
        EXPECT_EQ(composePlainContentTypes(map, document), isPlain);
        EXPECT_EQ(written(map, &ContentTypeSerializer::write),
                  written(map, &ContentTypeSerializer::writeByXerces));
    };
    expectSame(false); // a root without children
    map.addDefault(u"unused", ContentType(u"a/b"));
    expectSame(false);
    map.addDefault(u"it's", ContentType(u"a/b;p=\"<&>'\\ \""));
    map.addReference(u"it's");
    expectSame(true);
    map.addOverride(PartName(u"/a&b'c.xml"), ContentType(u"text/plain;charset=utf-8"));
    map.addOverride(PartName(u"/A/%C3%A9.xml"), ContentType(u"x/y;a=\"1 2\";b=3"));
    expectSame(true);
    for (int i = 0; i < 2000; ++i) // more than is handed on at once
        map.addOverride(PartName(opc::toString("/part" + std::to_string(i), true)), ContentType(u"a/b"));
    expectSame(true);
}

} // namespace
