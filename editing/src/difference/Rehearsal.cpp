#include "difference/Rehearsal.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace opc::editing {

namespace {

/// The name of a new file, which it loses at the end.
class TemporaryName {
public:
    TemporaryName() : name((std::filesystem::temp_directory_path() / "opcmodel-XXXXXX").string()) {
        const int file = ::mkostemp(name.data(), O_CLOEXEC);
        if (file < 0)
            throw Exception(name + ": can't be made", {errno, boost::system::generic_category()});
        ::close(file);
    }
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    ~TemporaryName() { ::unlink(name.c_str()); }

    const std::string& text() const { return name; }

private:
    std::string name;
};

physical::ZipOptions lenientOptions(physical::ZipOptions limits) {
    limits.lenient = true;
    return limits;
}

model::Package& opened(model::Package& package) {
    package.open(interfaces::OpenMode::ReadWrite);
    return package;
}

} // namespace

Rehearsal::Rehearsal(const inspection::Archive& original, const physical::ZipOptions& limits)
    : limits(limits), source(original), archive(source, lenientOptions(limits)), lenient(archive),
      package(lenient), edits(opened(package)) {
}

inspection::Archive Rehearsal::save() {
    package.close(false);
    const TemporaryName name;
    std::ofstream stream(name.text(), std::ios::binary);
    archive.writeTo(stream);
    stream.close();
    if (!stream)
        throw Exception(name.text() + ": can't be written");
    return inspection::Archive(std::filesystem::path(name.text()), limits);
}

} // namespace opc::editing
