#include "signatures/document/SignatureTexts.hpp"

#include "signatures/document/SignatureComposer.hpp"
#include "signatures/document/SignatureXml.hpp"

namespace opc::model {

std::u16string writeSignedInfo(const SignatureRecord& record) {
    std::string plain;
    if (composePlainSignedInfo(record, plain))
        return {plain.begin(), plain.end()};
    return makeSignatureXml()->writeSignedInfo(record);
}

std::u16string writePackageObject(const SignatureContent& content) {
    std::string plain;
    if (composePlainPackageObject(content, plain))
        return {plain.begin(), plain.end()};
    return makeSignatureXml()->writePackageObject(content);
}

} // namespace opc::model
