#pragma once

#include "subject/Subject.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::inspection {

/// The archive of a subject as a store for the model, which can only be read.
class SubjectPackage : public interfaces::IPhysicalPackage {
public:
    /// @param subject  must outlive this object
    explicit SubjectPackage(const Subject& subject);
    ~SubjectPackage() override;

    bool usesContentTypeStream() override { return true; }
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    std::vector<interfaces::IPhysicalPart*> getParts() override;
    void open(const interfaces::OpenMode&) override {}
    void close(bool) override {}

    /// @throws opc::Exception  the store can't be changed
    /// @{
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;
    interfaces::IPhysicalPart* createPart(const std::u16string&, const std::u16string&,
                                          const interfaces::IPhysicalPartInfo&) override;
    void deletePart(const std::u16string&) override;
    /// @}

private:
    class Stream;
    class StoredPart;

    const Subject& subject;
    std::unique_ptr<Stream> contentTypes;
    std::vector<std::unique_ptr<StoredPart>> parts;
};

} // namespace opc::inspection
