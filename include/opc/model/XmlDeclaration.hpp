#pragma once

namespace opc::model {

/// Whether a written document begins with an XML declaration.
enum class XmlDeclaration {
    Omit = 0,
    Include = 1,
};

} // namespace opc::model
