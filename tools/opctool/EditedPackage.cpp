#include "EditedPackage.hpp"

#include "ChangeText.hpp"
#include "SignatureOption.hpp"
#include "TerminalText.hpp"

#include <nlohmann/json.hpp>

namespace opctool {

using opc::editing::Change;

void EditedPackage::finish(const std::string& name, bool tells) {
    const RunOptions& options = run.options();
    if (!options.dryRun && !options.breakSignatures)
        refuseToBreak(edits.brokenSignatures());
    package.save();
    print(name, tells);
    if (options.dryRun && !options.breakSignatures)
        refuseToBreak(edits.brokenSignatures());
}

void EditedPackage::print(const std::string& name, bool tells) {
    const RunOptions& options = run.options();
    if (run.wantsJSON()) {
        JSONOutput& json = run.json();
        json.beginObject();
        json.add(name.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(name), "name");
        json.beginArray("changes");
        for (const Change& change : edits.changes())
            json.add(changeToJSON(change));
        json.end();
        json.add(edits.brokenSignatures(), "brokenSignatures");
        json.add(edits.narrowedSignatures(), "narrowedSignatures");
        json.add(options.dryRun, "dryRun");
        json.end();
        return;
    }
    if (options.dryRun || options.output.verbose || tells) {
        for (const Change& change : edits.changes())
            run.printName(describe(change));
    } else if (!name.empty()) {
        run.printName(name);
    }
    if (options.breakSignatures)
        for (const std::string& part : edits.brokenSignatures())
            run.tell("warning: the signature " + part + " doesn't hold after this");
    for (const std::string& part : edits.narrowedSignatures())
        run.tell("warning: the signature " + part + " doesn't cover what was added");
}

} // namespace opctool
