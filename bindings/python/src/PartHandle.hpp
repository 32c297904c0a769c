#pragma once

#include "Session.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/PartName.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace opcpython {

/// A part, which keeps its package alive. It stays valid when the package is saved and goes on.
class PartHandle {
public:
    PartHandle(std::shared_ptr<Session> session, opc::model::Part part);

    const std::shared_ptr<Session>& session() const { return owner; }
    const opc::model::PartName& name() const { return partName; }

    /// Within `Session::use`.
    /// @throws InvalidObject  the part was deleted, or the package is closed
    opc::model::Part& get();

private:
    std::shared_ptr<Session> owner;
    opc::model::PartName partName;
    opc::model::Part part;
    std::uint64_t generation;
};

/// Reads a part independently of other readers: the library has one stream for each part, which goes back to its start if
/// somebody else has moved it.
class PartReader {
public:
    explicit PartReader(PartHandle part) : part(std::move(part)) {}

    Session& session() const { return *part.session(); }

    /// Within `Session::use`.
    /// @{
    std::size_t read(unsigned char* buffer, std::size_t count);
    std::optional<std::uint64_t> size() { return part.get().getSize(); }
    /// @}

    std::uint64_t position() const { return place; }

    /// A place behind the end is one at which nothing is read.
    void seek(std::uint64_t position) { place = position; }

private:
    PartHandle part;
    std::uint64_t place = 0;
};

/// The name of a part that is looked up.
/// @throws PartNotFound  no part can have it
opc::model::PartName wantedName(const std::string& name);

/// The remaining bytes of a stream.
std::string readAll(opc::InputStream& stream);

/// The parts of a package.
std::vector<PartHandle> listParts(const std::shared_ptr<Session>& session);

} // namespace opcpython
