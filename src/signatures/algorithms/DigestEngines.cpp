#include "signatures/algorithms/DigestEngines.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/InputStream.hpp>
#include <opc/core/InputStreamSource.hpp>

#include <boost/iostreams/stream.hpp>

namespace opc::model {

namespace {

bedrock::crypto::DigestEngine& requireEngine(bedrock::crypto::DigestEngine* engine) {
    if (engine == nullptr)
        throw bedrock::crypto::utils::CouldNotComputeDigest("The digest method is unknown.");
    return *engine;
}

} // namespace

std::shared_ptr<bedrock::crypto::DigestEngine>
createDigestEngine(const bedrock::crypto::CryptoEngine& cryptoEngine, DigestMethod method) {
    switch (method) {
    case DigestMethod::MD5:
        return cryptoEngine.createMD5DigestEngine();
    case DigestMethod::SHA1:
        return cryptoEngine.createSHA1DigestEngine();
    case DigestMethod::SHA224:
        return cryptoEngine.createSHA224DigestEngine();
    case DigestMethod::SHA256:
        return cryptoEngine.createSHA256DigestEngine();
    case DigestMethod::SHA384:
        return cryptoEngine.createSHA384DigestEngine();
    case DigestMethod::SHA512:
        return cryptoEngine.createSHA512DigestEngine();
    }
    return nullptr;
}

std::vector<unsigned char> digestStream(bedrock::crypto::DigestEngine* engine, InputStream& stream) {
    boost::iostreams::stream<InputStreamSource> source{InputStreamSource(stream)};
    return requireEngine(engine).computeDigest(source);
}

std::vector<unsigned char> digestBytes(bedrock::crypto::DigestEngine* engine,
                                       const std::vector<unsigned char>& bytes) {
    return requireEngine(engine).computeDigest(bytes);
}

} // namespace opc::model
