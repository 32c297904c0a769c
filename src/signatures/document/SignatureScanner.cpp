#include "signatures/document/SignatureScanner.hpp"

#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainURI.hpp"

#include <algorithm>

namespace opc::model {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c);
}

/// What is written into an attribute as it is.
constexpr bool isPlainValueChar(char c) {
    return c >= ' ' && c <= '~' && c != '<' && c != '>' && c != '&' && c != '"';
}

bool isPlainContentType(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return isAlphanumeric(c) || c == '-' || c == '.' || c == '_' || c == '+' || c == '/';
    });
}

/// Whether an attribute, as it is written, is a URI without references and blanks.
bool isPlainReference(std::string_view written) {
    return isPlainURI(written) && written.find_first_of("& ") == std::string_view::npos;
}

/// Whether a text is the URI of a signed part: its name and its content type.
bool isPlainPartReference(std::string_view text) {
    constexpr std::string_view QUERY = "?ContentType=";
    const std::size_t path = std::min(text.find('?'), text.size());
    return path > 0 && text.front() == '/' && isPlainReference(text.substr(0, path)) &&
           text.compare(path, QUERY.size(), QUERY) == 0 &&
           isPlainContentType(text.substr(path + QUERY.size()));
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
    if (isDigit(c))
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
    return std::all_of(text.begin(), text.end(), [](char c) { return base64Value(c) < 64; }) &&
           (base64Value(text.back()) & unusedBits) == 0;
}

/// Goes through the document once. Each operation takes a piece, if it stands there and is plain; after one
/// that doesn't the document isn't recognised.
class Scan {
public:
    Scan(std::string_view document, ScannedSignature& result) : text(document), found(result) {}

    bool takeDocument() {
        return take(R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>)") && takeSignature() &&
               position == text.size();
    }

private:
    bool isAt(std::string_view expected) const {
        return text.compare(position, expected.size(), expected) == 0;
    }

    bool take(std::string_view expected) {
        if (!isAt(expected))
            return false;
        position += expected.size();
        return true;
    }

    /// Everything up to a character, which is taken too.
    bool takeUpTo(char end, std::string_view& taken) {
        const std::size_t length = std::min(text.find(end, position), text.size()) - position;
        taken = text.substr(position, length);
        position += length;
        return position++ < text.size();
    }

    bool takeBase64(std::string_view start, std::string_view& value, std::string_view end) {
        return take(start) && takeUpTo('<', value) && isPlainBase64(value) && take(end);
    }

    bool takeAlgorithm(std::string_view start, std::string_view& value) {
        return take(start) && takeUpTo('"', value) && isPlainAlgorithm(value);
    }

    bool takeSignature() {
        return take("<Signature") && takeID() && take(R"( xmlns="http://www.w3.org/2000/09/xmldsig#">)") &&
               takeSignedInfo() && takeBase64("<SignatureValue>", found.signatureValue, "/SignatureValue>") &&
               (!take("<KeyInfo>") || takeKey()) && takeObject() && take("</Signature>");
    }

    bool takeID() {
        return !take(R"( Id=")") || (takeUpTo('"', found.id) && isPlainID(found.id) &&
                                     found.id != "idPackageObject" && found.id != "idSignatureTime");
    }

    bool takeSignedInfo() {
        const std::size_t begin = position;
        const bool taken =
            take(R"(<SignedInfo xmlns="http://www.w3.org/2000/09/xmldsig#">)") &&
            takeAlgorithm(R"(<CanonicalizationMethod Algorithm=")", found.canonicalizationMethod) &&
            takeAlgorithm(R"(/><SignatureMethod Algorithm=")", found.signatureMethod) &&
            take(R"(/><Reference Type="http://www.w3.org/2000/09/xmldsig#Object" URI="#idPackageObject">)") &&
            takeDigest(found.objectReference) && take("</SignedInfo>");
        found.objectReference.referenceURI = URI(u"#idPackageObject");
        found.objectReference.referenceType = vocabulary::OBJECT_TYPE;
        found.signedInfo = text.substr(begin, position - begin);
        return taken;
    }

    /// The end of a reference.
    bool takeDigest(Reference& reference) {
        std::string_view method;
        std::string_view value;
        if (!takeAlgorithm(R"(<DigestMethod Algorithm=")", method) ||
            !takeBase64("/><DigestValue>", value, "/DigestValue></Reference>"))
            return false;
        reference.digestMethod = widen(method);
        reference.digestValue = widen(value);
        return true;
    }

    bool takeKey() {
        if (take("<X509Data>"))
            return takeCertificates() && take("</X509Data></KeyInfo>");
        return takeBase64("<KeyValue><RSAKeyValue><Modulus>", found.modulus, "/Modulus>") &&
               takeBase64("<Exponent>", found.exponent, "/Exponent></RSAKeyValue></KeyValue></KeyInfo>");
    }

    bool takeCertificates() {
        do {
            if (!takeBase64("<X509Certificate>", found.certificates.emplace_back(), "/X509Certificate>"))
                return false;
        } while (isAt("<X509Certificate>"));
        return true;
    }

    bool takeObject() {
        const std::size_t begin = position;
        const bool taken =
            take(R"(<Object Id="idPackageObject" xmlns:pds="http://schemas.openxmlformats.org/)"
                 R"(package/2006/digital-signature"><Manifest>)") &&
            takeReferences() && take("</Manifest>") && takeTime() && take("</Object>");
        found.object = text.substr(begin, position - begin);
        return taken;
    }

    bool takeReferences() {
        do {
            if (!takeReference(found.manifestReferences.emplace_back()))
                return false;
        } while (isAt("<Reference"));
        return true;
    }

    bool takeReference(Reference& reference) {
        std::string_view uri;
        if (!take(R"(<Reference URI=")") || !takeUpTo('"', uri) || !isPlainPartReference(uri) || !take(">"))
            return false;
        reference.referenceURI = URI(widen(uri));
        return (!take("<Transforms>") || takeTransforms(reference)) && takeDigest(reference);
    }

    bool takeTransforms(Reference& reference) {
        do {
            if (!takeTransform(reference))
                return false;
        } while (isAt("<Transform "));
        return take("</Transforms>");
    }

    bool takeTransform(Reference& reference) {
        std::string_view algorithm;
        if (!takeAlgorithm(R"(<Transform Algorithm=")", algorithm))
            return false;
        std::u16string transform = widen(algorithm);
        const bool isOfRelationships = vocabulary::isRelationshipTransform(transform);
        if (!isOfRelationships)
            reference.transforms.push_back(std::move(transform));
        return take("/>") ||
               (isOfRelationships && take(">") && takeSelection(reference) && take("</Transform>"));
    }

    bool takeSelection(Reference& reference) {
        do {
            const bool isByID = take(R"(<pds:RelationshipReference SourceId=")");
            std::string_view value;
            if (!(isByID || take(R"(<pds:RelationshipGroupReference SourceType=")")) ||
                !takeUpTo('"', value) || value.empty() ||
                !std::all_of(value.begin(), value.end(), isPlainValueChar) || !take("/>"))
                return false;
            (isByID ? reference.relationshipReferences : reference.relationshipGroupReferences)
                .push_back(widen(value));
        } while (isAt("<pds:"));
        return true;
    }

    bool takeTime() {
        return take(R"(<SignatureProperties><SignatureProperty Id="idSignatureTime" Target="#)") &&
               takeUpTo('"', found.propertyTarget) && isPlainID(found.propertyTarget) &&
               take("><pds:SignatureTime><pds:Format>YYYY-MM-DDThh:mmTZD</pds:Format><pds:Value>") &&
               takeUpTo('<', found.time) && isPlainTime(found.time) &&
               take("/pds:Value></pds:SignatureTime></SignatureProperty></SignatureProperties>");
    }

    std::string_view text;
    std::size_t position = 0;
    ScannedSignature& found;
};

} // namespace

bool scanSignature(std::string_view document, ScannedSignature& found) {
    found = ScannedSignature();
    return Scan(document, found).takeDocument();
}

} // namespace opc::model
