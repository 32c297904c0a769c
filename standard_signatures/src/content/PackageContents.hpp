#pragma once

#include "hash/TextHash.hpp"
#include "transform/RelationshipsDocument.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/MisnamedItem.hpp>
#include <opc/standard_signatures/Reason.hpp>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace opc::interfaces {
class IPhysicalPackage;
class IPhysicalPart;
} // namespace opc::interfaces

namespace opc::standard_signatures {

struct ContentForm;
struct DigestMethod;
class Digester;

/// A part as it lies in the store. Relationships parts are parts too.
struct StoredPart {
    std::string name; ///< without percent-encoding
    std::string key;  ///< the name as it is compared
    interfaces::IPhysicalPart* physical;
    std::optional<std::string> contentType;
    bool hasOwnContentType = false;    ///< not that of its extension
    std::optional<std::string> source; ///< of a relationships part: the name of its source
    bool isAmbiguous = false;          ///< another part has the same name
};

/// What a package contains, read from its store as it lies there. Whatever can be understood in two ways is an obstacle
/// here, while other readers take the first meaning.
class PackageContents {
public:
    /// @param store  open; must outlive this object, and nobody else may use it during its life
    explicit PackageContents(interfaces::IPhysicalPackage& store);
    PackageContents(const PackageContents&) = delete;
    PackageContents& operator=(const PackageContents&) = delete;
    ~PackageContents();

    const std::vector<StoredPart>& parts() const { return all; }

    /// @return null if there is no such part
    const StoredPart* find(std::string_view name) const;

    /// What the store contains beside the parts.
    const std::vector<interfaces::IgnoredItem>& ignoredItems() const { return ignored; }

    /// What other programs may take for something else, with what was found in the contents that were read so far.
    std::vector<interfaces::MisnamedItem> misnamedItems() const;

    /// Why no content type can be told; nothing if they can.
    const std::optional<Reason>& contentTypesFailure() const { return typesFailure; }

    /// The content types that no part has; that for the extension of relationships isn't looked at.
    const std::set<std::string>& unusedContentTypes() const { return unusedTypes; }

    /// The relationships of a relationships part, which is read once.
    /// @throws Refusal
    const RelationshipsDocument& relationships(const StoredPart& part);

    /// The digest of the octets of a part, which is computed once for each method.
    /// @throws Refusal  with `PartUnreadable`
    const std::vector<unsigned char>& digest(const StoredPart& part, const DigestMethod& method);

    /// Reads a part that nothing signs to its end, once: a damaged one can hide what other programs find there.
    /// @param form  always the same one for a part
    /// @return why it can't be read, or hasn't this form; null if nothing is wrong
    const Reason* whyUnfit(const StoredPart& part, const ContentForm& form);

    /// Says that a part was read to its end as what it should be, so that `whyUnfit` needn't read it.
    void noteFit(const StoredPart& part);

    /// Why programs can understand a part in different ways, by its name and content type alone; nothing if they can't.
    std::vector<std::string> whyAmbiguous(const StoredPart& part) const;

    /// Lets `digest` look for the names of these parts in the contents that it reads. Called once.
    void searchFor(const std::vector<const StoredPart*>& parts);

    /// Lets `digest` look for content controls in the contents that it reads.
    void searchForControls();

    /// Whether `digest` has read a part since, and no program can find a content control in it.
    bool isWithoutControls(const StoredPart& part) const;

    /// Whether the name of a part was looked for and found.
    bool isNamed(const StoredPart& part) const;

    /// Computes other digests.
    Digester& digester();

    /// The content, ready to read.
    std::unique_ptr<InputStream> open(const StoredPart& part) const;

private:
    struct Known;

    void readContentTypes();
    std::optional<std::string> findOuterPart(const StoredPart& part) const;
    const char* whyOddRelationships(const StoredPart& part) const;
    bool isDigested(const StoredPart& part) const;

    interfaces::IPhysicalPackage& store;
    std::vector<StoredPart> all; ///< none is moved
    std::unordered_map<std::string_view, std::size_t, TextHash> byKey;
    std::vector<interfaces::IgnoredItem> ignored;
    std::optional<Reason> typesFailure;
    std::set<std::string> unusedTypes;
    std::unique_ptr<Known> known;
};

} // namespace opc::standard_signatures
