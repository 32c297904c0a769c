// Compares the canonical forms of elements in files with those of libxml2. A file is a document or a package, whose
// documents are compared then. Prints a line for each difference, and counts.

#include "standard_signatures/CanonicalComparison.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <fstream>
#include <iostream>
#include <iterator>

namespace {

using opc::test::Bytes;

std::size_t subtrees = 0;
std::size_t differences = 0;

void compare(const std::string& name, const Bytes& document) {
    const opc::test::CanonicalComparison result = opc::test::compareCanonicalForms(document, 30);
    subtrees += result.subtrees;
    if (!result.difference.empty()) {
        ++differences;
        std::cout << name << ": " << result.difference << '\n';
    }
}

Bytes contentOf(opc::interfaces::IPhysicalPart& part) {
    constexpr std::size_t MOST = 1U << 20;
    opc::interfaces::IPhysicalInputStream& stream = *part.getInputStream();
    Bytes content;
    while (!stream.isDone() && content.size() <= MOST) {
        const std::size_t size = content.size();
        content.resize(size + 65536);
        content.resize(size + static_cast<std::size_t>(stream.read(content.data() + size, 65536)));
    }
    return content.size() > MOST ? Bytes() : content;
}

void comparePackage(const std::string& name, const Bytes& archive) {
    opc::physical::ZipOptions options;
    options.lenient = true;
    opc::physical::ZipPackage package(archive, options);
    package.open(opc::interfaces::OpenMode::ReadOnly);
    for (opc::interfaces::IPhysicalPart* const part : package.getParts())
        try {
            compare(name + opc::toUDEString(part->getName()), contentOf(*part));
        } catch (const opc::Exception&) { // a damaged item
        }
    package.close(true);
}

} // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        std::ifstream file(arguments[i], std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
        try {
            if (bytes.size() > 1 && bytes[0] == 'P' && bytes[1] == 'K')
                comparePackage(arguments[i], bytes);
            else
                compare(arguments[i], bytes);
        } catch (const opc::Exception&) { // no package
        }
    }
    std::cout << subtrees << " subtrees compared in every form, " << differences << " documents differ\n";
    return differences == 0 && subtrees != 0 ? 0 : 1;
}
