#pragma once

#include <string>

namespace opc::interfaces {

/// Relationships that a relationships part keeps although its input stream doesn't contain them.
///
/// A store that opens damaged packages can leave single relationships out of the input stream and keep them when the
/// part is written. The class of such a relationships part implements this interface in addition to `IPhysicalPart`;
/// the library finds it with `dynamic_cast`. Other stores don't need it.
///
/// The library calls these functions after it has read the input stream, until the part is deleted. They throw
/// nothing but `std::bad_alloc`.
class IKeptRelationships {
public:
    /// Whether a relationship outside the input stream has this ID. The ID is then in use.
    virtual bool hasKeptID(const std::u16string& id) const = 0;

    /// Whether the part keeps anything outside the input stream; called once, when the stream has been read. If so,
    /// the part stays when its last other relationship is deleted, and is then written without relationships.
    virtual bool keepsMore() const = 0;

    /// @return why the relationships can't be changed, in English; empty if they can be changed
    virtual std::string whyFixed() const = 0;

    virtual ~IKeptRelationships() = default;
};

} // namespace opc::interfaces
