#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/SignatureParams.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace opc::model {

/// The algorithms that have an identifier in a signature part. A digest and the RSA signature with that
/// digest stand 6 apart, in the order of `DigestMethod`.
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

/// Maps algorithms to the identifiers that XML Signature, XML Encryption, RFC 6931 and Canonical XML 1.0
/// give them, and back. Identifiers are compared code unit by code unit.
///
/// Static operations on a constant table, free for any thread. All failures are `opc::Exception`.
class OPC_MODEL_EXPORT AlgorithmURIMap {
public:
    static std::u16string getAlgorithmURI(AlgorithmTag tag);

    /// @throws opc::Exception  for a value that has no name
    static std::u16string getAlgorithmURI(DigestMethod digest);

    /// The identifier of RSA signatures with that digest, which says nothing about the size of the key.
    /// @throws opc::Exception  for `NoKey`, and for values that have no name
    static std::u16string getAlgorithmURI(DigestMethod digest, SignatureMethod signature);

    /// @throws opc::Exception  if `uri` isn't the identifier of a digest
    static DigestMethod getDigestMethod(const std::u16string& uri);

    /// The digest of a signature, and `RSA2048` always: only a key tells its size.
    /// @throws opc::Exception  if `uri` isn't the identifier of a signature
    static std::pair<DigestMethod, SignatureMethod> getSigningParameters(const std::u16string& uri);

private:
    AlgorithmURIMap() = default;
    ~AlgorithmURIMap() = default;

    static AlgorithmTag getAlgorithmTag(const std::u16string& uri);
    static const std::map<AlgorithmTag, std::u16string>& getTable();
};

} // namespace opc::model
