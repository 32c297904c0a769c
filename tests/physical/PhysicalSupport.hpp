#pragma once

#include "support/TemporaryFolder.hpp"

#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

/// What the tests of both stores share.
namespace opc::test {

using interfaces::CompressionType;
using interfaces::OpenMode;
using physical::ZipOptions;
using physical::ZipPackage;

struct PartInfo : interfaces::IPhysicalPartInfo {
    explicit PartInfo(CompressionType compression = CompressionType::Normal) : compression(compression) {}
    CompressionType getCompressionType() const override { return compression; }
    std::uint64_t getGrowthHint() const override { return 0; }
    void* getExtraInfo(const std::u16string&) const override { return nullptr; }

    CompressionType compression;
};

/// How many names temporary files of an open package have in their folder.
#ifdef _WIN32
constexpr std::size_t TEMPORARY_NAMES = 1;
#else
constexpr std::size_t TEMPORARY_NAMES = 0;
#endif

/// For tests with a file in their own folder.
class FileTest : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "a.zip";
};

inline void put(interfaces::IPhysicalOutputStream& stream, const std::string& text) {
    ASSERT_EQ(stream.write(reinterpret_cast<const unsigned char*>(text.data()), text.size()), text.size());
}

/// Reads the rest in pieces of one size. If that fails, keeps what was read.
inline void readInPieces(interfaces::IPhysicalInputStream& stream, std::size_t pieceSize, std::string& text) {
    std::vector<unsigned char> piece(pieceSize);
    while (!stream.isDone()) {
        const auto count = stream.read(piece.data(), pieceSize);
        text.append(piece.data(), piece.data() + count);
    }
}

/// The rest of the content.
inline std::string rest(interfaces::IPhysicalInputStream& stream) {
    std::string text;
    readInPieces(stream, 1021, text);
    return text;
}

/// Bytes that don't compress, always the same.
inline std::string noise(std::size_t size) {
    std::mt19937 random(7);
    std::string text(size, '\0');
    std::generate(text.begin(), text.end(), [&random] { return static_cast<char>(random()); });
    return text;
}

/// The content. Checks its size if the part knows it.
inline std::string content(interfaces::IPhysicalPart& part) {
    std::string text = rest(*part.getInputStream());
    if (const auto* sized = dynamic_cast<const interfaces::IPhysicalPartSize*>(&part)) {
        EXPECT_EQ(sized->getSize(), text.size());
    }
    return text;
}

inline interfaces::IPhysicalPart* create(interfaces::IPhysicalPackage& package, const std::u16string& name,
                                         const std::string& text, const PartInfo& info = PartInfo()) {
    interfaces::IPhysicalPart* part = package.createPart(name, u"text/plain", info);
    put(*part->getOutputStream(), text);
    return part;
}

inline void putContentTypes(interfaces::IPhysicalPackage& package, const std::string& text) {
    interfaces::IPhysicalOutputStream* stream = package.getContentTypeOutputStream();
    put(*stream, text);
    stream->close();
}

/// The names in the order of `getParts`, each followed by a blank.
inline std::u16string names(interfaces::IPhysicalPackage& package) {
    std::u16string text;
    for (interfaces::IPhysicalPart* part : package.getParts())
        text += part->getName() + u" ";
    return text;
}

inline interfaces::IPhysicalPart* find(interfaces::IPhysicalPackage& package, const std::u16string& name) {
    for (interfaces::IPhysicalPart* part : package.getParts()) {
        if (part->getName() == name)
            return part;
    }
    return nullptr;
}

/// Whether `action` throws `opc::Exception` with that value of the generic category and a message that contains
/// `words`.
template <typename Action>
testing::AssertionResult fails(int code, const std::string& words, Action&& action) {
    try {
        action();
    } catch (const Exception& caught) {
        if (caught.code() == boost::system::error_code(code, boost::system::generic_category()) &&
            std::string(caught.what()).find(words) != std::string::npos)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << caught.code() << ": " << caught.what() << "\nexpected: " << words;
    }
    return testing::AssertionFailure() << "raised nothing; expected: " << words;
}

/// Whether other unpacking programs accept the archive.
inline testing::AssertionResult othersAccept([[maybe_unused]] const std::filesystem::path& path) {
#ifndef _WIN32 // where there are none
    const std::string commands[] = {
        "unzip -tqq '" + path.string() + "'",
        "python3 -c 'import sys, zipfile; sys.exit(zipfile.ZipFile(sys.argv[1]).testzip() is not None)' '" +
            path.string() + "'",
    };
    for (const std::string& command : commands) {
        if (std::system(command.c_str()) != 0)
            return testing::AssertionFailure() << command;
    }
#endif
    return testing::AssertionSuccess();
}

} // namespace opc::test

/// Expects that the expression throws `opc::Exception` with that code and a message that contains `words`.
#define EXPECT_FAILS(code, words, ...)                                                                       \
    EXPECT_TRUE(::opc::test::fails(code, words, [&] { static_cast<void>(__VA_ARGS__); }))
