#include "signatures/digests/PartDigester.hpp"

#include "signatures/algorithms/DigestEngines.hpp"
#include "signatures/digests/KeywordsRange.hpp"
#include "values/StreamRewinder.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <sstream>
#include <string>

namespace opc::model {

namespace {

/// The content of the core properties part without the bytes that no signature covers.
std::vector<unsigned char> readWithoutKeywords(InputStream& stream) {
    std::string bytes;
    {
        std::ostringstream content;
        content.exceptions(
            std::ios_base::badbit); // otherwise it would end early, without an error, if memory runs out
        StreamHelper::copyStreamToStream(stream, content);
        bytes = content.str();
    }
    const KeywordsRange keywords = findKeywords(bytes);
    bytes.erase(keywords.begin, keywords.size);
    return {bytes.begin(), bytes.end()};
}

template <typename Action>
auto translateDigestFailures(const Action& action) {
    try {
        return action();
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw CouldNotGenerateSignature(std::string("Unable to compute digest. ") + e.what());
    }
}

} // namespace

PartDigester::PartDigester(const Package& package, DigestMethod method)
    : parts(package), engine(translateDigestFailures([method] {
          const bedrock::crypto::CryptoEngine cryptoEngine(
              std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>());
          return createDigestEngine(cryptoEngine, method);
      })) {
}

const std::vector<unsigned char>& PartDigester::digest(const PartName& name) {
    InputStream& stream = parts.get(name).getInputStream();
    // Streams of later parts mostly lie behind those of earlier ones.
    std::vector<unsigned char>& digest = computed.try_emplace(computed.end(), &stream)->second;
    if (digest.empty())
        digest = translateDigestFailures([&] { return compute(stream, name); });
    return digest;
}

std::vector<unsigned char> PartDigester::compute(InputStream& stream, const PartName& name) const {
    const StreamRewinder rewinder(stream);
    if (name.getURI() != PackageHelper::getCorePropertiesURI())
        return digestStream(engine.get(), stream);
    return digestBytes(engine.get(), readWithoutKeywords(stream));
}

} // namespace opc::model
