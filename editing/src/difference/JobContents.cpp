#include <opc/editing/DifferenceJob.hpp>

#include <opc/core/Exception.hpp>
#include <opc/core/InputStream.hpp>

#include <array>
#include <fstream>

namespace opc::editing {

namespace {

namespace fs = std::filesystem;

std::string readWhole(InputStream& stream) {
    std::string bytes;
    std::array<unsigned char, 65536> block{};
    while (!stream.isDone()) {
        const std::uint64_t count = stream.read(block.data(), block.size());
        bytes.append(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return bytes;
}

void writeFile(const fs::path& path, InputStream& stream) {
    std::ofstream file(path, std::ios::binary);
    std::array<unsigned char, 65536> block{};
    while (file && !stream.isDone()) {
        const std::uint64_t count = stream.read(block.data(), block.size());
        file.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(count));
    }
    file.close();
    if (!file)
        throw Exception(path.string() + " can't be written");
}

} // namespace

JobContents::~JobContents() {
    std::error_code ignored;
    if (files != 0)
        fs::remove_all(folder, ignored);
}

JobContent JobContents::keep(const inspection::ContentVersion& content) {
    const std::unique_ptr<InputStream> stream = content.archive->open(content.items);
    stream->open();
    if (folder.empty() || content.size <= LARGEST_IN_JOB)
        return {readWhole(*stream), {}};
    std::error_code error;
    if (files == 0 && !fs::create_directory(folder, error))
        throw Exception(folder.string() + (error ? " can't be made: " + error.message() : " exists already"));
    const std::string file = std::to_string(++files);
    writeFile(folder / file, *stream);
    return {{}, folder.filename().string() + '/' + file};
}

} // namespace opc::editing
