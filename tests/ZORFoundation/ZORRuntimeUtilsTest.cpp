// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORRuntimeUtils.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

struct Drawable {};
struct Storable {};
struct Shape {};
struct Ellipse : Shape {};
struct Circle : Ellipse {};
struct Square : Shape {};
struct Alone {};

const TypeRegistration<Circle, Ellipse, Storable> kCircle(u"Circle");
const TypeRegistration<Shape, void, Drawable> kShape(u"Shape");
const TypeRegistration<Ellipse, Shape> kEllipse(u"Ellipse");
const TypeRegistration<Square, Shape, Drawable, Storable> kSquare(u"Square");

using Names = std::vector<std::u16string>;

TEST(ZORRuntimeUtils, ListsClassesThatDeclareAProtocolThemselves) {
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesAdoptingProtocol(typeid(Drawable)), (Names{u"Shape", u"Square"}));
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesAdoptingProtocol(typeid(Storable)), (Names{u"Circle", u"Square"}));
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesAdoptingProtocol(typeid(Alone)), Names{});
}

TEST(ZORRuntimeUtils, ListsSubclassesAtAnyDepthInOrderOfRegistration) {
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesOfType(typeid(Shape)), (Names{u"Circle", u"Ellipse", u"Square"}));
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesOfType(typeid(Ellipse)), Names{u"Circle"});
}

TEST(ZORRuntimeUtils, NeverListsTheClassAskedAbout) {
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesOfType(typeid(Circle)), Names{});
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesOfType(typeid(Alone)), Names{});
}

TEST(ZORRuntimeUtils, ASuperclassNeedNotBeRegistered) {
    struct Loner : Alone {};
    const TypeRegistration<Loner, Alone> loner(u"Loner");
    EXPECT_EQ(ZORRuntimeUtils::classStringsForClassesOfType(typeid(Alone)), Names{u"Loner"});
}

}  // namespace
}  // namespace ZORFoundation
