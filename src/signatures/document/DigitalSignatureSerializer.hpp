#pragma once

#include "signatures/document/SignatureXml.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <memory>

namespace opc::model {

struct SignatureRecord;

/// Reads and writes signature parts, one after the other, for one thread at a time. It scans parts in the form that
/// it writes itself. A validating parser reads all others; Xerces is initialised for the first of these.
///
/// The form is the XML Signature profile of ECMA-376 Part 2. This class doesn't check whether a signature holds.
class DigitalSignatureSerializer {
public:
    DigitalSignatureSerializer() = default;
    DigitalSignatureSerializer(const DigitalSignatureSerializer&) = delete;
    DigitalSignatureSerializer& operator=(const DigitalSignatureSerializer&) = delete;

    /// Writes the whole document, or nothing if it can't be built. Doesn't close the stream.
    /// @throws InvalidPartContent  XML can't hold a text
    /// @throws opc::Exception      there is a key value, but the parameters of `data` have no key size
    void writeSignature(const SignatureRecord& data, OutputStream& stream);

    /// Fills `data`, which must be new. After a failure, drop `data`; this object can be used again.
    ///
    /// Time and memory grow in proportion to the document, whatever it holds, as long as they do so in parsing;
    /// `SignatureLimits` refuses other documents. Measured on one core, with the parser: 1,000,000 references
    /// (154 MB) 8 s and 2.5 GB, an attribute of 100 MB 2.5 s and 1.9 GB; at most 70 bytes for a byte, where all
    /// elements are empty and have short names.
    ///
    /// @param stream  open, at the first byte; read to its end and not closed
    /// @throws InvalidPartContent  the document breaks the schema or the form
    /// @throws NotImplemented      it refers to signed properties in the way of XML Signature or XAdES
    /// @throws opc::Exception      a signature algorithm or a key size isn't supported
    /// @throws bedrock::crypto::utils::Exception, bedrock::certificates::X509CertificateException  a text isn't
    /// Base64, or bytes aren't a certificate
    void readSignature(InputStream& stream, SignatureRecord& data);

    /// Does the same with the validating parser alone.
    void parseSignature(InputStream& stream, SignatureRecord& data);

private:
    SignatureXml& xml();

    std::unique_ptr<SignatureXml> made; ///< null until needed
};

} // namespace opc::model
