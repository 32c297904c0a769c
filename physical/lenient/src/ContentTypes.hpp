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

constexpr char NO_CONTENT_TYPE[] = "no content type covers it"; ///< said of a part

/// The content types of an open package: as the model is to read them, and how the document changes with what the
/// model writes.
///
/// A document that can't be read, or is too long, is given and written as it is; then every part is taken to be
/// covered, and the model says what is wrong.
class ContentTypes {
public:
    /// Reads the content types stream, if the package uses one.
    explicit ContentTypes(interfaces::IPhysicalPackage& package);
    ContentTypes(const ContentTypes&) = delete;
    ContentTypes& operator=(const ContentTypes&) = delete;
    ~ContentTypes();

    /// @name While the package is being opened
    /// @{

    /// @param name  of the part
    bool covers(interfaces::IPhysicalPart& part, const std::u16string& name) const;

    /// Takes note that a part is hidden, since no content type covers it.
    /// @return the reason, which names an entry for it that was left out
    std::string hide(const std::u16string& name);

    /// Gives the model the content type of relationships parts, for those that aren't covered.
    void coverRelationships();

    /// Ends this: makes what the model is to read, and forgets what it was made from.
    void settle();

    /// @}

    const std::vector<interfaces::Oddity>& oddities() const { return found; }

    /// What a signature can't cover: what was left out, passed over or mended.
    std::optional<interfaces::IgnoredItem> ignoredItem() const;

    /// The stream that the model is to read.
    interfaces::IPhysicalInputStream* inputStream();

    /// The stream that the model is to write to.
    /// @param parts  gives the names of all parts that aren't hidden
    interfaces::IPhysicalOutputStream* outputStream(std::function<std::vector<std::u16string>()> parts);

    /// A part has been created or deleted: what was left out for its name doesn't count for it.
    void renew(const std::u16string& name);

    /// Writes what has to change although the model writes nothing.
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
    /// While the package is being opened. Of a document with nothing odd, what its entries are for is enough.
    /// @{
    std::optional<model::ContentTypeRules::PlainEntries> plain;
    std::unique_ptr<Reading> reading;
    /// @}
    bool coversRelationships = false; ///< by an entry that isn't in the document
    std::vector<interfaces::Oddity> found;
    std::size_t readOtherwise = 0; ///< how many of these

    std::unique_ptr<BytesStream> view; ///< what the model reads; null where that is the package's own stream
    Bytes wanted; ///< what the model has read or written last, but for the document itself
    ContentTypesContext context;
    std::set<std::u16string> disputed; ///< names with an entry that is odd or doesn't count, in lower case
    bool isDue = false;                ///< whether the document has to be written
    bool isWritten = false;            ///< whether it has been before
    std::unique_ptr<Output> output;
};

} // namespace opc::physical::lenient
