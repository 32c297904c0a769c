#include "content/ContentForm.hpp"

#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "xml/KnownNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/X509Certificate.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace opc::standard_signatures {

namespace {

using namespace std::string_view_literals;
using FormKind = ContentForm::Kind;

constexpr ContentForm CONTENT_FORMS[] = {
    {FormKind::CoreProperties,
     "application/vnd.openxmlformats-package.core-properties+xml",
     ".xml.psmdcp.prop.",
     "coreProperties",
     {"http://schemas.openxmlformats.org/package/2006/metadata/core-properties"}},
    {FormKind::ExtendedProperties,
     "application/vnd.openxmlformats-officedocument.extended-properties+xml",
     ".xml.",
     "Properties",
     {"http://schemas.openxmlformats.org/officeDocument/2006/extended-properties",
      "http://purl.oclc.org/ooxml/officeDocument/extendedProperties"}},
    {FormKind::CustomProperties,
     "application/vnd.openxmlformats-officedocument.custom-properties+xml",
     ".xml.",
     "Properties",
     {"http://schemas.openxmlformats.org/officeDocument/2006/custom-properties",
      "http://purl.oclc.org/ooxml/officeDocument/customProperties"}},
    {FormKind::Thumbnail, "image/png", ".png.", "", {"\x89PNG\r\n\x1A\n"}},
    {FormKind::Thumbnail, "image/jpeg", ".jpeg.jpg.", "", {"\xFF\xD8\xFF"}},
    {FormKind::Thumbnail, "image/gif", ".gif.", "", {"GIF87a", "GIF89a"}},
    {FormKind::Thumbnail, "image/bmp", ".bmp.", "", {"BM"}},
    {FormKind::Thumbnail, "image/tiff", ".tif.tiff.", "", {"II*\0"sv, "MM\0*"sv}},
    {FormKind::Thumbnail, "image/x-emf", ".emf.", "", {"\1\0\0\0"sv}},
    {FormKind::Thumbnail, "image/emf", ".emf.", "", {"\1\0\0\0"sv}}, // RFC 7903
    {FormKind::Thumbnail, "image/x-wmf", ".wmf.", "", {"\xD7\xCD\xC6\x9A", "\1\0\x09\0"sv}},
    {FormKind::Thumbnail, "image/wmf", ".wmf.", "", {"\xD7\xCD\xC6\x9A", "\1\0\x09\0"sv}},
    {FormKind::Origin, ORIGIN_CONTENT_TYPE, "", "", {}},
    {FormKind::Signature, SIGNATURE_CONTENT_TYPE, ".xml.psdsxs.sigs.", "", {}}, // which is read whole
    {FormKind::Certificate, CERTIFICATE_CONTENT_TYPE, ".cer.crt.der.", "", {}}, // which is read whole
};

/// Where some programs put properties.
constexpr std::string_view SERVICES = "/package/services/";

bool isPlain(std::string_view key) {
    return key.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789._-/") == std::string_view::npos;
}

/// Whether properties or a thumbnail lie where programs put them, so that the name means nothing to a program that finds items
/// by their names.
bool isInItsFolder(std::string_view key, FormKind kind) {
    if (key.find('/', 1) == std::string_view::npos)
        return key == "/coreproperties.xml" || key.size() < 4 || key.substr(key.size() - 4) != ".xml";
    const std::string_view folder = key.substr(0, key.rfind('/'));
    const bool isOfPage = kind == FormKind::Thumbnail && folder.substr(folder.rfind('/')) == "/metadata";
    return folder == "/docprops" || folder == "/metadata" || key.substr(0, SERVICES.size()) == SERVICES ||
           isOfPage;
}

bool hasExtension(std::string_view key, std::string_view extensions) {
    const std::size_t dot = key.rfind('.');
    return extensions.empty() ||
           (dot != std::string_view::npos && key.find('/', dot) == std::string_view::npos &&
            extensions.find(std::string(key.substr(dot)) + ".") != std::string_view::npos);
}

/// Whether programs that find items by their names don't take this one for something else.
bool hasNameOfSignatures(std::string_view key) {
    return key.find("sig") != std::string_view::npos || hasExtension(key, ".psdsxs.psdor.psdsor.cer.");
}

/// Reads content to its end.
/// @return the bytes with which it begins, at most this many
std::string readBeginning(InputStream& stream, std::size_t most) {
    std::array<unsigned char, 16384> block; // not cleared
    std::string first;
    while (!stream.isDone()) {
        const std::uint64_t got = stream.read(block.data(), block.size());
        first.append(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(
                                                        std::min<std::uint64_t>(got, most - first.size())));
    }
    return first;
}

/// Whether a file is one certificate, and nothing else.
bool isCertificate(InputStream& stream) {
    constexpr std::size_t MOST_BYTES = 65536;
    const std::string all = readBeginning(stream, MOST_BYTES + 1);
    const std::vector<unsigned char> der(all.begin(), all.end());
    try {
        return all.size() <= MOST_BYTES &&
               bedrock::certificates::X509Certificate(der).getAsByteArray() == der;
    } catch (const bedrock::certificates::CertificateException&) {
        return false;
    }
}

constexpr const char* OTHER_FORM = "hasn't the form of what needn't be";

/// The namespaces of what stands in properties.
constexpr std::string_view VALUES[] = {
    "http://purl.org/dc/elements/1.1/",
    "http://purl.org/dc/terms/",
    "http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes",
    "http://purl.oclc.org/ooxml/officeDocument/docPropsVTypes",
};

/// The local names of what stands in properties: those of Dublin Core, of ECMA-376 Part 2 (core properties), and of Part 1
/// (extended properties, custom properties and variant types).
// clang-format off
constexpr std::string_view ELEMENTS_OF_PROPERTIES[] = {
    "AppVersion", "Application", "Characters", "CharactersWithSpaces", "Company", "DigSig", "DocSecurity",
    "HLinks", "HeadingPairs", "HiddenSlides", "HyperlinkBase", "HyperlinksChanged", "Lines", "LinksUpToDate",
    "MMClips", "Manager", "Notes", "Pages", "Paragraphs", "PresentationFormat", "Properties", "ScaleCrop",
    "SharedDoc", "Slides", "Template", "TitlesOfParts", "TotalTime", "Words", "array", "blob", "bool", "bstr",
    "category", "cf", "clsid", "contentStatus", "contentType", "contributor", "coreProperties", "coverage",
    "created", "creator", "cy", "date", "decimal", "description", "empty", "error", "filetime", "format",
    "i1", "i2", "i4", "i8", "identifier", "int", "keywords", "language", "lastModifiedBy", "lastPrinted",
    "lpstr", "lpwstr", "modified", "null", "oblob", "ostorage", "ostream", "property", "publisher", "r4",
    "r8", "relation", "revision", "rights", "source", "storage", "stream", "subject", "title", "type", "ui1",
    "ui2", "ui4", "ui8", "uint", "value", "variant", "vector", "version", "vstream"};
// clang-format on
static_assert(areSorted(ELEMENTS_OF_PROPERTIES));

/// Compares the root element, and looks for a base to which programs resolve relative links of the document, and for word that
/// they are to be taken from here (ECMA-376 Part 1, HyperlinkBase and HyperlinksChanged).
class PropertiesReader final : public PackageDocument {
public:
    explicit PropertiesReader(const ContentForm& form) : form(form) {}

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        isForeign = isForeign || !isOfProperties(element.namespaceURI()) ||
                    !isAmong(narrow(element.localName()), ELEMENTS_OF_PROPERTIES);
        if (isRoot && isText(element.localName(), form.rootName) && !element.namespaceURI().empty() &&
            (isText(element.namespaceURI(), form.beginning[0]) ||
             isText(element.namespaceURI(), form.beginning[1])))
            defect = nullptr;
        isRoot = false;
        if (depthOfLinks != 0 || element.localName() == u"HyperlinkBase" ||
            element.localName() == u"HyperlinksChanged")
            ++depthOfLinks;
    }
    void onEnd() override {
        if (depthOfLinks == 0 || --depthOfLinks != 0)
            return;
        if (!value.empty() && value != u"false" && value != u"0" && defect == nullptr)
            defect = "says where the links of the document lead";
        value.clear();
    }
    void onText(std::u16string_view text) override {
        constexpr std::size_t ENOUGH = 20;
        for (const char16_t c : text)
            if (depthOfLinks != 0 && value.size() < ENOUGH && c != u' ' && c != u'\t' && c != u'\r' &&
                c != u'\n')
                value += c;
    }

    const char* findDefect() const { return isForeign ? OTHER_FORM : defect; }

private:
    bool isOfProperties(std::u16string_view name) const {
        const auto isName = [name](std::string_view one) { return !one.empty() && isText(name, one); };
        return std::any_of(std::begin(form.beginning), std::end(form.beginning), isName) ||
               std::any_of(std::begin(VALUES), std::end(VALUES), isName);
    }

    const char* defect = OTHER_FORM;
    /// Whether an element isn't one of properties. For programs that find parts by their names it can be content.
    bool isForeign = false;
    const ContentForm& form;
    bool isRoot = true;
    unsigned depthOfLinks = 0; ///< of elements
    std::u16string value;      ///< the beginning of their text
};

} // namespace

const ContentForm* ContentForm::find(Kind kind, std::string_view name, std::string_view contentType) {
    const std::string key = keyOf(name);
    const std::string type = keyOf(contentType);
    const auto* const found =
        std::find_if(std::begin(CONTENT_FORMS), std::end(CONTENT_FORMS), [&](const ContentForm& one) {
            return one.kind == kind && one.contentType == type && hasExtension(key, one.extensions);
        });
    const bool isInPlace = found != std::end(CONTENT_FORMS) && isPlain(key) &&
                           (found->isOfSignatures() ? hasNameOfSignatures(key) : isInItsFolder(key, kind));
    return isInPlace ? found : nullptr;
}

const char* ContentForm::defectIn(InputStream& stream) const {
    if (!rootName.empty()) {
        PropertiesReader reader(*this);
        try {
            reader.read(stream);
        } catch (const model::InvalidXMLDocument&) {
            return OTHER_FORM;
        }
        return reader.findDefect();
    }
    if (kind == Kind::Certificate)
        return isCertificate(stream) ? nullptr : OTHER_FORM;
    const std::string first = readBeginning(stream, 8);
    const auto isBeginning = [&first](std::string_view one) {
        return !one.empty() && first.compare(0, one.size(), one) == 0;
    };
    const bool isRight =
        kind == Kind::Origin
            ? first.empty()
            : beginning[0].empty() || std::any_of(std::begin(beginning), std::end(beginning), isBeginning);
    return isRight ? nullptr : OTHER_FORM;
}

} // namespace opc::standard_signatures
