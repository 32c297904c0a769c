#pragma once

#include "MemoryStore.hpp"

#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>

namespace opc::physical::memory {

/// A content that can be read and replaced in an open package: the content of a part, or the content types stream.
/// Owns the streams that it returns.
class MemoryContent {
public:
    MemoryContent(SharedBytes bytes, bool readOnly) : bytes(std::move(bytes)), readOnly(readOnly) {}
    MemoryContent(const MemoryContent&) = delete;
    MemoryContent& operator=(const MemoryContent&) = delete;

    interfaces::IPhysicalInputStream* read();

    /// Replaces the bytes by new, empty ones.
    interfaces::IPhysicalOutputStream* write(const std::u16string& name);

    void replace(SharedBytes content) { bytes = std::move(content); }

    /// Null if there is no content: the content types stream doesn't exist.
    const SharedBytes& get() const { return bytes; }

private:
    SharedBytes bytes;
    const bool readOnly;
    std::vector<std::unique_ptr<interfaces::IPhysicalInputStream>> inputs;
    std::vector<std::unique_ptr<interfaces::IPhysicalOutputStream>> outputs;
};

/// A part of an open package.
class MemoryPart : public interfaces::IPhysicalPart, public interfaces::IPhysicalPartSize {
public:
    MemoryPart(std::u16string name, std::u16string contentType, SharedBytes bytes, bool readOnly)
        : name(std::move(name)), contentType(std::move(contentType)), content(std::move(bytes), readOnly) {}

    std::u16string getName() const override { return name; }
    std::u16string getContentType() const override { return contentType; }
    interfaces::IPhysicalInputStream* getInputStream() override { return content.read(); }
    interfaces::IPhysicalOutputStream* getOutputStream() override { return content.write(name); }
    std::uint64_t getSize() const override { return content.get()->size(); }

    const std::u16string name;
    std::u16string contentType;
    MemoryContent content;
};

} // namespace opc::physical::memory
