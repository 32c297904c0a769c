#pragma once

#include "PythonStreams.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opcpython {

/// A store that is written in Python: an `opcmodel.Store`. It is only read.
class PythonStore : public opc::interfaces::IPhysicalPackage {
public:
    explicit PythonStore(py::object store);
    ~PythonStore() override;

    bool usesContentTypeStream() override { return hasContentTypes; }
    opc::interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    opc::interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;
    std::vector<opc::interfaces::IPhysicalPart*> getParts() override;
    void open(const opc::interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    opc::interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                               const opc::interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    PythonObject& object() { return *store; }

private:
    class Input;
    class Part;
    class SizedPart;

    const std::shared_ptr<PythonObject> store;
    bool hasContentTypes = true;
    bool isOpen = false;
    std::unique_ptr<Input> contentTypes;
    std::vector<std::unique_ptr<Part>> parts;
};

} // namespace opcpython
