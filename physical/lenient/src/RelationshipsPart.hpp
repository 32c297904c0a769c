#pragma once

#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace opc::physical::lenient {

/// How many bytes of mended documents an open package may still hold.
struct MendingBudget {
    std::size_t left = std::size_t{32} << 20;
};

/// A relationships part of another package, as the model is to see it: with the content type of its kind, and
/// without prefixes in the names of its elements.
class RelationshipsPart : public interfaces::IPhysicalPart {
public:
    static constexpr char16_t CONTENT_TYPE[] = u"application/vnd.openxmlformats-package.relationships+xml";

    /// Neither is owned.
    RelationshipsPart(interfaces::IPhysicalPart& other, MendingBudget& mending)
        : part(other), budget(mending) {}

    std::u16string getName() const override { return part.getName(); }
    std::u16string getContentType() const override;

    /// The other's stream, unless its content has prefixes. One that is too long keeps them.
    interfaces::IPhysicalInputStream* getInputStream() override;
    interfaces::IPhysicalOutputStream* getOutputStream() override { return part.getOutputStream(); }

private:
    interfaces::IPhysicalPart& part;
    MendingBudget& budget;
    std::vector<std::unique_ptr<interfaces::IPhysicalInputStream>> mended;
};

} // namespace opc::physical::lenient
