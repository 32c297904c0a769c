#pragma once

#include <string>

namespace opc::test {

/// A core properties document with these elements, and more attributes of the root.
inline std::string corePropertiesDocument(const std::string& elements, const std::string& attributes = {}) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>)"
           R"(<cp:coreProperties xmlns:dc="http://purl.org/dc/elements/1.1/")"
           R"( xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties")"
           R"( xmlns:dcterms="http://purl.org/dc/terms/")"
           R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" )" +
           attributes + ">" + elements + "</cp:coreProperties>";
}

} // namespace opc::test
