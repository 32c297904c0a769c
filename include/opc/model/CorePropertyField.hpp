#pragma once

#include <opc/model/CoreProperties.hpp>
#include <opc/model/Export.hpp>

#include <array>
#include <string_view>
#include <variant>

namespace opc::model {

/// A field of `CoreProperties`, for code that goes through all fields or looks one up by its name:
///
///     for (const CorePropertyField& field : CorePropertyField::all())
///         field.visit(properties, [&](const auto& value) {
///             if (value)
///                 print(field.name(), *value); // a text, a time or keywords
///         });
struct OPC_MODEL_EXPORT CorePropertyField {
    using Member =
        std::variant<CoreProperties::Text CoreProperties::*, CoreProperties::Time CoreProperties::*,
                     CoreProperties::Keywords CoreProperties::*>;

    /// The attribute that the field's element has in a file.
    enum class Attribute {
        None,
        Type,    ///< xsi:type, which must be there [M4.5]
        Language ///< xml:lang, which may be there [M4.4]
    };

    /// All fields, in the order in which they are written.
    static const std::array<CorePropertyField, 15>& all();

    /// Calls `visitor` with the field's value: a `Text`, a `Time` or `Keywords`. It can be set there, and
    /// `boost::none` makes the field absent.
    /// @param properties  a `CoreProperties`, `const` or not
    /// @return what `visitor` gives
    template <typename Properties, typename Visitor>
    decltype(auto) visit(Properties& properties, Visitor&& visitor) const {
        return std::visit([&](auto value) -> decltype(auto) { return visitor(properties.*value); }, member);
    }

    /// The name without the prefix: "title".
    constexpr std::string_view name() const { return element.substr(element.find(':') + 1); }

    std::string_view element; ///< its name in a file, with the usual prefix: "dc:title"
    Member member;
    Attribute attribute;
};

} // namespace opc::model
