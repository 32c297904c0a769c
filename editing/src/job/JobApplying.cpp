#include <opc/editing/Job.hpp>

#include "job/StepNames.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/FileContent.hpp>
#include <opc/editing/Moving.hpp>

#include <algorithm>
#include <functional>

namespace opc::editing {

namespace fs = std::filesystem;

using model::ContentType;
using model::PartName;
using model::TargetMode;

namespace {

std::u16string toUTF16(const std::string& text) {
    return toString(text, true);
}

PartName nameFrom(const std::string& text) {
    return PartName(toUTF16(text));
}

TargetMode modeOf(bool external) {
    return external ? TargetMode::External : TargetMode::Internal;
}

/// Finds a file of a job, by what it is when all links are followed.
fs::path findFile(const JobFolder& folder, const std::string& from) {
    if (from.find('\0') != std::string::npos)
        throw Exception("The name of a file has a NUL character",
                        make_error_code(boost::system::errc::invalid_argument));
    std::error_code error;
    fs::path file = fs::canonical(folder.path / from, error);
    if (error)
        throw Exception(from + " can't be read", {error.value(), boost::system::generic_category()});
    const fs::path root = fs::canonical(folder.path);
    const bool isInside =
        std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
    if (!folder.mayBeLeft && !isInside)
        throw Exception(from + " is outside the folder of the job",
                        make_error_code(boost::system::errc::operation_not_permitted));
    if (!fs::is_regular_file(file))
        throw Exception(from + " isn't a regular file",
                        make_error_code(boost::system::errc::invalid_argument));
    return file;
}

void withContent(const JobContent& content, const JobFolder& folder,
                 const std::function<void(InputStream&)>& use) {
    if (!content.from.empty()) {
        FileContent file(findFile(folder, content.from));
        use(file);
        return;
    }
    const std::vector<unsigned char> bytes(content.bytes.begin(), content.bytes.end());
    ByteArrayInAdaptor stream(bytes);
    use(stream);
}

struct StepMaker {
    void operator()(const AddStep& step) const {
        withContent(step.content, folder, [&](InputStream& content) {
            editor.createPart(nameFrom(step.part), ContentType(toUTF16(step.contentType)), content);
        });
    }
    void operator()(const PutStep& step) const {
        withContent(step.content, folder,
                    [&](InputStream& content) { editor.replaceContent(nameFrom(step.part), content); });
    }
    void operator()(const RemoveStep& step) const { removeParts(editor, step.patterns, step.options); }
    void operator()(const MoveStep& step) const {
        movePart(editor, nameFrom(step.part), nameFrom(step.name));
    }
    void operator()(const RetypeStep& step) const {
        editor.retypePart(nameFrom(step.part), ContentType(toUTF16(step.contentType)));
    }
    void operator()(const RelateStep& step) const {
        editor.addRelationship(nameFrom(step.source), {toUTF16(step.type), toUTF16(step.target),
                                                       modeOf(step.external), toUTF16(step.id)});
    }
    void operator()(const UnrelateStep& step) const {
        editor.deleteRelationship(nameFrom(step.source), toUTF16(step.id));
    }
    void operator()(const RetargetStep& step) const {
        editor.retarget(nameFrom(step.source), toUTF16(step.id), toUTF16(step.target), modeOf(step.external));
    }
    void operator()(const CollectStep& /*step*/) const { collectUnreachable(editor); }
    void operator()(const PropertiesStep& step) const { changeCoreProperties(editor, step.core); }
    void operator()(const OfficePropertiesStep& step) const {
        for (const Property& property : step.changes.set)
            if (const std::string defect = findDefect(step.kind, property); !defect.empty())
                throw Exception(defect);
        changeProperties(editor, step.kind, step.changes);
    }
    void operator()(const CleanStep& step) const { clean(editor, step.options); }
    void operator()(const FixStep& /*step*/) const {
        throw Exception(LATE_FIX, make_error_code(boost::system::errc::invalid_argument));
    }
    void operator()(const CheckStep& /*step*/) const {}

    Editor& editor;
    const JobFolder& folder;
};

} // namespace

void applyJob(Editor& editor, const Job& job, const JobFolder& folder) {
    for (std::size_t i = countFixes(job); i < job.steps.size(); ++i) {
        try {
            std::visit(StepMaker{editor, folder}, job.steps[i]);
        } catch (Exception& e) {
            e.addDetails(placeOf(i + 1, nameOf(job.steps[i])));
            throw;
        }
    }
}

} // namespace opc::editing
