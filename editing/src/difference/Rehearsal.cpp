#include "difference/Rehearsal.hpp"

#include "archive/TemporaryArchive.hpp"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <streambuf>

namespace opc::editing {

using physical::zip::ByteTarget;

namespace {

/// Lets a package write itself to a target.
class TargetBuffer : public std::streambuf {
public:
    explicit TargetBuffer(ByteTarget& target) : target(target) {}

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        const auto size = static_cast<std::size_t>(count);
        if (target.writeAt(written, reinterpret_cast<const unsigned char*>(bytes), size) != 0)
            return 0;
        written += size;
        return count;
    }

private:
    ByteTarget& target;
    std::uint64_t written = 0;
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
    : limits(limits), source(original), zip(source, lenientOptions(limits)), lenient(zip), package(lenient),
      edits(opened(package)) {
}

inspection::Archive Rehearsal::save() {
    package.close(false);
    return archive::makeTemporaryArchive(limits, [this](ByteTarget& target) {
        TargetBuffer buffer(target);
        std::ostream stream(&buffer);
        zip.writeTo(stream);
    });
}

} // namespace opc::editing
