#include "signatures/document/SignatureScanner.hpp"

#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainReader.hpp"
#include "xml/PlainURI.hpp"

#include <algorithm>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using plain::is;

/// Whether an attribute can hold a text without escapes.
constexpr bool isPlainValueChar(char c) {
    return is(c, plain::DoubleQuoted) && c != '>';
}

/// Whether a text can follow `CONTENT_TYPE_QUERY` without escapes.
bool isPlainQueryValue(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return is(c, plain::Letter | plain::Digit) || c == '-' || c == '.' || c == '_' || c == '+' ||
               c == '/';
    });
}

/// Whether an attribute, as it is written, is a URI without references and blanks.
bool isPlainReference(std::string_view written) {
    return isPlainURI(written) && written.find('&') == std::string_view::npos &&
           written.find(' ') == std::string_view::npos;
}

/// Whether a text is the URI of a signed part: its name and its content type.
bool isPlainPartReference(std::string_view text) {
    constexpr std::string_view QUERY = CONTENT_TYPE_QUERY;
    const std::size_t path = std::min(text.find('?'), text.size());
    return path > 0 && text.front() == '/' && isPlainReference(text.substr(0, path)) &&
           text.compare(path, QUERY.size(), QUERY) == 0 &&
           isPlainQueryValue(text.substr(path + QUERY.size()));
}

/// Whether a text is the identifier of an algorithm in a usual form.
bool isPlainAlgorithm(std::string_view text) {
    const std::size_t path = std::min(text.find('#'), text.size());
    return isPlainReference(text.substr(0, path)) &&
           (path == text.size() || isPlainID(text.substr(path + 1)));
}

/// The value of a digit of Base64; 64 for any other character.
constexpr unsigned base64Value(char c) {
    if (c >= 'A' && c <= 'Z')
        return static_cast<unsigned>(c - 'A');
    if (c >= 'a' && c <= 'z')
        return static_cast<unsigned>(c - 'a') + 26;
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0') + 52;
    return c == '+' ? 62 : c == '/' ? 63 : 64;
}

/// Whether a text is Base64 without blanks, and not empty.
bool isPlainBase64(std::string_view text) {
    if (text.empty() || text.size() % 4 != 0)
        return false;
    std::size_t padding = 0;
    for (; padding < 2 && text.back() == '='; ++padding)
        text.remove_suffix(1);
    const unsigned unusedBits = padding == 0 ? 0 : padding == 1 ? 3 : 15;
    return plain::areAll(text, plain::Base64) && (base64Value(text.back()) & unusedBits) == 0;
}

template <std::size_t Size>
constexpr auto startOf(const XmlText<Size>& element) {
    return "<" + element + ">";
}

template <std::size_t Size>
constexpr auto endOf(const XmlText<Size>& element) {
    return "</" + element + ">";
}

template <std::size_t Size>
constexpr auto startOfValue(const XmlText<Size>& attribute) {
    return " " + attribute + "=\"";
}

template <std::size_t Size>
constexpr auto startOfAlgorithm(const XmlText<Size>& element) {
    return "<" + element + startOfValue(attribute::ALGORITHM);
}

template <std::size_t Size>
constexpr auto prefixed(const XmlText<Size>& name) {
    return package_element::PREFIX + ":" + name;
}

/// The tags around the content of an element without attributes.
template <std::size_t Size>
struct Tags {
    explicit constexpr Tags(const XmlText<Size>& element) : start(startOf(element)), end(endOf(element)) {}

    XmlText<Size + 2> start;
    XmlText<Size + 3> end;
};

constexpr Tags SIGNATURE_VALUE(element::SIGNATURE_VALUE);
constexpr Tags KEY_INFO(element::KEY_INFO);
constexpr Tags MODULUS(element::MODULUS);
constexpr Tags EXPONENT(element::EXPONENT);
constexpr Tags X509_DATA(element::X509_DATA);
constexpr Tags X509_CERTIFICATE(element::X509_CERTIFICATE);
constexpr Tags TRANSFORMS(element::TRANSFORMS);
constexpr Tags DIGEST_VALUE(element::DIGEST_VALUE);

constexpr auto DECLARATION = XmlText(R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>)");
constexpr auto NAMESPACE_DECLARATION =
    startOfValue(attribute::XMLNS) + vocabulary::signatures::NAMESPACE + "\">";
constexpr auto SIGNATURE_START = "<" + element::SIGNATURE;
constexpr auto SIGNATURE_END = endOf(element::SIGNATURE);
constexpr auto ID_VALUE = startOfValue(attribute::ID);

constexpr auto SIGNED_INFO_START = "<" + element::SIGNED_INFO + NAMESPACE_DECLARATION;
constexpr auto CANONICALIZATION_METHOD = startOfAlgorithm(element::CANONICALIZATION_METHOD);
constexpr auto SIGNATURE_METHOD = "/>" + startOfAlgorithm(element::SIGNATURE_METHOD);
constexpr auto OBJECT_REFERENCE = "/><" + element::REFERENCE + startOfValue(attribute::TYPE) + OBJECT_TYPE +
                                  "\"" + startOfValue(attribute::URI) + "#" + PACKAGE_OBJECT_ID + "\">";
constexpr auto SIGNED_INFO_END = endOf(element::SIGNED_INFO);

constexpr auto RSA_KEY_START = startOf(element::KEY_VALUE) + startOf(element::RSA_KEY_VALUE);
constexpr auto RSA_KEY_END = endOf(element::RSA_KEY_VALUE) + endOf(element::KEY_VALUE);

constexpr auto MANIFEST_START = "<" + element::OBJECT + startOfValue(attribute::ID) + PACKAGE_OBJECT_ID +
                                "\" " + attribute::XMLNS + ":" + package_element::PREFIX + "=\"" +
                                PACKAGE_NAMESPACE + "\">" + startOf(element::MANIFEST);
constexpr auto REFERENCE_START = "<" + element::REFERENCE + startOfValue(attribute::URI);
constexpr auto TRANSFORM = startOfAlgorithm(element::TRANSFORM);
constexpr auto TRANSFORM_END = endOf(element::TRANSFORM);
constexpr auto SELECTION_BY_ID =
    "<" + prefixed(package_element::RELATIONSHIP_REFERENCE) + startOfValue(attribute::SOURCE_ID);
constexpr auto SELECTION_BY_TYPE =
    "<" + prefixed(package_element::RELATIONSHIP_GROUP_REFERENCE) + startOfValue(attribute::SOURCE_TYPE);
constexpr auto DIGEST_METHOD = startOfAlgorithm(element::DIGEST_METHOD);
constexpr auto REFERENCE_END = endOf(element::REFERENCE);
constexpr auto TIME_START = endOf(element::MANIFEST) + startOf(element::SIGNATURE_PROPERTIES) + "<" +
                            element::SIGNATURE_PROPERTY + startOfValue(attribute::ID) + SIGNATURE_TIME_ID +
                            "\"" + startOfValue(attribute::TARGET) + "#";
constexpr auto TIME_VALUE = ">" + startOf(prefixed(package_element::SIGNATURE_TIME)) +
                            startOf(prefixed(package_element::FORMAT)) + SIGNATURE_TIME_FORMAT +
                            endOf(prefixed(package_element::FORMAT)) +
                            startOf(prefixed(package_element::VALUE));
constexpr auto OBJECT_END =
    endOf(prefixed(package_element::VALUE)) + endOf(prefixed(package_element::SIGNATURE_TIME)) +
    endOf(element::SIGNATURE_PROPERTY) + endOf(element::SIGNATURE_PROPERTIES) + endOf(element::OBJECT);

/// Scans the document once. If an operation didn't take a required piece, the document isn't recognised.
class SignatureScan {
public:
    SignatureScan(std::string_view document, ScannedSignature& found) : reader(document), found(found) {}

    bool takeDocument() { return reader.take(DECLARATION) && takeSignature() && reader.atEnd(); }

private:
    template <std::size_t Size>
    bool takeBase64(const Tags<Size>& tags, std::string_view& value) {
        if (!reader.take(tags.start))
            return false;
        value = reader.takeText();
        return isPlainBase64(value) && reader.take(tags.end);
    }

    bool takeAlgorithm(std::string_view start, std::string_view& value) {
        return reader.take(start) && reader.takeThrough('"', value) && isPlainAlgorithm(value);
    }

    bool takeSignature() {
        return reader.take(SIGNATURE_START) && takeID() && reader.take(NAMESPACE_DECLARATION) &&
               takeSignedInfo() && takeBase64(SIGNATURE_VALUE, found.signatureValue) &&
               (!reader.take(KEY_INFO.start) || takeKey()) && takeObject() && reader.take(SIGNATURE_END);
    }

    bool takeID() {
        return !reader.take(ID_VALUE) || (reader.takeThrough('"', found.id) && isPlainID(found.id) &&
                                          found.id != std::string_view(PACKAGE_OBJECT_ID) &&
                                          found.id != std::string_view(SIGNATURE_TIME_ID));
    }

    bool takeSignedInfo() {
        const char* const begin = reader.position();
        const bool taken = reader.take(SIGNED_INFO_START) &&
                           takeAlgorithm(CANONICALIZATION_METHOD, found.canonicalizationMethod) &&
                           takeAlgorithm(SIGNATURE_METHOD, found.signatureMethod) &&
                           reader.take(OBJECT_REFERENCE) && takeDigest(found.objectReference) &&
                           reader.take(SIGNED_INFO_END);
        found.objectReference.referenceURI = URI(u"#" + PACKAGE_OBJECT_ID.text());
        found.objectReference.referenceType = OBJECT_TYPE.text();
        found.signedInfo = reader.takenSince(begin);
        return taken;
    }

    /// The end of a reference.
    bool takeDigest(Reference& reference) {
        std::string_view method;
        std::string_view value;
        if (!takeAlgorithm(DIGEST_METHOD, method) || !reader.take("/>") || !takeBase64(DIGEST_VALUE, value) ||
            !reader.take(REFERENCE_END))
            return false;
        reference.digestMethod = widen(method);
        reference.digestValue = widen(value);
        return true;
    }

    bool takeKey() {
        const bool taken =
            reader.take(X509_DATA.start) ? takeCertificates() && reader.take(X509_DATA.end) : takeRSAKey();
        return taken && reader.take(KEY_INFO.end);
    }

    bool takeRSAKey() {
        return reader.take(RSA_KEY_START) && takeBase64(MODULUS, found.modulus) &&
               takeBase64(EXPONENT, found.exponent) && reader.take(RSA_KEY_END);
    }

    bool takeCertificates() {
        do {
            if (!takeBase64(X509_CERTIFICATE, found.certificates.emplace_back()))
                return false;
        } while (!reader.isAt("</"));
        return true;
    }

    bool takeObject() {
        const char* const begin = reader.position();
        const bool taken = reader.take(MANIFEST_START) && takeReferences() && takeTime();
        found.object = reader.takenSince(begin);
        return taken;
    }

    bool takeReferences() {
        do {
            if (!takeReference(found.manifestReferences.emplace_back()))
                return false;
        } while (!reader.isAt("</"));
        return true;
    }

    bool takeReference(Reference& reference) {
        std::string_view uri;
        if (!reader.take(REFERENCE_START) || !reader.takeThrough('"', uri) || !isPlainPartReference(uri) ||
            !reader.take(">"))
            return false;
        reference.referenceURI = URI(widen(uri));
        return (!reader.take(TRANSFORMS.start) || takeTransforms(reference)) && takeDigest(reference);
    }

    bool takeTransforms(Reference& reference) {
        do {
            if (!takeTransform(reference))
                return false;
        } while (!reader.isAt("</"));
        return reader.take(TRANSFORMS.end);
    }

    bool takeTransform(Reference& reference) {
        std::string_view algorithm;
        if (!takeAlgorithm(TRANSFORM, algorithm))
            return false;
        std::u16string transform = widen(algorithm);
        const bool isOfRelationships = isRelationshipTransform(transform);
        if (!isOfRelationships)
            reference.transforms.push_back(std::move(transform));
        return reader.take("/>") || (isOfRelationships && reader.take(">") && takeSelection(reference) &&
                                     reader.take(TRANSFORM_END));
    }

    bool takeSelection(Reference& reference) {
        do {
            const bool isByID = reader.take(SELECTION_BY_ID);
            std::string_view value;
            if (!(isByID || reader.take(SELECTION_BY_TYPE)) || !reader.takeThrough('"', value) ||
                value.empty() || !std::all_of(value.begin(), value.end(), isPlainValueChar) ||
                !reader.take("/>"))
                return false;
            (isByID ? reference.relationshipReferences : reference.relationshipGroupReferences)
                .push_back(widen(value));
        } while (!reader.isAt("</"));
        return true;
    }

    /// The end of the manifest, and the rest of the object.
    bool takeTime() {
        if (!reader.take(TIME_START) || !reader.takeThrough('"', found.propertyTarget) ||
            !isPlainID(found.propertyTarget) || !reader.take(TIME_VALUE))
            return false;
        found.time = reader.takeText();
        return isPlainTime(found.time) && reader.take(OBJECT_END);
    }

    PlainCursor reader;
    ScannedSignature& found;
};

} // namespace

bool scanSignature(std::string_view document, ScannedSignature& found) {
    found = ScannedSignature();
    return SignatureScan(document, found).takeDocument();
}

} // namespace opc::model
