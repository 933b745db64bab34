// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Runtime/TypeRegistry.h>

#include <gtest/gtest.h>

#include <string>

namespace ZORPlatform {
namespace {

struct Shape {};
struct Circle : Shape {};
struct Printable {};

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

TEST(TypeRegistry, ListsWhatIsRegisteredInOrder) {
    const std::size_t before = registeredTypes().size();
    const TypeRegistration<Shape> shape(u"Shape");
    const TypeRegistration<Circle, Shape, Printable> circle(u"Circle");
    const std::vector<RegisteredType> types = registeredTypes();
    ASSERT_EQ(types.size(), before + 2);
    EXPECT_EQ(types[before].name, u"Shape");
    EXPECT_EQ(types[before].superclass, nullptr);
    EXPECT_TRUE(types[before].protocols.empty());
    EXPECT_EQ(types[before + 1].name, u"Circle");
    EXPECT_EQ(*types[before + 1].type, typeid(Circle));
    EXPECT_EQ(*types[before + 1].superclass, typeid(Shape));
    ASSERT_EQ(types[before + 1].protocols.size(), 1U);
    EXPECT_EQ(*types[before + 1].protocols[0], typeid(Printable));
}

TEST(TypeRegistry, AClassIsNamedAsRegisteredOrAsInCpp) {
    EXPECT_EQ(className(typeid(NSError)), u"NSError");
    EXPECT_EQ(className(typeid(Circle)), u"ZORPlatform::(anonymous namespace)::Circle");
    const TypeRegistration<Circle> circle(u"Circle");
    EXPECT_EQ(className(typeid(Circle)), u"Circle");
}

}  // namespace
}  // namespace ZORPlatform
