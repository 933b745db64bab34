// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <gtest/gtest.h>

#include <string>

namespace ZORPlatform {
namespace {

struct Shape {};
struct Circle : Shape {};

TEST(TypeRegistry, KnowsThePlatformsOwnTypesByName) {
    EXPECT_EQ(typeDescriptor<std::u16string>()->name(), u"NSString");
    EXPECT_EQ(typeDescriptor<bool>()->name(), u"NSNumber");
    EXPECT_EQ(typeDescriptor<double>()->name(), u"NSNumber");
    EXPECT_EQ(typeDescriptor<NSError>()->name(), u"NSError");
}

TEST(TypeRegistry, ATypeIsRegisteredAsLongAsItsRegistrationLives) {
    EXPECT_EQ(typeDescriptor<Circle>(), std::nullopt);
    {
        const TypeRegistration<Shape> shape(u"Shape");
        const TypeRegistration<Circle, Shape> circle(u"Circle");
        EXPECT_EQ(typeDescriptor<Circle>()->name(), u"Circle");
        EXPECT_EQ(typeDescriptor<Shape>()->name(), u"Shape");
        EXPECT_EQ(superclassOf(*typeDescriptor<Circle>()), typeDescriptor<Shape>());
        EXPECT_EQ(superclassOf(*typeDescriptor<Shape>()), std::nullopt);
    }
    EXPECT_EQ(typeDescriptor<Circle>(), std::nullopt);
    EXPECT_EQ(typeDescriptor<Shape>(), std::nullopt);
}

}  // namespace
}  // namespace ZORPlatform
