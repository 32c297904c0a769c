#pragma once

#include "ArchiveReader.hpp"
#include "Deflater.hpp"
#include "Spool.hpp"

#include <opc/interfaces/CompressionType.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opc::physical::zip {

class ZipContentReader;

/// What every content of an open package needs to know of it. Outlives them.
struct ZipContext {
    std::string place;
    bool readOnly = false;
    bool changed = false;
    std::unique_ptr<ArchiveReader> archive; ///< null while a package is being created
    std::shared_ptr<SpoolStore> spools;
};

/// What can be read and replaced in an open package: the content of a part, or the content types stream. It
/// is the content of items of the archive until it is written. Owns the streams that it hands out.
class ZipContent {
public:
    /// @param pieces  the items of the archive that hold the content, in order; none for a new content
    /// @param itemName  the name of the item that holds the content if it is none of the archive's
    ZipContent(ZipContext& owner, std::vector<ItemIndex> pieces, std::string itemName = {})
        : context(owner), items(std::move(pieces)), newItemName(std::move(itemName)) {}
    ZipContent(const ZipContent&) = delete;
    ZipContent& operator=(const ZipContent&) = delete;

    bool exists() const { return spool || !items.empty(); }

    interfaces::IPhysicalInputStream* read();
    interfaces::IPhysicalOutputStream* write();

    /// Puts an empty content in the place of the old one.
    void clear();
    void setCompression(interfaces::CompressionType type);

    std::unique_ptr<ZipContentReader> makeReader() const;

    /// What has been written; null if nothing has.
    const std::shared_ptr<Spool>& written() const { return spool; }
    const std::vector<ItemIndex>& oldItems() const { return items; }
    std::uint16_t method() const;
    int level() const { return deflateLevel; }

    /// How messages name the archive and the content.
    std::string itemPlace() const;
    std::string itemName() const;

private:
    ZipContext& context;
    std::vector<ItemIndex> items;
    std::string newItemName;
    std::shared_ptr<Spool> spool;
    std::optional<std::uint16_t> chosenMethod; ///< none: as the old item has it, and Deflate for a new one
    int deflateLevel = Deflater::USUAL_LEVEL;
    std::vector<std::unique_ptr<interfaces::IPhysicalInputStream>> inputs;
    std::vector<std::unique_ptr<interfaces::IPhysicalOutputStream>> outputs;
};

/// A part of an open package.
class ZipPart : public interfaces::IPhysicalPart {
public:
    ZipPart(ZipContext& context, std::u16string partName, std::vector<ItemIndex> items,
            std::string itemName = {})
        : name(std::move(partName)), content(context, std::move(items), std::move(itemName)) {}

    std::u16string getName() const override { return name; }
    std::u16string getContentType() const override { return {}; }
    interfaces::IPhysicalInputStream* getInputStream() override { return content.read(); }
    interfaces::IPhysicalOutputStream* getOutputStream() override { return content.write(); }

    const std::u16string name;
    ZipContent content;
};

} // namespace opc::physical::zip
