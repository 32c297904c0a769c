#pragma once

#include <cstdint>

namespace opc::interfaces {

/// The size of a part, for stores that know it without reading the content. The class of the part implements this
/// interface in addition to `IPhysicalPart`; the library finds it with `dynamic_cast`. Other stores don't need it.
class IPhysicalPartSize {
public:
    /// How many bytes a new input stream gives: those of the stored content or, if the part has been written, those
    /// written so far. The store gives the size that it has recorded, without reading the content: if the recorded size
    /// is wrong, reading fails.
    /// @throws opc::Exception
    virtual std::uint64_t getSize() const = 0;

    virtual ~IPhysicalPartSize() = default;
};

} // namespace opc::interfaces
