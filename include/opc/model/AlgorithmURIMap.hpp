#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/SignatureParams.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace opc::model {

/// The algorithms that have an identifier in a signature part. The digests are in the order of `DigestMethod`. The RSA
/// signature with a digest has the number of the digest plus 6.
enum class AlgorithmTag : std::uint32_t {
    TagMD5 = 0,
    TagSHA1 = 1,
    TagSHA224 = 2,
    TagSHA256 = 3,
    TagSHA384 = 4,
    TagSHA512 = 5,
    TagRSAMD5 = 6,
    TagRSASHA1 = 7,
    TagRSASHA224 = 8,
    TagRSASHA256 = 9,
    TagRSASHA384 = 10,
    TagRSASHA512 = 11,
    TagC14N = 12,
};

/// Maps algorithms to their identifiers in XML Signature, XML Encryption, RFC 6931 and Canonical XML 1.0, and back.
/// Identifiers are compared code unit by code unit.
///
/// All functions are static and can be called from any thread. All failures are `opc::Exception`.
class OPC_MODEL_EXPORT AlgorithmURIMap {
public:
    /// @return the identifier of an algorithm
    static std::u16string getAlgorithmURI(AlgorithmTag tag);

    /// @return the identifier of a digest
    /// @throws opc::Exception  `digest` isn't a value of the enumeration
    static std::u16string getAlgorithmURI(DigestMethod digest);

    /// @return the identifier of RSA signatures with this digest; it doesn't contain the size of the key
    /// @throws opc::Exception  `signature` is `NoKey`, or an argument isn't a value of its enumeration
    static std::u16string getAlgorithmURI(DigestMethod digest, SignatureMethod signature);

    /// @return the digest with this identifier
    /// @throws opc::Exception  `uri` isn't the identifier of a digest
    static DigestMethod getDigestMethod(const std::u16string& uri);

    /// @return the digest of a signature method, and always `RSA2048`: the identifier doesn't contain the size of the key
    /// @throws opc::Exception  `uri` isn't the identifier of a signature method
    static std::pair<DigestMethod, SignatureMethod> getSigningParameters(const std::u16string& uri);

private:
    AlgorithmURIMap() = default;
    ~AlgorithmURIMap() = default;

    static AlgorithmTag getAlgorithmTag(const std::u16string& uri);
    static const std::map<AlgorithmTag, std::u16string>& getTable();
};

} // namespace opc::model
