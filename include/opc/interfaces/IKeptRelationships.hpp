#pragma once

#include <string>

namespace opc::interfaces {

/// What a relationships part keeps beside the relationships that its input stream gives.
///
/// A store that takes damaged packages may leave single relationships out of what it gives to read, and keep them when
/// the part is written. Its relationships part then has this interface beside `IPhysicalPart`; all others do without.
/// Asked from when the input stream has been read until the part is deleted. Raises nothing but `std::bad_alloc`.
class IKeptRelationships {
public:
    /// Whether a relationship that isn't given has an ID: no other one gets it.
    virtual bool hasKeptID(const std::u16string& id) const = 0;

    /// Whether there is anything that isn't given; asked once, when the stream has been read. If there is, the part
    /// stays when its last given relationship goes, and is written without any.
    virtual bool keepsMore() const = 0;

    /// Why the relationships can't be changed, in English; empty if they can.
    virtual std::string whyFixed() const = 0;

    virtual ~IKeptRelationships() = default;
};

} // namespace opc::interfaces
