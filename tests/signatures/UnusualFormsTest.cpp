#include "Resigning.hpp"
#include "SignatureDocuments.hpp"
#include "SignedPackage.hpp"

namespace {

using namespace opc::model;
using namespace opc::test;

/// Documents that the owner of the key signed, in forms that this library doesn't write.
class UnusualForms : public SignedPackage {
protected:
    static constexpr char16_t PART[] = u"/_xmlsignatures/sig1.xml";

    UnusualForms() {
        signPart(u"/a.xml");
        close(false);
        document = toText(store.partBytes(PART));
    }

    int verifyResigned(const std::string& form) {
        store.setPart(PART, toBytes(Resigning(privateKey).sign(form)));
        open();
        return verify(u"sig1");
    }

    std::string document;
};

TEST_F(UnusualForms, anotherPackageObjectHolds) {
    EXPECT_EQ(verifyResigned(replaced(document, "<Manifest>", R"(<Manifest Id="m">)")), 0);
}

/// The serialiser puts a declaration first, wherever it stands in the document: one of the object's own is taken
/// out like one that reading adds.
TEST_F(UnusualForms, anObjectWithADeclarationOfItsOwnHolds) {
    const std::string declaration =
        R"( xmlns:pds="http://schemas.openxmlformats.org/package/2006/digital-signature")";
    std::string form = replaced(document, declaration, R"( xmlns="http://www.w3.org/2000/09/xmldsig#")");
    form = replaced(form, "<pds:SignatureTime", "<pds:SignatureTime" + declaration);
    EXPECT_EQ(verifyResigned(form), 0);
}

/// An object that lies in another one isn't what was signed, but what it references is read with the rest.
class SecondPackageObject : public UnusualForms {
protected:
    SecondPackageObject() {
        const std::size_t begin = document.find("<Object");
        const std::size_t end = document.find("</Object>") + 9;
        first = document.substr(begin, end - begin);
        store.setPart(u"/b.xml", toBytes("<a>content</a>")); // as /a.xml, and so its digest
        second = R"(<Object Id="other"><any xmlns="urn:any">)" + replaced(first, "/a.xml", "/b.xml") +
                 "</any></Object>";
    }
    std::string first, second;
};

TEST_F(SecondPackageObject, inFrontTakesThePlaceOfTheFirst) {
    store.setPart(PART, toBytes(replaced(document, first, second + first)));
    open();
    EXPECT_EQ(verify(u"sig1"), 101);
}

TEST_F(SecondPackageObject, behindMakesPartsLookSigned) {
    store.setPart(PART, toBytes(replaced(document, first, first + second)));
    open();
    EXPECT_EQ(verify(u"sig1"), 0) << "the signed object is as it was";
    EXPECT_TRUE(manager->isSigned(PartName(u"/b.xml"))) << "though the signer never signed it";
    writeAll(part(u"/b.xml"), "changed");
    EXPECT_EQ(verify(u"sig1"), 101) << "and its digest is compared with the rest";
}

} // namespace
