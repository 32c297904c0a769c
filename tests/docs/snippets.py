#!/usr/bin/env python3
"""Writes a C++ file with the C++ code of Markdown documents, a function for each block.

  snippets.py OUTPUT DOCUMENT...

A block uses names that it doesn't declare, such as `package` or `path`: these are declared in front of it.
"""
import pathlib
import re
import sys

HEAD = """#include <opc/core/Exception.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/Cleaning.hpp>
#include <opc/editing/DifferenceJob.hpp>
#include <opc/editing/FileContent.hpp>
#include <opc/editing/Job.hpp>
#include <opc/editing/Mending.hpp>
#include <opc/editing/Moving.hpp>
#include <opc/editing/Packing.hpp>
#include <opc/editing/Properties.hpp>
#include <opc/editing/Removing.hpp>
#include <opc/editing/Repacking.hpp>
#include <opc/editing/ResultCheck.hpp>
#include <opc/editing/Unpacking.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/inspection/Comparison.hpp>
#include <opc/inspection/External.hpp>
#include <opc/inspection/Format.hpp>
#include <opc/inspection/PackageGraph.hpp>
#include <opc/inspection/Reports.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/SignatureCoverage.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/RandomAccessSource.hpp>
#include <opc/physical/ZipPackage.hpp>
#include <opc/scanning/ResultJSON.hpp>
#include <opc/scanning/Scanner.hpp>
#include <opc/standard_signatures/Signing.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <fstream>
#include <iostream>

using namespace opc::model;

struct Request { std::istream& body(); };
struct Response { std::ostream& body(); };
struct Bucket {
    std::uint64_t sizeOf(const char* name);
    std::size_t getRange(const char* name, std::uint64_t offset, unsigned char* buffer, std::size_t count);
};
"""
NAMES = {
    "package": "Package",
    "story": "Part",
    "part": "Part",
    "signatures": "DigitalSignatureManager",
    "officeDocument": "const std::u16string",
    "bytes": "std::vector<unsigned char>",
    "path": "const std::filesystem::path",
    "certificate": "const bedrock::certificates::X509Certificate",
    "keyBytes": "const std::vector<unsigned char>",
    "privateKey": "const std::vector<unsigned char>",
    "publicKey": "const std::vector<unsigned char>",
    "trustStore": "bedrock::certificates::TrustStore",
    "bucket": "Bucket",
    "request": "Request",
    "response": "Response",
}

output, *documents = sys.argv[1:]
code = [HEAD]
for document in map(pathlib.Path, documents):
    text = document.read_text(encoding="utf-8")
    for number, block in enumerate(re.finditer(r"^```cpp\n(.*?)^```", text, re.DOTALL | re.MULTILINE)):
        line = text.count("\n", 0, block.start(1)) + 1
        body = block.group(1)
        declared = [f"extern {kind} {name};" for name, kind in NAMES.items()
                    if re.search(rf"\b{name}\b", body) and not re.search(rf"[\w>] {name}(\(|\b *=)", body)]
        code.append(f'bool {document.stem.lower()}{number}() {{\n{" ".join(declared)}\n'
                    f'#line {line} "{document}"\n{body}return false;\n}}\n')
pathlib.Path(output).write_text("\n".join(code), encoding="utf-8")
