#include "ContentTypeChanges.hpp"

#include "DocumentEdits.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/ContentTypeRules.hpp>
#include <opc/model/ContentTypesVocabulary.hpp>

#include <map>

namespace opc::physical::lenient {

namespace {

using namespace model::vocabulary::content_types;
using Kind = ContentTypeEntry::Kind;

bool areSame(const std::u16string& left, const std::u16string& right) {
    return left == right || model::ContentType(left).toString() == model::ContentType(right).toString();
}

/// The document that must change.
struct Original {
    explicit Original(const Bytes& bytes) : document(bytes), entries(document.markup(), rules) {}

    model::ContentTypeRules rules;
    const Document document;
    const ContentTypeEntries entries;
};

/// A document that the model has written, so it need not be checked.
struct Wanted {
    explicit Wanted(const Bytes& bytes)
        : text(*DocumentText::decode(bytes)), markup(text.text()), entries(markup, rules) {}

    model::ContentTypeRules rules;
    const DocumentText text;
    const Markup markup;
    const ContentTypeEntries entries;
};

class ContentTypeChanges {
public:
    ContentTypeChanges(const Original& old, const Wanted& changed, const ContentTypesContext& context)
        : old(old), changed(changed), context(context), edits(old.document) {}

    /// @param parts  gives the parts that aren't hidden
    std::optional<Bytes> carry(const std::function<std::vector<std::u16string>()>& parts) {
        for (const ContentTypeEntry& entry : changed.entries.all()) {
            if (entry.standing != ContentTypeEntry::Standing::Counts)
                continue;
            if (entry.kind == Kind::Default && isWithheld(entry.key))
                withheld.emplace(entry.key, entry.contentType);
            else
                carry(entry.kind, entry.key, spelling(entry), entry.contentType);
        }
        if (!withheld.empty())
            for (const std::u16string& name : parts())
                carryWithheld(name);
        removeGone();
        if (edits.areNone())
            return std::nullopt;
        return edits.apply();
    }

private:
    bool isWithheld(const std::u16string& extension) const {
        return context.withheld.count(extension) > 0 && old.entries.find(Kind::Default, extension) == nullptr;
    }

    std::u16string spelling(const ContentTypeEntry& entry) const {
        const Element& element = changed.markup.elements()[entry.element];
        return changed.markup.findAttribute(element, {}, ContentTypeEntry::keyName(entry.kind))->value();
    }

    /// Gives a part its own entry instead of the Default that it uses.
    void carryWithheld(const std::u16string& name) {
        const auto common = withheld.find(toLowerASCIIString(detail::getExtension(name)));
        const std::u16string key = toLowerASCIIString(name);
        if (common == withheld.end() || changed.entries.find(Kind::Override, key) != nullptr)
            return;
        carry(Kind::Override, key, name, common->second);
        onTheirOwn.insert(key);
    }

    void carry(Kind kind, const std::u16string& key, const std::u16string& name,
               const std::u16string& contentType) {
        const ContentTypeEntry* const first = old.entries.findFirst(kind, key);
        const ContentTypeEntry* const counting = old.entries.find(kind, key);
        if (counting == nullptr) {
            edits.append(ContentTypeEntry::elementName(kind),
                         {{ContentTypeEntry::keyName(kind), name},
                          {model::vocabulary::content_types::CONTENT_TYPE, contentType}});
        } else {
            const bool isSame = areSame(counting->contentType, contentType);
            const bool isRenewed = kind == Kind::Override && context.renewed.count(key) > 0;
            if (isSame && !isRenewed)
                return;
            if (!isSame)
                setValue(*counting, model::vocabulary::content_types::CONTENT_TYPE, contentType);
            if (counting->lacksSlash)
                setValue(*counting, PART_NAME, name);
        }
        if (first == nullptr)
            return;
        for (const ContentTypeEntry& entry : old.entries.groupOf(*first))
            if (&entry != counting)
                edits.remove(elementOf(entry));
    }

    /// Removes all entries of parts whose entry the model has removed, and entries that were left out if their part
    /// is new or deleted.
    void removeGone() {
        const std::vector<ContentTypeEntry>& all = old.entries.all();
        for (std::size_t i = 0; i < all.size();) {
            const ContentTypeEntry& first = all[i];
            const ContentTypeEntries::Group group = old.entries.groupOf(first);
            i += static_cast<std::size_t>(group.last - group.first);
            const bool counted =
                first.standing == ContentTypeEntry::Standing::Counts || context.renewed.count(first.key) > 0;
            if (first.kind == Kind::Override && counted && onTheirOwn.count(first.key) == 0 &&
                changed.entries.find(Kind::Override, first.key) == nullptr)
                for (const ContentTypeEntry& gone : group)
                    edits.remove(elementOf(gone));
        }
    }

    const Element& elementOf(const ContentTypeEntry& entry) const {
        return old.document.markup().elements()[entry.element];
    }

    void setValue(const ContentTypeEntry& entry, std::u16string_view attribute, const std::u16string& value) {
        edits.setValue(*old.document.markup().findAttribute(elementOf(entry), {}, attribute), value);
    }

    const Original& old;
    const Wanted& changed;
    const ContentTypesContext& context;
    DocumentEdits edits;
    std::map<std::u16string, std::u16string> withheld; ///< content types of the Defaults that aren't written
    std::set<std::u16string> onTheirOwn;               ///< names of the parts that would use those Defaults
};

} // namespace

std::optional<Bytes> carryContentTypes(const Bytes& original, const Bytes& wanted,
                                       const ContentTypesContext& context,
                                       const std::function<std::vector<std::u16string>()>& parts) {
    const Original old(original);
    const Wanted changed(wanted);
    return ContentTypeChanges(old, changed, context).carry(parts);
}

} // namespace opc::physical::lenient
