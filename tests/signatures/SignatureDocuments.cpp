#include "signatures/SignatureDocuments.hpp"

#include "support/Cases.hpp"
#include "support/OpenSslCommand.hpp"
#include "support/PackageContent.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>

#include <map>

namespace opc::test {

const std::string USUAL_SIGNATURE = readCase("signatures/usual.txt");
const std::string WRITTEN_SIGNATURE = readCase("signatures/written.txt");

std::string withKeyInfo(const std::string& document, const std::string& content) {
    return inserted(document, "</SignatureValue>", "<KeyInfo>" + content + "</KeyInfo>");
}

std::string unknownToSchema(const std::string& document) {
    const std::string root = R"(<Signature Id="Signature7" xmlns="http://www.w3.org/2000/09/xmldsig#">)";
    const std::string content = replaced(replaced(document, root, ""), "</Signature>", "");
    return R"(<Object Id="Signature7" xmlns="http://www.w3.org/2000/09/xmldsig#"><any xmlns="urn:any">)" +
           content + "</any></Object>";
}

std::string certificate(const std::string& key) {
    static std::map<std::string, std::string> made;
    std::string& text = made[key];
    if (text.empty()) {
        const OpenSslCommand openssl;
        openssl.run("req -x509 -nodes -subj /CN=Test -keyout key -outform DER -out certificate -newkey " +
                    key);
        text = toASCIIString(bedrock::crypto::utils::base64Encode(openssl.read("certificate")));
    }
    return text;
}

model::DigitalSignatureData& SignatureDocument::read(const std::string& document) {
    const Bytes bytes = toBytes(document);
    ByteArrayInAdaptor stream(bytes);
    data = std::make_unique<model::DigitalSignatureData>();
    serializer.readSignature(stream, *data);
    return *data;
}

std::string SignatureDocument::write(const model::DigitalSignatureData& source) {
    Bytes bytes;
    ByteArrayOutAdaptor stream(bytes);
    serializer.writeSignature(source, stream);
    return toText(bytes);
}

} // namespace opc::test
