#include "RelationshipsEdit.hpp"

#include "DocumentEdits.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <map>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

namespace {

using namespace model::vocabulary::relationships;

std::vector<ReadRelationship> readWritten(const Bytes& written) {
    const auto text = DocumentText::decode(written);
    if (!text)
        throw Exception("The document is not in UTF-8.");
    const Markup markup(text->text());
    std::vector<ReadRelationship> relationships;
    for (std::size_t i = 1; i < markup.elements().size(); ++i)
        relationships.push_back(readRelationship(markup, i));
    return relationships;
}

/// Changes the target where it stands.
void retarget(DocumentEdits& edits, const Markup& markup, const ReadRelationship& old,
              const ReadRelationship& wanted) {
    const Element& element = markup.elements()[old.element];
    if (old.target != wanted.target)
        edits.setValue(*markup.findAttribute(element, u"", TARGET), wanted.target);
    if (old.isExternal == wanted.isExternal)
        return;
    const std::u16string_view mode = wanted.isExternal ? EXTERNAL.wide() : INTERNAL.wide();
    if (const Attribute* const attribute = markup.findAttribute(element, u"", TARGET_MODE))
        edits.setValue(*attribute, mode);
    else
        edits.addValue(element, TARGET_MODE, mode);
}

/// Before an element that would otherwise count instead, or else after all others.
void add(DocumentEdits& edits, const ReadRelationship& relationship, const Element* next) {
    DocumentEdits::NewAttributes attributes = {{ID, relationship.id},
                                               {model::vocabulary::relationships::TYPE, relationship.type},
                                               {TARGET, relationship.target}};
    if (relationship.isExternal)
        attributes.emplace_back(TARGET_MODE, EXTERNAL);
    if (next != nullptr)
        edits.insert(*next, RELATIONSHIP, attributes);
    else
        edits.append(RELATIONSHIP, attributes);
}

} // namespace

std::optional<Bytes> editRelationships(const RelationshipsDocument& document, const Bytes& written) {
    const std::vector<ReadRelationship> wanted = readWritten(written);
    std::map<std::u16string_view, std::size_t> places;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        places.emplace(wanted[i].id, i);
    std::vector<bool> isThere(wanted.size());
    DocumentEdits edits(document.document());
    for (const ReadRelationship& relationship : document.relationships()) {
        const Markup& markup = document.document().markup();
        const auto place = places.find(relationship.id);
        if (place == places.end() || wanted[place->second].type != relationship.type) {
            edits.remove(markup.elements()[relationship.element]);
            continue;
        }
        isThere[place->second] = true;
        if (!wanted[place->second].isEqual(relationship))
            retarget(edits, markup, relationship, wanted[place->second]);
    }
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (!isThere[i])
            add(edits, wanted[i], wanted[i].isOfCoreProperties() ? document.secondCoreProperties() : nullptr);
    if (edits.areNone())
        return std::nullopt;
    return edits.apply();
}

} // namespace opc::physical::lenient
