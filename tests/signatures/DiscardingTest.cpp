#include "SignedPackage.hpp"

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string TYPES = "http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/";

class Discarding : public SignedPackage {
protected:
    static std::string relationship(const std::string& id, const std::string& type,
                                    const std::string& target) {
        return "<Relationship Id=\"" + id + "\" Type=\"" + type + "\" Target=\"" + target + "\"/>";
    }

    /// Adds relationships to a stored relationships part.
    void addTo(const char16_t* name, const std::string& elements) {
        store.setPart(name, toBytes(replaced(text(name), "</Relationships>", elements + "</Relationships>")));
    }
};

TEST_F(Discarding, takesWhatHangsOnTheTwoTypesWhateverItIs) {
    constexpr const char16_t* PACKAGE = u"/_rels/.rels";
    constexpr const char16_t* ORIGINS = u"/_xmlsignatures/_rels/origin.sigs.rels";
    const std::string origin = TYPES + "origin";
    const std::string signature = TYPES + "signature";
    const auto content = USUAL_CONTENT_TYPES;
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"as it was made", [] {}},
        {"bad Id",
         [&] { store.setPart(SIGNATURE, toBytes(replaced(text(), "\"Signature1\"", "\"Other\""))); }},
        {"no XML", [&] { store.setPart(SIGNATURE, toBytes("x")); }},
        {"a signed part gone", [&] { store.removePart(u"/b.xml"); }},
        {"dangling origin", [&] { addTo(PACKAGE, relationship("x", origin, "none.sigs")); }},
        {"dangling signature", [&] { addTo(ORIGINS, relationship("x", signature, "/none.xml")); }},
        {"external",
         [&] {
             addTo(PACKAGE,
                   replaced(relationship("x", origin, "http://e/"), "/>", " TargetMode=\"External\"/>"));
             addTo(ORIGINS,
                   replaced(relationship("x", signature, "http://e/"), "/>", " TargetMode=\"External\"/>"));
         }},
        {"other name and content type",
         [&] {
             store.setPart(u"/odd/x.xml", toBytes(text()));
             addTo(ORIGINS, relationship("x", signature, "/odd/x.xml"));
         }},
        {"the document", [&] { addTo(ORIGINS, relationship("x", signature, "/a.xml")); }},
        {"the document as origin",
         [&] {
             addTo(PACKAGE, relationship("x", origin, "a.xml"));
             addTo(u"/_rels/a.xml.rels", relationship("x", signature, "/_xmlsignatures/sig1.xml"));
         }},
        {"two origins",
         [&] {
             store.setPart(u"/odd/second.xml", {});
             addTo(PACKAGE, relationship("x", origin, "odd/second.xml"));
         }},
        {"one with an own relationship to it",
         [&] { addTo(PACKAGE, relationship("x", "urn:other", "_xmlsignatures/sig1.xml")); }},
    };
    for (const auto& [name, change] : cases) {
        SCOPED_TRACE(name);
        signAll();
        close(false);
        const bool isGone = std::string(name) == "a signed part gone";
        const Bytes relationshipsOfDocument = store.partBytes(u"/_rels/a.xml.rels");
        const Bytes relationshipsOfPackage = store.partBytes(PACKAGE);
        change();
        open();
        manager->discardSignatures();
        EXPECT_EQ(signPart(u"/a.xml").getName(), u"sig1");
        manager->removeAllSignatures();
        close(false);
        for (const std::u16string& part : store.partNames())
            EXPECT_TRUE(part.find(u"sig") == part.npos && part.find(u"odd") == part.npos)
                << std::string(part.begin(), part.end());
        EXPECT_EQ(text(PACKAGE).find("digitalsignature"), std::string::npos);
        EXPECT_EQ(text(u"/_rels/a.xml.rels").find("digitalsignature"), std::string::npos);
        EXPECT_EQ(text(u"/a.xml"), "<a>content</a>");
        EXPECT_EQ(store.hasPart(u"/b.xml"), !isGone);
        store.setPart(u"/b.xml", {});
        store.setPart(
            PACKAGE,
            toBytes(replaced(toText(relationshipsOfPackage),
                             piece(toText(relationshipsOfPackage), "<Relationship Id=\"rId3\"", "/>") + "/>",
                             "")));
        store.setPart(u"/_rels/a.xml.rels", relationshipsOfDocument);
        open();
    }
}

TEST_F(Discarding, leavesSignaturesOfAnotherForm) {
    const std::string foreign =
        "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/";
    signAll();
    close(false);
    addTo(u"/_rels/.rels", relationship("foreign", foreign + "origin", "_xmlsignatures/origin.sigs"));
    open();
    manager->discardSignatures();
    EXPECT_TRUE(package->hasPart(PartName(ORIGIN)));
    EXPECT_FALSE(package->hasPart(PartName(SIGNATURE)));
    EXPECT_TRUE(package->hasRelationship(u"foreign"));
    reopen(opc::interfaces::OpenMode::ReadOnly);
    EXPECT_RAISES(PackageReadOnly, "Package is read-only", manager->discardSignatures());
}

} // namespace
