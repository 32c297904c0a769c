#include "ReadOptions.hpp"

#include <CLI/CLI.hpp>

namespace opctool {

void addReadOptions(CLI::App& command, ReadOptions& options) {
    CLI::Option* strict =
        command.add_flag("--strict", options.strict, "Refuse a package that breaks the standard");
    command
        .add_flag("--lenient",
                  "Read it as other programs do, and report on standard error what is wrong; the default")
        ->excludes(strict);
    opc::physical::ZipOptions& zip = options.zip;
    const auto add = [&](const char* name, std::uint64_t& limit, const char* what) {
        return command.add_option(name, limit, what)
            ->group(LIMITS_GROUP)
            ->type_name("N")
            ->capture_default_str();
    };
    add("--max-items", zip.maxItems, "Items of an archive");
    add("--max-name", zip.maxNameLength, "Bytes of the name of an item");
    add("--max-depth", zip.maxDepth, "Folders in the name of an item");
    add("--max-ratio", zip.maxRatio, "Size of an item divided by its compressed size");
    add("--max-size", zip.maxItemSize, "Bytes of one item, uncompressed")->transform(CLI::AsSizeValue(false));
    add("--max-total", zip.maxTotalSize, "Bytes of all items, uncompressed")
        ->transform(CLI::AsSizeValue(false));
}

} // namespace opctool
