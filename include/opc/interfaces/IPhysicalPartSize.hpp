#pragma once

#include <cstdint>

namespace opc::interfaces {

/// What a part of a store that knows sizes without reading implements beside `IPhysicalPart`, as a second base of
/// the same class: the library looks for it by `dynamic_cast`. Stores without it need nothing.
class IPhysicalPartSize {
public:
    /// The bytes that an input stream gives which is got now: the content as the package was opened with it or, once
    /// it has been written, what has been written so far. The size that the store has noted counts; whether the
    /// content has it, reading finds out. Failures are `opc::Exception`.
    virtual std::uint64_t getSize() const = 0;

    virtual ~IPhysicalPartSize() = default;
};

} // namespace opc::interfaces
