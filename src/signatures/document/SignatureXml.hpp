#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <memory>
#include <string>

namespace opc::model {

struct SignatureContent;
struct SignatureRecord;

/// Has Xerces read and write signature parts of any form, one after the other, for one thread at a time.
class SignatureXml {
public:
    SignatureXml() = default;
    SignatureXml(const SignatureXml&) = delete;
    SignatureXml& operator=(const SignatureXml&) = delete;
    virtual ~SignatureXml() = default;

    /// Does what `DigitalSignatureSerializer::readSignature` does.
    /// @throws InvalidXMLDocument  besides what that throws
    virtual void parse(InputStream& stream, SignatureRecord& data) = 0;

    /// Does what `DigitalSignatureSerializer::writeSignature` does.
    /// @throws InvalidXMLDocument  besides what that throws
    virtual void serialize(const SignatureRecord& data, OutputStream& stream) = 0;

    /// @name The two elements of a signature document that are digested and signed
    /// @throws InvalidPartContent  if a text holds characters that XML can't hold
    /// @{

    /// The text of `SignedInfo`, over which the signature value is made.
    virtual std::u16string writeSignedInfo(const SignatureRecord& record) = 0;

    /// The text of the package object, of which `SignedInfo` holds the digest.
    virtual std::u16string writePackageObject(const SignatureContent& content) = 0;

    /// @}
};

std::unique_ptr<SignatureXml> makeSignatureXml();

} // namespace opc::model
