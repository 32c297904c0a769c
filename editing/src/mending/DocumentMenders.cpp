#include "mending/Menders.hpp"

#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"
#include "zip/src/NameText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iterator>

namespace opc::editing::mending {

namespace {

using inspection::DocumentState;
using inspection::equalsCaseless;
using Stage = Mender::Stage;

const char* const NOT_EDITED = "The document can't be edited";
constexpr std::size_t LARGEST_DOCUMENT = std::size_t{4} << 20;

/// The document that a finding is about: its items, and how far it was read if it is a list of entries.
struct FoundDocument {
    Round::Items items;
    const DocumentState* state = nullptr;
    const RelationshipsView* relationships = nullptr; ///< null for the content types and for other parts
    const PartView* other = nullptr;                  ///< a part that is no relationships part
};

FoundDocument find(const Round& round, const Finding& finding) {
    FoundDocument found;
    if (finding.place.part.empty()) {
        found.items = round.subject.contentTypesItems();
        found.state = &round.subject.contentTypesDocument();
    } else if (const RelationshipsView* const view = round.viewOf(finding)) {
        found.items = view->part->items;
        found.state = &view->document;
        found.relationships = view;
    } else if (const PartView* const part = round.subject.findPart(finding.place.part)) {
        found.items = part->items;
        found.other = part;
    }
    return found;
}

DocumentEditing* edit(Round& round, const FoundDocument& found) {
    return found.relationships != nullptr ? round.relationshipsOf(*found.relationships).document.get()
           : found.other != nullptr       ? round.document(*found.other)
                                          : round.contentTypes();
}

/// The span of the name of the encoding in an XML declaration; of size 0 if there is none.
std::pair<std::size_t, std::size_t> findEncoding(std::string_view text) {
    if (text.substr(0, 5) != "<?xml")
        return {};
    const std::string_view declaration = text.substr(0, text.find("?>"));
    const std::size_t attribute = declaration.find("encoding");
    const std::size_t begin = declaration.find_first_of("\"'", attribute) + 1;
    if (attribute == std::string_view::npos || begin == 0)
        return {};
    const std::size_t end = declaration.find(declaration[begin - 1], begin);
    return end == std::string_view::npos ? std::pair<std::size_t, std::size_t>()
                                         : std::pair(begin, end - begin);
}

/// The text in UTF-8; empty if its encoding isn't known.
std::string transcode(std::string_view text, std::string_view encoding) {
    if (physical::zip::isASCII(text))
        return std::string(text);
    const bool isLatin1 = equalsCaseless(encoding, "ISO-8859-1") || equalsCaseless(encoding, "latin1");
    return isLatin1 ? physical::zip::fromLatin1(text) : std::string();
}

Outcome encode(Round& round, const Finding& finding) {
    const FoundDocument found = find(round, finding);
    const auto text = found.items.empty() ? std::nullopt : round.read(found.items, LARGEST_DOCUMENT);
    if (!text)
        return left(NOT_EDITED);
    const auto [begin, size] = findEncoding(*text);
    std::string encoded = transcode(*text, std::string_view(*text).substr(begin, size));
    if (size == 0 || encoded.empty())
        return left("What its bytes mean isn't known");
    encoded.replace(begin, size, "UTF-8");
    round.setContent(found.items, std::move(encoded));
    return mended("The document is written in UTF-8");
}

Outcome dropDocumentType(Round& round, const Finding& finding) {
    const FoundDocument found = find(round, finding);
    auto text = found.items.empty() ? std::nullopt : round.read(found.items, LARGEST_DOCUMENT);
    const std::size_t begin = text ? text->find("<!DOCTYPE") : std::string::npos;
    if (begin == std::string::npos)
        return left(NOT_EDITED);
    const std::size_t end = text->find('>', begin);
    const std::size_t comment = text->rfind("<!--", begin);
    if (end == std::string::npos || text->find('[', begin) < end ||
        (comment != std::string::npos && text->find("-->", comment) > begin))
        return left("It may define what the document uses");
    text->erase(begin, end + 1 - begin);
    round.setContent(found.items, std::move(*text));
    return mended("The declaration is taken out");
}

std::string escaped(std::string_view value) {
    std::string text;
    for (const char c : value)
        text += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
    return text;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + escaped(value) + '"';
}

std::string writeRelationships(const RelationshipsView& view) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Relationships "
                       "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
    for (const RelationshipView& entry : view.entries) {
        text += "<Relationship";
        text += entry.hasId ? attribute("Id", entry.id) : "";
        text += entry.hasType ? attribute("Type", entry.type) : "";
        text += entry.hasTarget ? attribute("Target", entry.target) : "";
        text += entry.targetMode.empty() ? "" : attribute("TargetMode", entry.targetMode);
        text += "/>";
    }
    return text + "</Relationships>";
}

std::string writeTypes(const std::vector<ContentTypeEntry>& entries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Types "
                       "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">";
    for (const ContentTypeEntry& entry : entries) {
        const bool isDefault = entry.kind == ContentTypeEntry::Kind::Default;
        text += isDefault ? "<Default" : "<Override";
        text += entry.hasKey ? attribute(isDefault ? "Extension" : "PartName", entry.key) : "";
        text += entry.hasContentType ? attribute("ContentType", entry.contentType) : "";
        text += "/>";
    }
    return text + "</Types>";
}

/// The name of an item with the usual letter case of a package's own names.
std::string usualName(const std::string& name, bool isRelationships) {
    if (!isRelationships)
        return "[Content_Types].xml";
    const std::size_t file = name.find_last_of('/') + 1;
    constexpr std::size_t FOLDER = 6;    // "_rels/"
    constexpr std::size_t EXTENSION = 5; // ".rels"
    return name.substr(0, file - FOLDER) + "_rels/" + name.substr(file, name.size() - file - EXTENSION) +
           ".rels";
}

Outcome writePlainly(Round& round, const Finding& finding) {
    const FoundDocument found = find(round, finding);
    if (found.state == nullptr || found.items.empty())
        return left(NOT_EDITED);
    const ArchiveItem& item = *found.items.front();
    const bool isNameUsual = item.name == usualName(item.name, found.relationships != nullptr);
    const bool isFormUsual = found.state->rootPrefix.empty() && !found.state->isUTF16;
    if (!isNameUsual && item.dataOffset && !item.hasPieceName && item.name.find('\\') == std::string::npos)
        round.plan.touch(item).name = usualName(item.name, found.relationships != nullptr);
    if (isFormUsual)
        return mended("The item gets the usual letter case");
    if (!found.state->failure.empty() || !found.state->faults.empty() || found.state->usesMarkupCompatibility)
        return left("The document has more than its entries");
    round.setContent(found.items, found.relationships != nullptr ? writeRelationships(*found.relationships)
                                                                 : writeTypes(round.subject.contentTypes()));
    return mended("The entries are written in the usual form");
}

/// Where the standard was written, test versions of programs had namespaces of other months.
constexpr std::u16string_view OLD_NAMESPACES[] = {
    u"http://schemas.microsoft.com/package/2005/06/relationships",
    u"http://schemas.microsoft.com/package/2005/06/content-types",
};

Outcome renewNamespace(Round& round, const FoundDocument& found) {
    DocumentEditing* const document = edit(round, found);
    if (document == nullptr)
        return left(NOT_EDITED);
    const lenient::Element& root = document->element(0);
    for (const std::u16string_view old : OLD_NAMESPACES)
        for (const lenient::Attribute& declaration : document->markup().attributes(root))
            if (root.namespaceURI == old && declaration.isDeclaration() && declaration.namespaceURI == old) {
                const std::size_t end = declaration.span.end - 1;
                document->replace({end - declaration.rawValue.size(), end},
                                  u"http://schemas.openxmlformats.org/package/2006/" +
                                      std::u16string(old.substr(old.rfind(u'/') + 1)));
            }
    if (!document->isChanged())
        return left("Only who wrote the document knows what is meant");
    return mended("The document gets the namespace of the standard");
}

bool isKnown(const lenient::Element& element, const lenient::Attribute& attribute) {
    using Names = std::initializer_list<std::u16string_view>;
    const Names relationship = {u"Id", u"Type", u"Target", u"TargetMode"};
    const Names byExtension = {u"Extension", u"ContentType"};
    const Names byName = {u"PartName", u"ContentType"};
    const Names none = {};
    const Names& names = element.localName == u"Relationship" ? relationship
                         : element.localName == u"Default"    ? byExtension
                         : element.localName == u"Override"   ? byName
                                                              : none;
    return attribute.namespaceURI.empty() &&
           std::find(names.begin(), names.end(), attribute.localName) != names.end();
}

bool isOfXML(const lenient::Attribute& attribute) {
    return attribute.namespaceURI == inspection::XML_NAMESPACE ||
           attribute.namespaceURI == inspection::SCHEMA_INSTANCE;
}

/// Takes the attributes out that no reader of the document knows.
Outcome dropAttributes(DocumentEditing& document,
                       bool (*counts)(const lenient::Element&, const lenient::Attribute&)) {
    bool isAny = false;
    const std::vector<lenient::Element>& elements = document.markup().elements();
    for (std::size_t i = 0; i < elements.size(); ++i)
        for (const lenient::Attribute& attribute : document.markup().attributes(elements[i]))
            if (!attribute.isDeclaration() && counts(elements[i], attribute)) {
                document.removeAttribute(i, attribute);
                isAny = true;
            }
    return isAny ? mended("The attribute is taken out") : left(NOT_EDITED);
}

Outcome dropForeign(Round& round, const FoundDocument& found, const Finding& finding) {
    using Kind = inspection::DocumentFault::Kind;
    const auto& faults = found.state->faults;
    const auto fault =
        std::find_if(faults.begin(), faults.end(), [&finding](const inspection::DocumentFault& one) {
            return one.line == finding.place.line && one.column == finding.place.column;
        });
    DocumentEditing* const document = edit(round, found);
    if (document == nullptr || fault == faults.end() || fault->kind != Kind::Attribute)
        return left("Only who wrote it knows what is meant");
    return dropAttributes(
        *document, [](const lenient::Element& element, const lenient::Attribute& attribute) {
            return element.depth <= 1 && !isOfXML(attribute) && !isKnown(element, attribute);
        });
}

Outcome correctMode(const EditedEntry& entry) {
    const std::string mode(inspection::trimmed(entry.view().targetMode));
    const char* const known = equalsCaseless(mode, "External")   ? "External"
                              : equalsCaseless(mode, "Internal") ? "Internal"
                                                                 : nullptr;
    if (known == nullptr)
        return left("Whether the target is in the package isn't known");
    return mended(std::string("The TargetMode is written ") + known, {entry.set(u"TargetMode", known)});
}

Outcome obeySchema(Round& round, const Finding& finding) {
    const FoundDocument found = find(round, finding);
    if (found.state == nullptr || !found.state->failure.empty())
        return left("Only who wrote the document knows what is meant");
    constexpr std::string_view NAMESPACES[] = {
        "http://schemas.openxmlformats.org/package/2006/relationships",
        "http://schemas.openxmlformats.org/package/2006/content-types"};
    if (found.state->rootNamespace != NAMESPACES[found.relationships != nullptr ? 0 : 1])
        return renewNamespace(round, found);
    if (const EditedEntry entry = round.entryOf(finding)) {
        const std::string& mode = entry.view().targetMode;
        if (!mode.empty() && mode != "Internal" && mode != "External")
            return correctMode(entry);
    }
    return dropForeign(round, found, finding);
}

Outcome dropXMLAttributes(Round& round, const Finding& finding) {
    DocumentEditing* const document = edit(round, find(round, finding));
    if (document == nullptr)
        return left(NOT_EDITED);
    const bool isOfCore = !finding.place.part.empty() && round.viewOf(finding) == nullptr;
    return isOfCore
               ? dropAttributes(*document,
                                [](const lenient::Element&, const lenient::Attribute& attribute) {
                                    return isOfXML(attribute) && attribute.localName != u"lang" &&
                                           attribute.localName != u"type";
                                })
               : dropAttributes(*document, [](const lenient::Element&, const lenient::Attribute& attribute) {
                     return isOfXML(attribute);
                 });
}

constexpr Mender DOCUMENT_MENDERS[] = {
    {"M1.17", Stage::Whole, "Writes the document in UTF-8 if it is in ASCII or ISO-8859-1", encode},
    {"M1.18", Stage::Whole, "Takes the declaration out if it defines nothing", dropDocumentType},
    {"M1.20", Stage::Entries,
     "Writes the standard's namespace in place of that of 2005/06, corrects the letter case of TargetMode, "
     "and takes "
     "unknown attributes out of content types and relationships",
     obeySchema},
    {"M1.21", Stage::Entries, "Takes the attribute out", dropXMLAttributes},
    {"SEC-36", Stage::Whole, "Writes the entries in UTF-8 and without prefixes, and renames the item",
     writePlainly},
};

} // namespace

MenderRows documentMenders() {
    return {DOCUMENT_MENDERS, std::size(DOCUMENT_MENDERS)};
}

} // namespace opc::editing::mending
