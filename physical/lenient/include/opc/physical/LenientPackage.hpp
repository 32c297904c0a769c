#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/physical/LenientExport.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

/// Stands in front of another physical package and hides from the model what real programs leave in packages
/// against the standard, so that the rest can be opened:
///
/// - items that no content type covers [M2.9], such as `.DS_Store` or the signature files of other systems;
/// - relationships parts without a source, which stay where a program has deleted a part but not these.
///
/// What is hidden stays in the package through every save, unchanged. Two things that an application does end
/// that: creating a part under a hidden name replaces what is there, and creating a part drops a hidden
/// relationships part that would become its own. A content type stream that can't be read hides nothing: the
/// model says what is wrong with it.
///
/// The other package isn't owned and must outlive this one; while this one is open, it is to be used through
/// this one alone. All parts and streams are the other's. One thread at a time. Failures are those of the
/// other package.
class OPC_LENIENT_EXPORT LenientPackage : public interfaces::IPhysicalPackage {
public:
    struct HiddenItem {
        std::u16string name; ///< as the part would be called
        std::string reason;  ///< in English, to follow the name
    };

    explicit LenientPackage(interfaces::IPhysicalPackage& package);
    ~LenientPackage() override;

    /// What the open package hides now, in the order of the other package's parts.
    const std::vector<HiddenItem>& hiddenItems() const;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;

    /// Without what is hidden.
    std::vector<interfaces::IPhysicalPart*> getParts() override;

    /// Opens the other package and looks for what is to be hidden. If that fails, both are closed.
    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
