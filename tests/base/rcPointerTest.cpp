#include <base/exBase.h>
#include <base/oPtr.h>
#include <base/rcCast.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <base/rcWeakPtr.h>

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace {

// Counted objects that count their own destructions.
struct Shape : RCBase<LkCounter<int>> {
    explicit Shape(int& deaths)
        : deaths(deaths) {}
    ~Shape() override { ++deaths; }
    int& deaths;
};
struct Circle : Shape {
    using Shape::Shape;
};
struct Square : Shape {
    using Shape::Shape;
};
struct Plain : RCBase<int> {};

TEST(RCPointers, LastReferenceDestroysTheObject) {
    int deaths = 0;
    {
        RCShdPtr<Shape> a(new Circle(deaths));
        EXPECT_EQ(a->rcCount(), 1);
        RCStrongPtr<Shape> b = a;
        RCShdPtr<Shape> c = b;
        EXPECT_EQ(a->rcCount(), 3);
        b.reset();
        c = RCShdPtr<Shape>();
        EXPECT_EQ(a->rcCount(), 1);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);

    RCShdPtr<Plain> p(new Plain);
    RCShdPtr<Plain> q = p;
    EXPECT_EQ(p->rcCount(), 2);
}

TEST(RCPointers, WeakPointerAnswersEmptyOnceTheObjectIsGone) {
    int deaths = 0;
    RCWeakPtr<Shape> weak;
    {
        RCStrongPtr<Shape> strong(new Square(deaths));
        weak = RCWeakPtr<Shape>(strong);
        RCStrongPtr<Shape> locked = weak.lock();
        ASSERT_TRUE(locked);
        EXPECT_EQ(locked.get(), strong.get());
        EXPECT_EQ(strong->rcCount(), 2);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(weak.lock());
    RCWeakPtr<Shape> copy = weak; // a copy of an expired pointer stays expired
    EXPECT_FALSE(copy.lock());
}

TEST(RCPointers, DereferencingEmptyThrowsNullPtrNamingTheType) {
    RCShdPtr<Circle> empty;
    try {
        (void)*empty;
        FAIL() << "no exception";
    } catch (const ExNullPtr& ex) {
        EXPECT_NE(std::string(ex.what()).find("Circle"), std::string::npos) << ex.what();
    }
    OPtr<Circle> none;
    EXPECT_THROW((void)*none, ExNullPtr);
}

TEST(RCPointers, CheckedCastThrowsForWrongTypeTestCastNever) {
    int deaths = 0;
    RCShdPtr<Shape> circle(new Circle(deaths));
    EXPECT_EQ(rcCast<Circle>(circle).get(), circle.get());
    EXPECT_FALSE(rcCast<Circle>(RCShdPtr<Shape>()));
    try {
        rcCast<Square>(circle);
        FAIL() << "no exception";
    } catch (const ExCastFailed& ex) {
        EXPECT_NE(ex.getFrom().find("Circle"), std::string::npos);
        EXPECT_NE(ex.getTo().find("Square"), std::string::npos);
    }
    EXPECT_FALSE(rcTestCast<Square>(circle));
    EXPECT_TRUE(rcTestCast<Circle>(circle));
    EXPECT_THROW(rcCastRequired<Circle>(RCShdPtr<Shape>()), ExNullPtr);
    EXPECT_THROW(refCast<Square>(*circle), ExCastFailed);
    EXPECT_EQ(circle->rcCount(), 1); // failed casts leave no reference behind
}

TEST(RCPointers, OwningPointerReleases) {
    int deaths = 0;
    OPtr<Shape> owner(new Circle(deaths));
    Shape* raw = owner.release();
    EXPECT_FALSE(owner);
    EXPECT_EQ(deaths, 0);
    RCShdPtr<Shape> adopt(raw);
    adopt.reset();
    EXPECT_EQ(deaths, 1);
    { OPtr<Shape> scoped(new Square(deaths)); }
    EXPECT_EQ(deaths, 2);
}

TEST(RCPointers, DumpWritesTypesCountAndAddresses) {
    int deaths = 0;
    RCShdPtr<Shape> p(new Circle(deaths));
    RCShdPtr<Shape> q = p;
    std::ostringstream os;
    p.dump(os);
    const std::string text = os.str();
    EXPECT_EQ(text.find('\n'), std::string::npos);
    const std::regex shape("Pointee type = .*Circle, T type = .*Shape, ref: 2, "
                           "pointer:0x[0-9a-f]+, RCBase pointer: 0x[0-9a-f]+");
    EXPECT_TRUE(std::regex_match(text, shape)) << text;

    std::ostringstream null;
    RCShdPtr<Shape>().dump(null);
    EXPECT_TRUE(std::regex_match(null.str(), std::regex("Pointee type = null, T type = .*Shape, "
                                                        "ref: 0, pointer:(0|0x0|\\(nil\\)), "
                                                        "RCBase pointer: (0|0x0|\\(nil\\))")))
        << null.str();
}

} // namespace
