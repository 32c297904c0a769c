#pragma once

#include "ArchiveReader.hpp"
#include "Spool.hpp"
#include "ZipContentReader.hpp"

#include <opc/interfaces/CompressionType.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>

#include "shared/NodePool.hpp"

#include <forward_list>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::zip {

/// What all contents of an open package share. Outlives them.
struct ZipContext {
    std::string place;
    bool readOnly = false;
    bool changed = false;
    std::unique_ptr<ArchiveReader> archive; ///< null while a package is being created
    std::shared_ptr<SpoolStore> spools;     ///< null if nothing can be written
    NodePool streams;                       ///< memory for the input streams
};

/// A content of an open package that can be read and replaced: the content of a part, or the content types stream.
/// Until it is written, items of the archive hold it. Owns the streams that it returns.
///
/// There may be a million of them. Nearly all belong to one item of the archive that has their name, and are never
/// written.
class ZipContent {
public:
    /// The content of one item under the item's own name.
    ZipContent(ZipContext& context, ItemIndex item);

    /// @param contentName  the item name for it
    /// @param pieces       the items of the archive that hold the content, in order; none for a new content
    ZipContent(ZipContext& context, std::string contentName, std::vector<ItemIndex> pieces);
    ZipContent(const ZipContent&) = delete;
    ZipContent& operator=(const ZipContent&) = delete;
    ~ZipContent();

    bool exists() const { return spool || oldItems().size() > 0; }

    interfaces::IPhysicalInputStream* read();
    interfaces::IPhysicalOutputStream* write();

    /// Replaces the old content with an empty one.
    void clear();
    void setCompression(interfaces::CompressionType type);

    std::unique_ptr<ZipContentReader> makeReader() const;

    /// The size in the directory, or of what was written.
    std::uint64_t size() const;

    /// The written content; null if nothing was written.
    const std::shared_ptr<Spool>& written() const { return spool; }
    ItemRange oldItems() const;
    std::uint16_t method() const;
    int level() const { return deflateLevel; }

    /// Valid while the content lives.
    std::string_view name() const { return own ? own->name : context.archive->item(item).name; }

    /// The name of the item for saving: the name of the old item if there is one.
    std::string_view itemName() const;

    /// How messages name the archive and the content.
    std::string itemPlace() const;

private:
    static constexpr std::int8_t USUAL_LEVEL = 6;

    struct Own {
        std::string name;
        std::vector<ItemIndex> items;
    };
    class Input;
    class Output;

    ZipContext& context;
    std::unique_ptr<const Own> own;
    ItemIndex item = 0;                        ///< used if `own` is null
    std::optional<std::uint16_t> chosenMethod; ///< empty: as the old item, or Deflate for a new one
    std::int8_t deflateLevel = USUAL_LEVEL;
    std::shared_ptr<Spool> spool;
    std::pmr::forward_list<Input> inputs;
    std::forward_list<Output> outputs;
};

/// A part of an open package.
class ZipPart : public interfaces::IPhysicalPart, public interfaces::IPhysicalPartSize {
public:
    template <typename... Arguments>
    explicit ZipPart(ZipContext& context, Arguments&&... arguments)
        : content(context, std::forward<Arguments>(arguments)...), name(content.name()) {}

    std::u16string getName() const override;
    std::u16string getContentType() const override { return {}; }
    interfaces::IPhysicalInputStream* getInputStream() override { return content.read(); }
    interfaces::IPhysicalOutputStream* getOutputStream() override { return content.write(); }
    std::uint64_t getSize() const override { return content.size(); }

    ZipContent content;
    const std::string_view name; ///< without the first slash of the part name
};

} // namespace opc::physical::zip
