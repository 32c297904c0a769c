#pragma once

#include "BytesStream.hpp"
#include "ContentTypeChanges.hpp"

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/Oddity.hpp>
#include <opc/model/ContentTypeRules.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace opc::interfaces {
class IPhysicalOutputStream;
class IPhysicalPackage;
class IPhysicalPart;
} // namespace opc::interfaces

namespace opc::physical::lenient {

constexpr char NO_CONTENT_TYPE[] = "no content type covers it"; ///< the reason for hiding a part

/// The content types of an open package: what the model reads, and how the document changes with what the model
/// writes.
///
/// A document that can't be read, or is too long, is passed on unchanged. Then every part counts as covered, and the
/// model reports what is wrong.
class ContentTypes {
public:
    /// Reads the content types stream, if the package uses one.
    explicit ContentTypes(interfaces::IPhysicalPackage& package);
    ContentTypes(const ContentTypes&) = delete;
    ContentTypes& operator=(const ContentTypes&) = delete;
    ~ContentTypes();

    /// @name During the opening of the package
    /// @{

    /// @param name  the name of the part
    bool covers(interfaces::IPhysicalPart& part, const std::u16string& name) const;

    /// Records that a part is hidden because no content type covers it.
    /// @return the reason, which names an entry for the part if one was left out
    std::string hide(const std::u16string& name);

    /// Shows the model the content type of relationships parts, for those that aren't covered.
    void coverRelationships();

    /// Ends the opening: makes what the model reads, and frees what it was made from.
    void settle();

    /// @}

    const std::vector<interfaces::Oddity>& oddities() const { return found; }

    /// What a signature can't cover: everything that was left out, skipped or corrected.
    std::optional<interfaces::IgnoredItem> ignoredItem() const;

    /// The stream for the model to read.
    interfaces::IPhysicalInputStream* inputStream();

    /// The stream for the model to write to.
    /// @param parts  gives the names of all parts that aren't hidden
    interfaces::IPhysicalOutputStream* outputStream(std::function<std::vector<std::u16string>()> parts);

    /// Call it after a part was created or deleted: entries that were left out for its name don't count for it.
    void renew(const std::u16string& name);

    /// Writes changes that don't come from the model.
    void save(const std::function<std::vector<std::u16string>()>& parts);

private:
    class Output;
    struct Reading;

    void read();
    void readEntries();
    void settleEntries();
    void write(const std::function<std::vector<std::u16string>()>& parts);

    interfaces::IPhysicalPackage& package;
    bool usesStream;
    std::optional<Bytes> original; ///< nothing if it can't be read
    /// During the opening of the package. For a document with nothing odd, the keys of its entries are enough.
    /// @{
    std::optional<model::ContentTypeRules::PlainEntries> plain;
    std::unique_ptr<Reading> reading;
    /// @}
    bool coversRelationships = false; ///< with an entry that isn't in the document
    std::vector<interfaces::Oddity> found;
    std::size_t readOtherwise = 0; ///< how many of them

    std::unique_ptr<BytesStream> view; ///< what the model reads; null if that is the package's own stream
    Bytes wanted; ///< what the model has read or written last, if it isn't the document itself
    ContentTypesContext context;
    std::set<std::u16string> disputed; ///< names with an entry that is odd or doesn't count, in lower case
    bool isDue = false;                ///< whether the document must be written
    bool isWritten = false;            ///< whether it was written before
    std::unique_ptr<Output> output;
};

} // namespace opc::physical::lenient
