#include "support/OddPackage.hpp"

#include <opc/model/XercesGuard.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

using opc::interfaces::IPhysicalPackage;
using opc::physical::LenientPackage;
using opc::physical::MemoryPackage;
using opc::physical::ZipPackage;

std::unique_ptr<IPhysicalPackage> makeStore(int kind) {
    if (kind == 0)
        return std::make_unique<ZipPackage>(ZipPackage::Bytes());
    return std::make_unique<MemoryPackage>(kind == 1 ? MemoryPackage::ContentTypes::InStream
                                                     : MemoryPackage::ContentTypes::InParts);
}

TEST(OddPackages, areReadBackAsTheyWereCreated) {
    const opc::model::XercesGuard guard;
    std::vector<std::uint8_t> bytes(200);
    for (unsigned seed = 0; seed < 800; ++seed) {
        std::mt19937 random(seed);
        std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
        const auto store = makeStore(seed % 3);
        LenientPackage lenient(*store);
        IPhysicalPackage& used = seed % 2 == 0 ? *store : lenient;
        ASSERT_EQ(opc::test::findLossInOddPackage(used, bytes.data(), bytes.size()), "") << "seed " << seed;
    }
}

} // namespace
