#pragma once

#include <opc/editing/Change.hpp>
#include <opc/editing/Export.hpp>
#include <opc/editing/Job.hpp>

#include <opc/inspection/Inspection.hpp>
#include <opc/inspection/Reports.hpp>

#include <string>
#include <vector>

namespace opc::editing {

/// The errors that a package has after changes and hasn't had before. A fault of a part that was renamed isn't new.
/// @param before, after  by the same options
/// @param broken         signature parts whose signatures may break: errors in them don't count
OPC_EDITING_EXPORT std::vector<inspection::Finding>
findNewErrors(const inspection::Report& before, const inspection::Report& after,
              const std::vector<Change>& changes, const std::vector<std::string>& broken = {});

/// The same for a package of which only the fingerprints of its errors are known, without a file's name.
OPC_EDITING_EXPORT std::vector<inspection::Finding>
findNewErrors(const inspection::Baseline& known, const inspection::Report& after,
              const std::vector<std::string>& broken = {});

/// A changed package isn't what it must be. The message names what is wrong first.
class OPC_EDITING_EXPORT InvalidResult : public Exception {
public:
    explicit InvalidResult(const std::string& message) : Exception(message) {}
    ~InvalidResult() override;
};

/// @param errors  of `findNewErrors`
/// @throws InvalidResult  there are some
OPC_EDITING_EXPORT void refuseNewErrors(const std::vector<inspection::Finding>& errors);

/// Opens a package as programs do that read what others have written.
/// @throws opc::Exception  it can't be opened
OPC_EDITING_EXPORT void requireOpens(const inspection::Archive& result,
                                     const physical::ZipOptions& limits = {});

/// Makes the checks that a job asks for.
/// @param result  the package that the job has made
/// @throws InvalidResult  one finds something; the message names the step, too
OPC_EDITING_EXPORT void checkResult(const inspection::Archive& result, const Job& job,
                                    const inspection::InspectionOptions& options = {});

} // namespace opc::editing
