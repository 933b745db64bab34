// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORMD5Hash.h>

#include <gtest/gtest.h>

#include <vector>

namespace ZORFoundation {
namespace {

TEST(ZORMD5Hash, DigestsEveryByteIncludingZeros) {
    EXPECT_EQ(ZORMD5Hash::zor_md5({}), u"d41d8cd98f00b204e9800998ecf8427e");
    const std::vector<std::uint8_t> abc = {'a', 'b', 'c'};
    EXPECT_EQ(ZORMD5Hash::zor_md5(abc), u"900150983cd24fb0d6963f7d28e17f72");
    const std::vector<std::uint8_t> withZero = {'a', 'b', 'c', 0, 'd', 'e', 'f'};
    EXPECT_EQ(ZORMD5Hash::zor_md5(withZero), u"a5e4d5963ae44c1f4bfb37b1a3d55a3c");
}

}  // namespace
}  // namespace ZORFoundation
