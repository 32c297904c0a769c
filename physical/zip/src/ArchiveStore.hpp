#pragma once

#include "BufferedTarget.hpp"
#include "ByteSource.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace opc::physical::zip {

/// The place of an archive: where it is read, and where a new one replaces it.
class OPC_ZIP_EXPORT ArchiveStore {
public:
    virtual ~ArchiveStore() = default;

    /// How messages name the archive.
    virtual std::string place() const = 0;

    /// The archive as it is now.
    virtual std::shared_ptr<ByteSource> read() = 0;

    /// Whether each reading of the archive is expensive, so that as little as possible is read.
    virtual bool isSlow() const { return false; }

    /// Throws if it is already certain that `replace` can't succeed.
    virtual void checkWritable() const = 0;

    /// Replaces the archive with what `write` writes, all or nothing.
    /// @param old  the state in which the archive was read, if the new one builds on that. Throws if somebody else has
    ///             changed it since: those changes would be lost
    virtual void replace(const FileState& old, const std::function<void(ByteTarget&)>& write) = 0;

    /// A folder for temporary files.
    virtual std::filesystem::path temporaryFolder() const = 0;
};

/// The system's folder for temporary files.
std::filesystem::path systemTemporaryFolder();

class OPC_ZIP_EXPORT FileStore : public ArchiveStore {
public:
    using BeforeReplacing = std::function<void(const std::filesystem::path& written)>;

    /// @param beforeReplacing  may be empty
    explicit FileStore(std::filesystem::path file, BeforeReplacing beforeReplacing = {});

    std::string place() const override { return name; }
    std::shared_ptr<ByteSource> read() override;
    void checkWritable() const override;
    void replace(const FileState& old, const std::function<void(ByteTarget&)>& write) override;
    std::filesystem::path temporaryFolder() const override;

private:
    void requireUnchanged(const FileState& old) const;

    std::string name;
    std::filesystem::path path; // absolute, because the process may change its folder before it saves
    const BeforeReplacing beforeReplacing;
    FileState lastWritten;
};

class MemoryStore : public ArchiveStore {
public:
    using Bytes = std::vector<unsigned char>;

    explicit MemoryStore(Bytes bytes) : archive(std::make_shared<const Bytes>(std::move(bytes))) {}

    std::string place() const override { return "archive in memory"; }
    std::shared_ptr<ByteSource> read() override;
    void checkWritable() const override {}
    void replace(const FileState& old, const std::function<void(ByteTarget&)>& write) override;
    std::filesystem::path temporaryFolder() const override { return systemTemporaryFolder(); }

    const Bytes& bytes() const { return *archive; }

private:
    std::shared_ptr<const Bytes> archive;
};

} // namespace opc::physical::zip
