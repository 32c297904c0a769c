#include <opc/model/SignatureParams.hpp>

#include <opc/core/Exception.hpp>

namespace opc::model {

bool isWeak(DigestMethod digest) {
    return digest == DigestMethod::MD5 || digest == DigestMethod::SHA1;
}

bool isWeak(SignatureMethod method) {
    return method == SignatureMethod::RSA1024;
}

std::uint64_t signatureMethodToKeySize(SignatureMethod method) {
    switch (method) {
    case SignatureMethod::RSA1024:
        return 1024;
    case SignatureMethod::RSA2048:
        return 2048;
    case SignatureMethod::RSA4096:
        return 4096;
    case SignatureMethod::NoKey:
        break;
    }
    throw Exception("Signature Method is unsupported.");
}

SignatureMethod keySizeToSignatureMethod(std::uint64_t keySize) {
    switch (keySize) {
    case 1024:
        return SignatureMethod::RSA1024;
    case 2048:
        return SignatureMethod::RSA2048;
    case 4096:
        return SignatureMethod::RSA4096;
    default:
        throw Exception("Input key size is not supported as a Signature Method.");
    }
}

} // namespace opc::model
