#include "mending/CertainTypes.hpp"
#include "mending/Menders.hpp"

#include "checks/contenttypes/TypeGrammar.hpp"
#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"

#include <iterator>

namespace opc::editing::mending {

namespace {

using lenient::Attribute;
using lenient::Element;
using Stage = Mender::Stage;

constexpr std::u16string_view TERMS = u"http://purl.org/dc/terms/";
const char* const PROPERTIES_NOT_EDITED = "The document can't be edited";

DocumentEditing* documentOf(Round& round, const Finding& finding) {
    const PartView* const part = round.subject.findPart(finding.place.part);
    return part == nullptr ? nullptr : round.document(*part);
}

/// Calls `visit` with the index of each element, and the element.
template <typename Visit>
Outcome editEach(Round& round, const Finding& finding, const char* done, const Visit& visit) {
    DocumentEditing* const document = documentOf(round, finding);
    if (document == nullptr)
        return left(PROPERTIES_NOT_EDITED);
    for (std::size_t i = 0; i < document->markup().elements().size(); ++i)
        visit(*document, i, document->element(i));
    return mended(done, {{Change::Kind::Mended, finding.place.part, {}, {}, {}}});
}

void removeAttributes(DocumentEditing& document, std::size_t index, std::u16string_view namespaceURI,
                      std::u16string_view name) {
    for (const Attribute& attribute : document.markup().attributes(document.element(index)))
        if (attribute.is(namespaceURI, name))
            document.removeAttribute(index, attribute);
}

/// Elements of the namespace would lose their meaning.
Outcome dropCompatibility(Round& round, const Finding& finding) {
    DocumentEditing* const document = documentOf(round, finding);
    if (document == nullptr)
        return left(PROPERTIES_NOT_EDITED);
    for (const Element& element : document->markup().elements())
        if (element.namespaceURI == inspection::MARKUP_COMPATIBILITY)
            return left("Elements use it: only a person knows which alternative is meant");
    return editEach(round, finding, "The namespace is taken out",
                    [](DocumentEditing& edited, std::size_t index, const Element& element) {
                        for (const Attribute& attribute : edited.markup().attributes(element))
                            if (attribute.namespaceURI == inspection::MARKUP_COMPATIBILITY)
                                edited.removeAttribute(index, attribute);
                    });
}

bool isTime(const Element& element) {
    return element.is(TERMS, u"created") || element.is(TERMS, u"modified");
}

Outcome dropRefinements(Round& round, const Finding& finding) {
    return editEach(round, finding, "The element is taken out",
                    [](DocumentEditing& document, std::size_t index, const Element& element) {
                        if (element.namespaceURI == TERMS && !isTime(element))
                            document.remove(index);
                    });
}

Outcome dropLanguages(Round& round, const Finding& finding) {
    return editEach(round, finding, "The attribute is taken out",
                    [](DocumentEditing& document, std::size_t index, const Element& element) {
                        if (element.localName != u"keywords" && element.localName != u"value")
                            removeAttributes(document, index, inspection::XML_NAMESPACE, u"lang");
                    });
}

void writeType(DocumentEditing& document, std::size_t index, const Element& element) {
    std::u16string prefix(element.prefix);
    if (prefix.empty()) {
        prefix = u"dcterms";
        document.set(index, u"xmlns:dcterms", std::u16string(TERMS));
    }
    document.set(index, u"xmlns:xsi", std::u16string(inspection::SCHEMA_INSTANCE));
    document.set(index, u"xsi:type", prefix + u":W3CDTF");
}

/// Also declares the prefixes, wherever they were declared before.
Outcome correctTypes(Round& round, const Finding& finding) {
    return editEach(round, finding, "The types of times are written",
                    [](DocumentEditing& document, std::size_t index, const Element& element) {
                        const Attribute* const type =
                            document.markup().findAttribute(element, inspection::SCHEMA_INSTANCE, u"type");
                        if (isTime(element) && type != nullptr && type->value() == u"dcterms:W3CDTF" &&
                            element.prefix == u"dcterms")
                            return;
                        removeAttributes(document, index, inspection::SCHEMA_INSTANCE, u"type");
                        if (isTime(element))
                            writeType(document, index, element);
                    });
}

/// Of elements that stand twice with the same text, the later ones go.
Outcome dropRepeatedElement(Round& round, const Finding& finding) {
    DocumentEditing* const document = documentOf(round, finding);
    if (document == nullptr)
        return left(PROPERTIES_NOT_EDITED);
    std::map<std::pair<std::u16string_view, std::u16string_view>, std::u16string_view> first;
    bool isAny = false;
    for (std::size_t i = 1; i < document->markup().elements().size(); ++i) {
        const Element& element = document->element(i);
        if (element.depth != 1)
            continue;
        const std::u16string_view content =
            std::u16string_view(document->text())
                .substr(element.startTag.end, element.contentEnd - element.startTag.end);
        const auto [place, isNew] =
            first.emplace(std::pair(element.namespaceURI, element.localName), content);
        if (isNew || place->second != content)
            continue;
        document->remove(i);
        isAny = true;
    }
    return isAny ? mended("What stands twice is taken out",
                          {{Change::Kind::Mended, finding.place.part, {}, {}, {}}})
                 : left("Only a person knows which value is meant");
}

Outcome dropRelationshipsOf(Round& round, const Finding& finding) {
    const RelationshipsView* const view = round.subject.relationshipsOf(finding.place.part);
    if (view == nullptr)
        return left(PROPERTIES_NOT_EDITED);
    return mended("The relationships part is taken out", {round.dropPart(*view->part)});
}

Outcome retype(Round& round, const PartView& part, const std::string& expected) {
    const std::string type = certainType(round.subject, part, round.fileName);
    if (type.empty() || type.compare(0, expected.size(), expected) != 0)
        return left("The part " + part.name + " holds something else");
    if (!round.setType(part, type))
        return left("The content types stream can't be edited");
    Change change{Change::Kind::ContentTypeChanged, part.name, {}, {}, {}};
    change.before.text = part.contentType;
    change.after.text = type;
    return mended("The part " + part.name + " gets the type " + type, {change});
}

Outcome removeUnused(Round& round, const EditedEntry& entry) {
    if (round.isUsed(*entry.relationships->view, entry.view().id))
        return left("The markup of the part names the relationship");
    return mended("The relationship is taken out", {entry.remove()});
}

/// One relationship too many, one that leads nowhere, or a part with another type.
Outcome correctCore(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(PROPERTIES_NOT_EDITED);
    const bool isOfPackage = entry.relationships->view->source == "/";
    const bool isTheOne = isOfPackage && entry.relationships->core == entry.index;
    if (!isTheOne && isOfPackage && entry.view().isExternal && !entry.relationships->core)
        return left("Only a person knows whether they may lie outside the package");
    if (!isTheOne)
        return removeUnused(round, entry);
    const PartView& part = *entry.view().part;
    constexpr std::string_view TYPE = inspection::CORE_PROPERTIES_TYPE;
    return part.mediaType() == TYPE ? mended("The relationship is the only one then")
                                    : retype(round, part, std::string(TYPE));
}

Outcome correctThumbnail(Round& round, const Finding& finding) {
    const EditedEntry entry = round.entryOf(finding);
    if (!entry)
        return left(PROPERTIES_NOT_EDITED);
    if (entry.view().isExternal)
        return left("Only a person knows whether it may lead out of the package");
    if (entry.view().part != nullptr)
        return retype(round, *entry.view().part, "image/");
    return removeUnused(round, entry);
}

constexpr Mender PROPERTY_MENDERS[] = {
    {"M4.1", Stage::Within,
     "Takes a relationship out that leads nowhere or is one too many, or gives the part its type; the part "
     "of a "
     "relationship too many stays",
     correctCore},
    {"M4.2", Stage::Within, "Takes the namespace out if no element uses it", dropCompatibility},
    {"M4.3", Stage::Within, "Takes the element out", dropRefinements},
    {"M4.4", Stage::Within, "Takes the attribute out", dropLanguages},
    {"M4.5", Stage::Within, "Writes the types of times, and takes others out", correctTypes},
    {"CORE-SCHEMA", Stage::Within, "Takes an element out that stands twice with the same value",
     dropRepeatedElement},
    {"P1-2", Stage::Within, "Takes the relationships part out", dropRelationshipsOf},
    {"M5.1", Stage::Within, "Takes a relationship out that leads nowhere, or gives the image its type",
     correctThumbnail},
};

} // namespace

MenderRows propertyMenders() {
    return {PROPERTY_MENDERS, std::size(PROPERTY_MENDERS)};
}

} // namespace opc::editing::mending
