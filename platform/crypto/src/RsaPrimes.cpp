#include "RsaPrimes.hpp"

#include <openssl/core_names.h>

namespace bedrock::crypto {

namespace {

using openssl::BnPtr;

// A base that isn't 1 or -1 modulo a proper RSA modulus leads to the primes in half of all cases.
constexpr int MaximalTries = 40;

BnPtr secretConstantTimeNumber() {
    BnPtr number = openssl::made(BnPtr(BN_secure_new()));
    BN_set_flags(number.get(), BN_FLG_CONSTTIME);
    return number;
}

// The arithmetic here can only fail by running out of memory.
void requireDone(bool done) {
    if (!done)
        throw std::bad_alloc();
}

class PrimeFinder {
public:
    PrimeFinder(const BIGNUM& modulus, const BIGNUM& publicExponent, const BIGNUM& privateExponent)
        : modulus(modulus), context(openssl::made(openssl::BnCtxPtr(BN_CTX_secure_new()))),
          montgomery(openssl::made(openssl::MontgomeryPtr(BN_MONT_CTX_new()))),
          oddPart(secretConstantTimeNumber()) {
        requireDone(BN_MONT_CTX_set(montgomery.get(), &modulus, context.get()));
        requireDone(BN_mul(oddPart.get(), &publicExponent, &privateExponent, context.get()));
        requireDone(BN_sub_word(oddPart.get(), 1));
        while (!BN_is_zero(oddPart.get()) && !BN_is_bit_set(oddPart.get(), halvings))
            ++halvings;
        requireDone(BN_rshift(oddPart.get(), oddPart.get(), halvings));
    }

    /// Finds one prime factor; null if the exponents don't belong together.
    BnPtr find() {
        if (halvings == 0)
            return nullptr;
        bool wrong = false;
        for (int count = 0; count < MaximalTries && !wrong; ++count) {
            if (BnPtr prime = tryOnce(wrong))
                return prime;
        }
        return nullptr;
    }

private:
    // Raises a random base to the power of the odd part, and squares the result until it is 1. A square root of 1
    // other than 1 and -1 shares a factor with the modulus. If 1 doesn't come out, the exponents are wrong.
    BnPtr tryOnce(bool& wrong) {
        BnPtr root = secretConstantTimeNumber();
        BnPtr square = secretConstantTimeNumber();
        BnPtr base = secretConstantTimeNumber();
        requireDone(BN_priv_rand_range_ex(base.get(), &modulus, 0, context.get()));
        if (BN_is_zero(base.get()) || BN_is_one(base.get()))
            return nullptr;
        requireDone(BN_mod_exp_mont_consttime(root.get(), base.get(), oddPart.get(), &modulus, context.get(),
                                              montgomery.get()));
        if (BN_is_one(root.get()))
            return nullptr;
        for (int count = 0; count < halvings; ++count) {
            requireDone(BN_mod_sqr(square.get(), root.get(), &modulus, context.get()));
            if (BN_is_one(square.get()))
                return factorOf(*root);
            root.swap(square);
        }
        wrong = true;
        return nullptr;
    }

    BnPtr factorOf(BIGNUM& root) {
        BnPtr factor = secretConstantTimeNumber();
        requireDone(BN_sub_word(&root, 1));
        requireDone(BN_gcd(factor.get(), &root, &modulus, context.get()));
        // -1 less 1 shares no factor with an odd modulus.
        return BN_is_one(factor.get()) ? nullptr : std::move(factor);
    }

    const BIGNUM& modulus;
    openssl::BnCtxPtr context;
    openssl::MontgomeryPtr montgomery;
    BnPtr oddPart;    // of the product of the exponents less 1
    int halvings = 0; // the number of halvings that lead to the odd part
};

/// The remaining numbers of a key whose larger prime is known.
struct RemainderNumbers {
    RemainderNumbers(const BIGNUM& modulus, const BIGNUM& privateExponent, BnPtr prime)
        : p(std::move(prime)), q(secretConstantTimeNumber()), dp(secretConstantTimeNumber()),
          dq(secretConstantTimeNumber()), coefficient(secretConstantTimeNumber()) {
        const openssl::BnCtxPtr context = openssl::made(openssl::BnCtxPtr(BN_CTX_secure_new()));
        requireDone(BN_div(q.get(), nullptr, &modulus, p.get(), context.get()));
        if (BN_cmp(p.get(), q.get()) < 0)
            p.swap(q);
        reduce(*dp, privateExponent, *p, *context);
        reduce(*dq, privateExponent, *q, *context);
        isComplete = BN_mod_inverse(coefficient.get(), q.get(), p.get(), context.get()) != nullptr;
    }

    BnPtr p, q, dp, dq, coefficient;
    bool isComplete = false;

private:
    static void reduce(BIGNUM& result, const BIGNUM& exponent, const BIGNUM& prime, BN_CTX& context) {
        const BnPtr less = secretConstantTimeNumber();
        requireDone(BN_copy(less.get(), &prime) && BN_sub_word(less.get(), 1));
        requireDone(BN_div(nullptr, &result, &exponent, less.get(), &context));
    }
};

} // namespace

openssl::PkeyPtr makePrivateKey(const BIGNUM& modulus, const BIGNUM& publicExponent,
                                const BIGNUM& privateExponent) {
    BnPtr prime = PrimeFinder(modulus, publicExponent, privateExponent).find();
    if (!prime)
        return nullptr;
    const RemainderNumbers numbers(modulus, privateExponent, std::move(prime));
    if (!numbers.isComplete)
        return nullptr;

    const openssl::ParamBuilderPtr builder = openssl::made(openssl::ParamBuilderPtr(OSSL_PARAM_BLD_new()));
    const std::pair<const char*, const BIGNUM*> parameters[] = {
        {OSSL_PKEY_PARAM_RSA_N, &modulus},
        {OSSL_PKEY_PARAM_RSA_E, &publicExponent},
        {OSSL_PKEY_PARAM_RSA_D, &privateExponent},
        {OSSL_PKEY_PARAM_RSA_FACTOR1, numbers.p.get()},
        {OSSL_PKEY_PARAM_RSA_FACTOR2, numbers.q.get()},
        {OSSL_PKEY_PARAM_RSA_EXPONENT1, numbers.dp.get()},
        {OSSL_PKEY_PARAM_RSA_EXPONENT2, numbers.dq.get()},
        {OSSL_PKEY_PARAM_RSA_COEFFICIENT1, numbers.coefficient.get()},
    };
    for (const auto& [name, number] : parameters)
        requireDone(OSSL_PARAM_BLD_push_BN(builder.get(), name, number));
    const openssl::ParamsPtr params =
        openssl::made(openssl::ParamsPtr(OSSL_PARAM_BLD_to_param(builder.get())));
    const openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr)));
    EVP_PKEY* key = nullptr;
    if (EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_KEYPAIR, params.get()) != 1)
        return nullptr;
    return openssl::PkeyPtr(key);
}

} // namespace bedrock::crypto
