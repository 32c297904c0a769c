#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace opc::model {

/// The entries of a content types stream: `Default` by extension and `Override` by part name.
///
/// A `Default` counts the parts of the open package that use it. One that no part uses isn't written. Extensions are
/// in ASCII lower case and without the dot.
class ContentTypeMap {
public:
    struct DefaultEntry {
        ContentType contentType;
        std::uint64_t references = 0;
    };
    using Defaults = std::map<std::u16string, DefaultEntry>;
    using Overrides = std::map<PartName, ContentType, std::less<>>; // compares with texts too

    /// Whether the stream lacks changes of these entries. True at first.
    bool isDirty() const noexcept { return dirty; }
    void setDirty(bool value) noexcept { dirty = value; }
    void clear();

    /// Keeps what the stream counts towards the limits of the package.
    void keepShare(DocumentShare value) const { share = std::move(value); }

    /// How many elements of the stream were ignored.
    std::size_t countUnread() const noexcept { return unread; }
    void setUnread(std::size_t count) noexcept { unread = count; }

    /// Whether an element was ignored because it contradicts an earlier entry.
    bool isContradicted() const noexcept { return contradicted; }

    /// An existing entry doesn't change.
    void addDefault(const std::u16string& extension, const ContentType& contentType);
    void addOverride(const PartName& name, const ContentType& contentType);

    /// Adds an entry, or changes the existing one.
    void setOverride(const PartName& name, const ContentType& contentType);

    bool hasDefault(const std::u16string& extension) const { return defaults.count(extension) != 0; }
    bool hasOverride(const PartName& name) const { return overrides.count(name) != 0; }

    /// The entry must be there.
    const ContentType& getDefault(const std::u16string& extension) const;

    /// Counts one more part that uses the entry, which must be there.
    void addReference(const std::u16string& extension);

    /// Both return null if there is no entry. The first one counts one more part that uses the entry.
    /// @param Name  a part name, or the text of one
    const ContentType* useDefault(const std::u16string& extension);
    template <typename Name>
    const Overrides::value_type* findOverride(const Name& name) const {
        const auto entry = overrides.find(name);
        return entry == overrides.end() ? nullptr : &*entry;
    }

    /// Counts one part less. Removes the entry, which must be there, with its last part.
    void releaseDefault(const std::u16string& extension);

    void removeOverride(const PartName& name);

    const Defaults& getDefaults() const noexcept { return defaults; }
    const Overrides& getOverrides() const noexcept { return overrides; }

private:
    mutable DocumentShare share;
    bool dirty = true;
    std::size_t unread = 0;
    bool contradicted = false;
    Defaults defaults;
    Overrides overrides;
};

} // namespace opc::model
