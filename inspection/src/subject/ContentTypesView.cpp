#include "subject/ContentTypesView.hpp"

#include "hash/TextHash.hpp"
#include "subject/EntryList.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/model/XmlLimits.hpp>

namespace opc::inspection {

namespace {

const EntryListKind KIND = {u"http://schemas.openxmlformats.org/package/2006/content-types",
                            u"Types",
                            {{u"Default", {u"Extension", u"ContentType"}, false},
                             {u"Override", {u"PartName", u"ContentType"}, false}},
                            model::XmlLimits().contentTypes.elements};

/// Most readers find the part of a name that lacks its slash.
std::string withSlash(std::string_view name) {
    return (name.substr(0, 1) == "/" ? "" : "/") + std::string(name);
}

class ContentTypesReader final : public EntryList {
public:
    ContentTypesReader(DocumentState& state, std::vector<ContentTypeEntry>& entries)
        : EntryList(state, KIND), entries(entries) {}

private:
    void onEntry(std::size_t index, const model::XmlElement& element, const model::XmlPlace& place) override {
        const std::u16string_view key = element.valueOf({}, KIND.entries[index].attributes[0]);
        const std::u16string_view type = element.valueOf({}, KIND.entries[index].attributes[1]);
        entries.push_back({index == 0 ? ContentTypeEntry::Kind::Default : ContentTypeEntry::Kind::Override,
                           narrow(key), narrow(type), key.data() != nullptr, type.data() != nullptr,
                           place.line, place.column});
    }

    std::vector<ContentTypeEntry>& entries;
};

} // namespace

ContentTypesView::ContentTypesView(const Archive& archive, PartTable& table) {
    if (table.contentTypes().empty())
        return;
    ContentTypesReader reader(document, entries);
    readDocument(archive, table.contentTypes(), document, reader);
    giveTypes(table.parts());
}

void ContentTypesView::giveTypes(std::vector<PartView>& parts) const {
    std::unordered_map<std::string, const ContentTypeEntry*, TextHash> overrides;
    std::unordered_map<std::string, const ContentTypeEntry*, TextHash> defaults;
    for (const ContentTypeEntry& entry : entries) {
        if (entry.kind == ContentTypeEntry::Kind::Override)
            overrides.emplace(keyOfName(withSlash(trimmed(entry.key))), &entry);
        else
            defaults.emplace(toLowerASCII(entry.key), &entry);
    }
    for (PartView& part : parts) {
        if (const auto found = overrides.find(keyOfName(part.name)); found != overrides.end()) {
            part.contentType = found->second->contentType;
            part.typeFrom = PartView::TypeFrom::Override;
        } else if (const auto byExtension = defaults.find(toLowerASCII(part.extension()));
                   byExtension != defaults.end()) {
            part.contentType = byExtension->second->contentType;
            part.typeFrom = PartView::TypeFrom::Default;
        }
    }
}

} // namespace opc::inspection
