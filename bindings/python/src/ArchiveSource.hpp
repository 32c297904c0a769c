#pragma once

#include "Session.hpp"

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Finding.hpp>
#include <opc/inspection/Inspection.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace opcpython {

/// Where the archive is that a function of `opcmodel` inspects: a file, bytes, a file object, or an open package, whose
/// archive is inspected as it was opened or saved last.
class ArchiveSource {
public:
    using Bytes = std::vector<unsigned char>;
    using Place =
        std::variant<std::filesystem::path, Bytes, std::shared_ptr<FileObject>, std::shared_ptr<Session>>;

    ArchiveSource(Place place, opc::physical::ZipOptions limits)
        : place(std::move(place)), zipOptions(std::move(limits)) {}

    const opc::physical::ZipOptions& limits() const { return zipOptions; }

    /// Calls `action` with the archive, without the interpreter's lock.
    template <typename Action>
    auto withArchive(Action action) {
        const auto run = [&] {
            opc::inspection::Archive archive = open();
            return action(archive);
        };
        if (const auto* const session = std::get_if<std::shared_ptr<Session>>(&place))
            return (*session)->use(run);
        return withoutLock(run);
    }

    /// Calls `action` with this archive and another one. Those of the same open package are one.
    template <typename Action>
    auto withArchives(ArchiveSource& other, Action action) {
        using opc::inspection::Archive;
        const auto* const session = std::get_if<std::shared_ptr<Session>>(&place);
        if (session != nullptr && other.place == place)
            return withArchive([&](Archive& archive) { return action(archive, archive); });
        return withArchive([&](Archive& archive) {
            return other.withArchive([&](Archive& second) { return action(archive, second); });
        });
    }

private:
    opc::inspection::Archive open();

    Place place;
    opc::physical::ZipOptions zipOptions;
};

/// The members of `opcmodel.Finding`.
py::tuple toRow(const opc::inspection::Finding& finding);

/// @throws std::invalid_argument  there is no such profile or rule
opc::inspection::InspectionOptions makeInspectionOptions(const std::vector<std::string>& profiles,
                                                         const std::vector<std::string>& only,
                                                         const std::vector<std::string>& never,
                                                         const opc::physical::ZipOptions& limits);

} // namespace opcpython
