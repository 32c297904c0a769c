#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <string>

namespace opc::inspection {

/// What a file is, by its content alone. Texts are UTF-8.
struct Format {
    /// Which of the two forms of Office Open XML a document is in.
    enum class Conformance {
        None, ///< it is no such document
        Transitional,
        Strict
    };

    /// The usual extension, `docx`, `xlsx`, `xps`, `3mf` … or one of these: `opc` for a package of a format that isn't known
    /// here; `zip` for another archive; `encrypted` for an Office document that needs a password; `ole2`; `flat-opc` for a
    /// package in one XML document; `xml`, `html`, `rtf`, `text`; `cut-off` for an archive without its end; `empty`;
    /// `unknown`.
    std::string name = "unknown";
    std::string mediaType;   ///< empty if none is known
    std::string description; ///< for people: "Word document"
    Conformance conformance = Conformance::None;
    bool isPackage = false; ///< in the Open Packaging Conventions, as a ZIP archive
    bool hasMacros = false; ///< a VBA project or a sheet of Excel 4 macros
    bool isSigned = false;  ///< has a signature; whether it holds isn't looked at
    bool isEncrypted = false;
    std::string mainPart; ///< the name of the part that the format begins with; empty if there is none
};

/// Tells the format of a file. Nothing depends on its name.
/// @throws opc::Exception  the file can't be read
OPC_INSPECTION_EXPORT Format detectFormat(const Archive& archive);

} // namespace opc::inspection
