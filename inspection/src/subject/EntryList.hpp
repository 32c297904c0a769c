#pragma once

#include "subject/DocumentReading.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// The names in a kind of document that is a list of entries.
struct EntryListKind {
    std::u16string_view namespaceURI;
    std::u16string_view root;

    struct Entry {
        std::u16string_view name;
        std::vector<std::u16string_view> attributes; ///< that it may have
        bool mayHaveText;
    };
    std::vector<Entry> entries; ///< what the root may contain
    std::uint64_t mostEntries;
};

/// Gets a document whose root contains a list of entries: a content types stream, or a relationships part. Where the
/// document breaks its schema, that is noted, and reading goes on.
///
/// Markup compatibility is processed as by a reader that understands the document's own namespace alone: it passes over
/// `Choice`, reads `Fallback`, and passes over what is ignorable.
class EntryList : public model::XmlEvents {
public:
    /// @param state, kind  must outlive this object
    EntryList(DocumentState& state, const EntryListKind& kind) : state(state), kind(kind) {}

protected:
    /// Called for each entry.
    /// @param index  into the kind's entries
    virtual void onEntry(std::size_t index, const model::XmlElement& element,
                         const model::XmlPlace& place) = 0;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) final;
    void onEnd() final;
    void onText(std::u16string_view text) final;

    void startRoot(const model::XmlElement& element);
    void startInside(const model::XmlElement& element);
    void checkAttributes(const model::XmlElement& element, const std::vector<std::u16string_view>& allowed);
    void addFault(DocumentFault::Kind fault, std::u16string_view namespaceURI, std::u16string_view name);
    bool isIgnorable(std::u16string_view namespaceURI) const;

    DocumentState& state;
    const EntryListKind& kind;
    std::size_t depth = 0;
    std::size_t skipped = 0; ///< the depth of the element whose content doesn't count; 0 if none
    bool mayHaveText = false;
    std::uint64_t entries = 0;
    model::XmlPlace place{1, 1};
    std::vector<std::u16string> ignorable; ///< namespaces
};

} // namespace opc::inspection
