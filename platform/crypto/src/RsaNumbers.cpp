#include "RsaNumbers.hpp"

#include <openssl/core_names.h>

#include <string>
#include <utility>

namespace bedrock::crypto {

namespace {

using openssl::BnPtr;

constexpr int MaximalPrimes = 10; // the most that OpenSSL supports

// The arithmetic here can only fail by running out of memory.
void requireMemory(bool done) {
    if (!done)
        throw std::bad_alloc();
}

BnPtr secretNumber() {
    return openssl::made(BnPtr(BN_secure_new()));
}

class NumbersCheck {
public:
    explicit NumbersCheck(const EVP_PKEY& key)
        : key(key), context(openssl::made(openssl::BnCtxPtr(BN_CTX_secure_new()))),
          modulus(openssl::getNumber(key, OSSL_PKEY_PARAM_RSA_N)),
          publicExponent(openssl::getNumber(key, OSSL_PKEY_PARAM_RSA_E)),
          privateExponent(openssl::getNumber(key, OSSL_PKEY_PARAM_RSA_D)), product(secretNumber()) {
        requireMemory(BN_one(product.get()));
    }

    bool holds() {
        if (!modulus || !publicExponent || !privateExponent)
            return false;
        for (int index = 1; index <= MaximalPrimes; ++index) {
            const BnPtr prime = get("rsa-factor", index);
            if (!prime)
                break;
            if (!isRightPrime(*prime, index))
                return false;
            requireMemory(BN_mul(product.get(), product.get(), prime.get(), context.get()));
        }
        return BN_cmp(product.get(), modulus.get()) == 0;
    }

private:
    BnPtr get(const char* name, int index) const {
        return openssl::getNumber(key, (name + std::to_string(index)).c_str());
    }

    bool isRightPrime(const BIGNUM& prime, int index) const {
        if (!BN_is_odd(&prime) || BN_is_one(&prime) || BN_cmp(&prime, modulus.get()) >= 0)
            return false;
        const BnPtr exponent = get("rsa-exponent", index);
        const BnPtr less = secretNumber();
        requireMemory(BN_copy(less.get(), &prime) && BN_sub_word(less.get(), 1));
        return exponent && BN_cmp(exponent.get(), &prime) < 0 &&
               isInverse(*publicExponent, *exponent, *less) &&
               isInverse(*publicExponent, *privateExponent, *less) && isRightCoefficient(prime, index);
    }

    /// The coefficient of the second prime belongs to the first. Each further one belongs to its own prime.
    bool isRightCoefficient(const BIGNUM& prime, int index) const {
        if (index == 1)
            return true;
        const BnPtr coefficient = get("rsa-coefficient", index - 1);
        const BIGNUM* base = &prime;
        const BIGNUM* other = product.get();
        if (index == 2)
            std::swap(base, other); // then the product is the first prime
        return coefficient && BN_cmp(coefficient.get(), base) < 0 && isInverse(*other, *coefficient, *base);
    }

    bool isInverse(const BIGNUM& number, const BIGNUM& inverse, const BIGNUM& base) const {
        const BnPtr result = secretNumber();
        requireMemory(BN_mod_mul(result.get(), &number, &inverse, &base, context.get()));
        return BN_is_one(result.get());
    }

    const EVP_PKEY& key;
    openssl::BnCtxPtr context;
    BnPtr modulus, publicExponent, privateExponent;
    BnPtr product; // the product of the primes so far
};

} // namespace

bool belongTogether(const EVP_PKEY& key) {
    return NumbersCheck(key).holds();
}

} // namespace bedrock::crypto
