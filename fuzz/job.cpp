#include "FuzzTarget.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/Job.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::editing;

namespace {

/// A package on which steps can succeed: /a.xml, /b.xml, and the relationship r from the package to /a.xml.
void fill(physical::MemoryPackage& store) {
    model::Package package(store);
    package.open(interfaces::OpenMode::CreateOnly);
    for (const char16_t* name : {u"/a.xml", u"/b.xml"})
        package.createPart(model::PartName(name), model::ContentType(u"application/xml"),
                           model::StandardPartInfo());
    package.createInternalRelationship(u"t:t", model::URI(u"/a.xml"), u"r");
    package.close(false);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    Job job;
    if (!attempt<InvalidJob>([&] { job = readJob(text); }))
        return 0;
    const std::string written = writeJob(job);
    require(writeJob(readJob(written)) == written, "a job is read as it is written");

    physical::MemoryPackage store;
    fill(store);
    physical::LenientPackage lenient(store);
    model::Package package(lenient);
    package.open(interfaces::OpenMode::ReadWrite);
    Editor editor(package);
    try {
        applyJob(editor, job, {"/no/such/folder"});
        package.close(false);
    } catch (const Exception&) {
        return 0;
    }
    for (const Change& change : editor.changes())
        require(!describe(change).empty(), "a change can be told");
    package.open(interfaces::OpenMode::ReadOnly); // what was written can be read
    package.close(true);
    return 0;
}
