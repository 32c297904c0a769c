#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/bn.h>
#include <openssl/pem.h>

#include <ctime>

namespace {

using namespace bedrock::test;
using bedrock::crypto::CryptoEngine;
using bedrock::crypto::utils::InvalidKey;
using bedrock::crypto::utils::UnusableKey;

const std::size_t Sizes[] = {1024, 2048, 4096};

/// The numbers of a private key, as the command line prints them.
struct Numbers {
    Bytes modulus, publicExponent, privateExponent, p, q;
};

Numbers numbersOf(const OpenSslCommand& openssl, const std::string& file) {
    const std::string text = openssl.run("rsa -noout -text -inform DER -in " + file);
    const auto after = [&text](const std::string& label) {
        Bytes bytes;
        std::size_t position = text.find(label) + label.size();
        while (text[position] == '\n')
            for (position = text.find_first_not_of(' ', position + 1); text[position + 2] == ':';
                 position += 3)
                bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(position, 2), nullptr, 16)));
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(position, 2), nullptr, 16)));
        return bytes;
    };
    Bytes modulus = after("modulus:");
    modulus.erase(modulus.begin()); // printed with its leading zero
    return {modulus, {1, 0, 1}, after("privateExponent:"), after("prime1:"), after("prime2:")};
}

/// The encoded form of writers that leave out the primes or, given some, the numbers that follow from them.
Bytes withoutPrimes(const OpenSslCommand& openssl, const Numbers& numbers, const std::string& p = "0",
                    const std::string& q = "0") {
    return encode(openssl,
                  {hex(numbers.modulus), "10001", hex(numbers.privateExponent), p, q, "0", "0", "0"});
}

Bytes product(const Bytes& left, const Bytes& right) {
    const std::shared_ptr<BN_CTX> context(BN_CTX_new(), BN_CTX_free);
    const std::shared_ptr<BIGNUM> a(BN_bin2bn(left.data(), static_cast<int>(left.size()), nullptr), BN_free);
    const std::shared_ptr<BIGNUM> b(BN_bin2bn(right.data(), static_cast<int>(right.size()), nullptr),
                                    BN_free);
    BN_mul(a.get(), a.get(), b.get(), context.get());
    Bytes bytes(static_cast<std::size_t>(BN_num_bytes(a.get())));
    BN_bn2bin(a.get(), bytes.data());
    return bytes;
}

TEST(RsaKeys, encodedFormsStayWithinTheirBounds) {
    for (const std::size_t bits : Sizes) {
        const auto& pair = keysOf(bits);
        const auto secret = privateKey(bits, pair.getPrivateKey());
        EXPECT_EQ(secret->getAsByteArray(), pair.getPrivateKey());
        EXPECT_GE(pair.getPrivateKey().size(), bits / 2);
        EXPECT_LE(pair.getPrivateKey().size(), bits);

        const auto open = publicKey(bits, pair.getPublicKey());
        EXPECT_EQ(open->getAsByteArray(), pair.getPublicKey());
        EXPECT_EQ(open->getModulus().size() * 8, bits);
        EXPECT_EQ(open->getPublicExponent(), (Bytes{1, 0, 1}));
        // A key with the longest exponent.
        const Bytes longest(8, 0xFF);
        const auto large =
            bedrock::crypto::cryptopp::CryptoProvider().createRSAPublicKey(bits, open->getModulus(), longest);
        EXPECT_EQ(large->getPublicExponent(), longest);
        for (const Bytes& encoded : {pair.getPublicKey(), large->getAsByteArray()}) {
            EXPECT_GE(encoded.size(), bits / 8);
            EXPECT_LE(encoded.size(), bits / 8 + 127);
        }
    }
}

TEST(RsaKeys, eachFormOfTheCommandLineIsRead) {
    const OpenSslCommand openssl;
    openssl.run("genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out key.pem");
    openssl.run("pkcs8 -topk8 -nocrypt -in key.pem -outform DER -out pkcs8.der");
    const std::string from = "rsa -inform DER -in pkcs8.der -out ";
    openssl.run("pkey -inform DER -in pkcs8.der -out pkcs8.pem");
    openssl.run(from + "pkcs1.der -outform DER -traditional");
    openssl.run(from + "pkcs1.pem -traditional");
    openssl.run(from + "spki.der -pubout -outform DER");
    openssl.run(from + "spki.pem -pubout");
    openssl.run(from + "pkcs1pub.der -RSAPublicKey_out -outform DER");
    openssl.run(from + "pkcs1pub.pem -RSAPublicKey_out");
    openssl.run("genrsa -primes 3 -out three.pem 2048");
    openssl.run("pkey -inform DER -in pkcs8.der -aes128 -passout pass:x -out encrypted8.pem");
    openssl.run(from + "encrypted1.pem -traditional -aes128 -passout pass:x");
    const CryptoEngine engine = makeEngine();
    for (const char* file : {"pkcs8.der", "pkcs8.pem", "pkcs1.der", "pkcs1.pem"}) {
        EXPECT_EQ(engine.createRSA2048PrivateKey(openssl.read(file))->getAsByteArray(),
                  openssl.read("pkcs8.der"))
            << file;
        EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA2048PublicKey(openssl.read(file)); })) << file;
    }
    for (const char* file : {"spki.der", "spki.pem", "pkcs1pub.der", "pkcs1pub.pem"}) {
        EXPECT_EQ(engine.createRSA2048PublicKey(openssl.read(file))->getAsByteArray(),
                  openssl.read("spki.der"))
            << file;
        EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA2048PrivateKey(openssl.read(file)); })) << file;
    }
    for (const char* file : {"encrypted8.pem", "encrypted1.pem"})
        EXPECT_TRUE(fails<UnusableKey>([&] { engine.createRSA2048PrivateKey(openssl.read(file)); })) << file;
    EXPECT_NO_THROW(engine.createRSA2048PrivateKey(openssl.read("three.pem")));
}

TEST(RsaKeys, primesAreRecoveredFromTheExponents) {
    const OpenSslCommand openssl;
    const auto engine = makeEngine();
    for (const std::size_t bits : Sizes) {
        openssl.write("key", keysOf(bits).getPrivateKey());
        const Numbers numbers = numbersOf(openssl, "key");
        const auto& [modulus, publicExponent, privateExponent, p, q] = numbers;
        const auto key =
            bits == 1024   ? engine.createRSA1024PrivateKey(modulus, privateExponent, publicExponent)
            : bits == 2048 ? engine.createRSA2048PrivateKey(modulus, privateExponent, publicExponent)
                           : engine.createRSA4096PrivateKey(modulus, privateExponent, publicExponent);
        EXPECT_EQ(key->getAsByteArray(), keysOf(bits).getPrivateKey()) << bits;
        const auto open = bits == 1024   ? engine.createRSA1024PublicKey(modulus, publicExponent)
                          : bits == 2048 ? engine.createRSA2048PublicKey(modulus, publicExponent)
                                         : engine.createRSA4096PublicKey(modulus, publicExponent);
        EXPECT_EQ(open->getAsByteArray(), keysOf(bits).getPublicKey()) << bits;

        for (const Bytes& encoded :
             {withoutPrimes(openssl, numbers), withoutPrimes(openssl, numbers, hex(p), hex(q))})
            EXPECT_EQ(privateKey(bits, encoded)->getAsByteArray(), keysOf(bits).getPrivateKey()) << bits;

        openssl.write("recovered", key->getAsByteArray());
        EXPECT_NE(openssl.run("rsa -check -noout -inform DER -in recovered").find("RSA key ok"),
                  std::string::npos);
    }
}

TEST(RsaKeys, keysCutShortOrContinuedAreRefused) {
    const CryptoEngine engine = makeEngine();
    const auto isReadWholeAlone = [](Bytes key, const auto& read) {
        for (std::size_t size = 0; size < key.size(); ++size) {
            const Bytes cut(key.data(), key.data() + size);
            EXPECT_TRUE(fails<InvalidKey>([&] { read(cut); })) << size;
        }
        EXPECT_NO_THROW(read(key));
        key.push_back(0);
        EXPECT_TRUE(fails<InvalidKey>([&] { read(key); }));
    };
    isReadWholeAlone(keysOf(1024).getPrivateKey(),
                     [&](const Bytes& key) { engine.createRSA1024PrivateKey(key); });
    isReadWholeAlone(keysOf(1024).getPublicKey(),
                     [&](const Bytes& key) { engine.createRSA1024PublicKey(key); });
}

/// If any byte of a key changes, each wrong number is detected, or the key signs as before.
TEST(RsaKeys, damagedKeysAreRefusedOrSignRightly) {
    const OpenSslCommand openssl;
    openssl.run("genrsa -primes 3 -out three.pem 1024");
    openssl.run("pkcs8 -topk8 -nocrypt -in three.pem -outform DER -out three.der");
    bedrock::crypto::cryptopp::CryptoProvider provider;
    const auto digest = provider.createDigestEngine(bedrock::crypto::DigestAlgorithm::SHA256);
    for (const Bytes& good : {keysOf(1024).getPrivateKey(), openssl.read("three.der")}) {
        const auto sign = [&](const Bytes& key) {
            return provider
                .createRSASigner(1024, provider.createRSAPrivateKey(1024, key),
                                 provider.getDefaultRSAPaddingModeSigning(), provider.getDefaultCryptoPRNG())
                ->sign({'x'}, digest);
        };
        const Bytes value = sign(good);
        std::size_t refused = 0;
        for (std::size_t position = 0; position < good.size(); ++position) {
            Bytes damaged = good;
            const unsigned char flipped = position % 2 != 0 ? 1 : 0x80;
            damaged[position] ^= flipped;
            try {
                provider.createRSAPrivateKey(1024, damaged);
            } catch (const InvalidKey&) {
                ++refused;
                continue;
            }
            EXPECT_EQ(sign(damaged), value) << position;
        }
        EXPECT_GT(refused, good.size() - 20) << "no number depends on a few bytes";
    }
}

/// The result of reading a public key of 1024 bits, or of the failure.
std::string outcomeOf(const Bytes& encoded) {
    try {
        const auto key = publicKey(1024, encoded);
        return hex(key->getModulus()) + ' ' + hex(key->getPublicExponent());
    } catch (const InvalidKey& failure) {
        return failure.what();
    }
}

/// In PEM, which OpenSSL always reads.
Bytes pemOf(const Bytes& der) {
    const std::shared_ptr<BIO> stream(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio(stream.get(), "PUBLIC KEY", "", der.data(), static_cast<long>(der.size()));
    char* text = nullptr;
    const long size = BIO_get_mem_data(stream.get(), &text);
    return Bytes(text, text + size);
}

TEST(RsaKeys, publicKeysInDerAreReadAsOpenSslReadsThem) {
    const Bytes good = keysOf(1024).getPublicKey();
    for (std::size_t position = 0; position < good.size(); ++position) {
        using Byte = Bytes::value_type;
        const auto at = static_cast<std::ptrdiff_t>(position);
        std::vector<Bytes> damaged(2, good);
        damaged[0].erase(damaged[0].begin() + at);
        damaged[1].insert(damaged[1].begin() + at, 0);
        for (const Byte flipped : {Byte{1}, Byte{2}, Byte{3}, Byte{0x80}, Byte{0xFF}}) {
            damaged.push_back(good);
            damaged.back()[position] ^= flipped;
        }
        for (std::size_t kind = 0; kind < damaged.size(); ++kind)
            EXPECT_EQ(outcomeOf(damaged[kind]), outcomeOf(pemOf(damaged[kind]))) << position << ' ' << kind;
    }
}

TEST(RsaKeys, otherKeysAndSizesAreRefused) {
    const OpenSslCommand openssl;
    openssl.run("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -outform DER -out ec.der");
    openssl.run("pkey -inform DER -in ec.der -pubout -outform DER -out ecpub.der");
    openssl.run("genpkey -algorithm RSA-PSS -pkeyopt rsa_keygen_bits:1024 -outform DER -out pss.der");
    openssl.run("pkey -inform DER -in pss.der -pubout -outform DER -out psspub.der");
    const CryptoEngine engine = makeEngine();
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024PrivateKey(openssl.read("ec.der")); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024PublicKey(openssl.read("ecpub.der")); }));
    EXPECT_TRUE(fails<UnusableKey>([&] { engine.createRSA1024PrivateKey(openssl.read("pss.der")); }));
    EXPECT_TRUE(fails<UnusableKey>([&] { engine.createRSA1024PublicKey(openssl.read("psspub.der")); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA2048PrivateKey(keysOf(1024).getPrivateKey()); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024PublicKey(keysOf(2048).getPublicKey()); }));
    EXPECT_TRUE(fails<InvalidKey>([] { bedrock::crypto::generateRsaKeyPair(1536); }));

    const auto padding = engine.getDefaultRSAPaddingModeSigning();
    const auto generator = engine.getDefaultCryptoPRNG();
    const auto secret = engine.createRSA1024PrivateKey(keysOf(1024).getPrivateKey());
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA2048Signer(secret, padding, generator); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024Signer(nullptr, padding, generator); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024Verifier(nullptr, padding, generator); }));
}

TEST(RsaKeys, hostileNumbersAreRefusedAtOnce) {
    const OpenSslCommand openssl;
    openssl.write("key", keysOf(1024).getPrivateKey());
    const Numbers good = numbersOf(openssl, "key");
    Bytes even = good.modulus, other = good.modulus, leading(1 << 20, 0);
    even.back() &= 0xFE;
    other[60] ^= 1;
    leading.insert(leading.end(), good.modulus.begin(), good.modulus.end());
    const Bytes huge(1 << 20, 0xFF), nothing, zeros(128, 0), three{3}, ones(128, 0xFF);
    struct Case {
        const char* name;
        Bytes modulus, privateExponent, publicExponent;
    };
    const Case cases[] = {
        {"no modulus", nothing, good.privateExponent, {1, 0, 1}},
        {"zero modulus", zeros, good.privateExponent, {1, 0, 1}},
        {"tiny modulus", {15}, three, three},
        {"short modulus", Bytes(127, 0xFF), three, three},
        {"long modulus", Bytes(129, 0xFF), three, three},
        {"even modulus", even, good.privateExponent, {1, 0, 1}},
        {"huge modulus", huge, good.privateExponent, {1, 0, 1}},
        {"other modulus", other, good.privateExponent, {1, 0, 1}},
        {"no private exponent", good.modulus, nothing, {1, 0, 1}},
        {"private exponent 1", good.modulus, {1}, {1, 0, 1}},
        {"other private exponent", good.modulus, three, {1, 0, 1}},
        {"private exponent above the modulus", good.modulus, ones, {1, 0, 1}},
        {"huge private exponent", good.modulus, huge, {1, 0, 1}},
        {"no public exponent", good.modulus, good.privateExponent, nothing},
        {"public exponent 1", good.modulus, good.privateExponent, {1}},
        {"even public exponent", good.modulus, good.privateExponent, {1, 0, 0}},
        {"other public exponent", good.modulus, good.privateExponent, three},
        {"long public exponent", good.modulus, good.privateExponent, Bytes(9, 0xFF)},
        {"huge public exponent", good.modulus, good.privateExponent, huge},
    };
    const std::clock_t start = std::clock();
    const CryptoEngine engine = makeEngine();
    for (const Case& c : cases) {
        EXPECT_TRUE(fails<InvalidKey>([&] {
            engine.createRSA1024PrivateKey(c.modulus, c.privateExponent, c.publicExponent);
        })) << c.name;
        // By the public numbers alone, each of these is a good pair.
        const std::string name = c.name;
        const bool isPublicGood = name.find("private") != std::string::npos || name.find("other") == 0;
        if (isPublicGood)
            EXPECT_NO_THROW(engine.createRSA1024PublicKey(c.modulus, c.publicExponent)) << name;
        else
            EXPECT_TRUE(fails<InvalidKey>([&] {
                engine.createRSA1024PublicKey(c.modulus, c.publicExponent);
            })) << name;
    }
    // Congruent to the private exponent, so it would sign. But the encoded form would be too long.
    Numbers swollen = good;
    swollen.privateExponent =
        product(good.privateExponent, product(good.privateExponent, good.publicExponent));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA1024PrivateKey(withoutPrimes(openssl, swollen)); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA4096PublicKey(huge); }));
    EXPECT_TRUE(fails<InvalidKey>([&] { engine.createRSA4096PrivateKey(huge); }));
    EXPECT_EQ(engine.createRSA1024PublicKey(leading, {0, 0, 1, 0, 1})->getModulus(), good.modulus);
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

} // namespace
