#include "archive/NewContentTypes.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>

namespace opc::editing::archive {

using interfaces::OpenMode;
using physical::ZipPackage;

const std::string* findContentType(const std::map<std::string, std::string>& contentTypes,
                                   const std::string& part) {
    std::string name = part;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    auto found = contentTypes.find(name);
    const std::size_t dot = name.rfind('.');
    if (found == contentTypes.end() && dot != std::string::npos && dot > name.rfind('/'))
        found = contentTypes.find(name.substr(dot + 1));
    return found == contentTypes.end() ? nullptr : &found->second;
}

/// The model knows how entries are written: it creates the parts in a package that has nothing but this document.
std::vector<unsigned char> addContentTypes(const std::vector<unsigned char>& document,
                                           const std::vector<NewContentType>& added) {
    ZipPackage archive(ZipPackage::Bytes{});
    archive.open(OpenMode::CreateOnly);
    interfaces::IPhysicalOutputStream& output = *archive.getContentTypeOutputStream();
    for (std::size_t done = 0; done < document.size();)
        done += static_cast<std::size_t>(output.write(document.data() + done, document.size() - done));
    output.close();
    archive.close(false);
    {
        physical::LenientPackage lenient(archive);
        model::Package package(lenient);
        package.open(OpenMode::ReadWrite);
        for (const NewContentType& part : added)
            package.createPart(model::PartName(toString(part.part, true)),
                               model::ContentType(toString(part.contentType, true)),
                               model::StandardPartInfo());
        package.close(false);
    }
    archive.open(OpenMode::ReadOnly);
    interfaces::IPhysicalInputStream& input = *archive.getContentTypeInputStream();
    std::vector<unsigned char> changed;
    input.open();
    while (!input.isDone()) {
        constexpr std::size_t BLOCK = std::size_t{64} * 1024;
        const std::size_t size = changed.size();
        changed.resize(size + BLOCK);
        changed.resize(size + static_cast<std::size_t>(input.read(changed.data() + size, BLOCK)));
    }
    input.close();
    archive.close(true);
    return changed;
}

} // namespace opc::editing::archive
