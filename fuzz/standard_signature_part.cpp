#include "FuzzTarget.hpp"

#include "support/PackageContent.hpp"

#include <opc/physical/MemoryPackage.hpp>
#include <opc/standard_signatures/Verification.hpp>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::standard_signatures;

namespace {

const std::string RELATIONSHIPS =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/";

/// Makes a package whose signature is the input.
void fill(physical::MemoryPackage& store, const test::Bytes& signature) {
    test::fill(store, {u"/a.xml", u"/_xmlsignatures/origin.xml"});
    store.setPart(u"/_rels/.rels",
                  test::relationships(
                      "<Relationship Id='r' Type='urn:main' Target='a.xml'/><Relationship Id='o' Type='" +
                      RELATIONSHIPS + "origin' Target='_xmlsignatures/origin.xml'/>"));
    store.setPart(u"/_xmlsignatures/_rels/origin.xml.rels",
                  test::relationships("<Relationship Id='s' Type='" + RELATIONSHIPS +
                                      "signature' Target='sig1.xml'/>"));
    store.setPart(u"/_xmlsignatures/sig1.xml", signature);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    physical::MemoryPackage store;
    fill(store, test::Bytes(data, data + size));
    store.open(interfaces::OpenMode::ReadOnly);
    VerificationPolicy policy;
    policy.acceptWeak = policy.acceptMissingNull = true;
    const PackageVerification result = verify(store, policy);
    require(!result.isYes(), "nobody is trusted");
    require(result.signatures.size() == 1, "each signature has its answers");
    const CryptographyAnswer& answer = result.signatures[0].cryptography;
    bool isWrong = false;
    for (const CheckedReference& reference : answer.references)
        isWrong = isWrong || reference.wrong.has_value();
    require(answer.status == CryptographyAnswer::Status::Broken ? isWrong || !answer.reasons.empty()
                                                                : !isWrong,
            "a signature is broken for a reason");
    return 0;
}
